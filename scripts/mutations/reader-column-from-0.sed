# file: framework/json_reader.cpp
# tests: json_text_test
s/offset - lineBegin + 1/offset - lineBegin/
