# file: framework/json_reader.cpp
# tests: json_text_test
s/(at - lineBegin) + 1/(at - lineBegin)/
