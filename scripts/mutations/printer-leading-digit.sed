# file: framework/json_printer.cpp
# tests: json_printer_test
s/__builtin_ctzll(digits) \/ 8/__builtin_ctzll(digits) \/ 16/
