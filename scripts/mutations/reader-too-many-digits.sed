# file: framework/json_reader.cpp
# tests: json_text_test
s/text - whole == Mantissa::mostDigits ||/false ||/
