# file: framework/json_reader.cpp
# tests: json_text_test
s/std::size_t line = 1;/std::size_t line = 0;/
