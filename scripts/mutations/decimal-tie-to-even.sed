# file: framework/decimal.cpp
# tests: json_text_test
s/(mantissa \& 3) == 1/(mantissa \& 3) == 4/
