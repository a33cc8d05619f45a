# file: framework/decimal.cpp
# tests: json_text_test
s/if ((high(bits) \& belowMantissa) == belowMantissa)/if (false)/
