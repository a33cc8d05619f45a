# file: framework/json_reader.cpp
# tests: json_text_test
s/"expected well-formed UTF-8"/"expected UTF-8"/
