# file: framework/json_reader.cpp
# tests: json_text_test
s/exponent\.negative || isAt(p, '+')/exponent.negative/
