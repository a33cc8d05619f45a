# file: framework/json_reader.cpp
# tests: json_text_test
s/largest + (negative ? 1 : 0)/largest/
