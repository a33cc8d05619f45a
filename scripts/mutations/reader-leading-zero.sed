# file: framework/json_reader.cpp
# tests: json_text_test
s/if (\*p == '0')/if (false)/
