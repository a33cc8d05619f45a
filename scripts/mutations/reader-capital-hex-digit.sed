# file: framework/json_reader.cpp
# tests: json_text_test
s/c >= 'A' \&\& c <= 'F'/c >= 'A' \&\& c <= 'E'/
