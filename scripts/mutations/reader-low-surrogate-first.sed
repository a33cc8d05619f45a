# file: framework/json_reader.cpp
# tests: json_text_test
s/if (!lowSurrogate \&\& i == 1 \&\& isLow)/if (false)/
