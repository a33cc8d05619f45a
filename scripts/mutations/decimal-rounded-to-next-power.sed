# file: framework/decimal.cpp
# tests: json_text_test
s/if (mantissa >> (mantissaBits + 1) != 0)/if (false)/
