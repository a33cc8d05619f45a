# file: framework/json_reader.cpp
# tests: json_text_test parse_error_test
s/std::fill(end, std::end(rest_), '\\0');/std::fill(end, std::end(rest_), ',');/
