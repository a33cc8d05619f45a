# file: framework/json_printer.cpp
# tests: json_printer_test
s/__builtin_clzll(behind | 1) \/ 8/0/
