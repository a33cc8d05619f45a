# file: framework/json_reader.cpp
# tests: json_text_test parse_error_test
s/std::memset(end, 0, reach)/std::memset(end, ',', reach)/
