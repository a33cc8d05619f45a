# file: framework/json_reader.cpp
# tests: json_text_test
s/(code - 0xD800) << 10/(code - 0xD800) << 9/
