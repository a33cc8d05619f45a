# file: framework/json_printer.cpp
# tests: json_printer_test
s/"the string is not UTF-8"/"the string is no UTF-8"/
