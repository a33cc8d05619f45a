# file: framework/json_reader.cpp
# tests: json_text_test parse_error_test
s/text_.size() - static_cast<std::size_t>(end_ - at)/static_cast<std::size_t>(at - text_.data())/
