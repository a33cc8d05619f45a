# file: framework/json_reader.cpp
# tests: json_text_test
s/if (behind != end_)/if (false)/
