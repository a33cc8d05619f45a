# file: framework/json_reader.cpp
# tests: parse_error_test
s/"expected well-formed UTF-8"/"expected UTF-8"/
