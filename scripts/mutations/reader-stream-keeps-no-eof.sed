# file: framework/json_reader.cpp
# tests: json_text_test
s/std::ios_base::eofbit);/std::ios_base::goodbit);/
