# file: framework/json_reader.cpp
# tests: json_text_test parse_error_test
s/std::end(rest_), '\\0')/std::end(rest_), ',')/
