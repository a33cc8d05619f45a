# file: framework/json_reader.cpp
# tests: json_text_test
s/pointShift + leadingDigits < 0)/pointShift + leadingDigits > 0)/
