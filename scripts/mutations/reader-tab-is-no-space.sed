# file: framework/json_reader.cpp
# tests: json_text_test
s/\*cursor_ == '\\t'/*cursor_ == '\\v'/
