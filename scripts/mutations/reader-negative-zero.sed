# file: framework/json_reader.cpp
# tests: json_text_test
s/negative ? -0\.0 : 0\.0/0.0/
