# file: framework/json_reader.cpp
# tests: json_text_test
s/deepestNesting = 1024;/deepestNesting = 1023;/
