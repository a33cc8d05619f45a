# file: framework/json_printer.cpp
# tests: json_printer_test
s/whole >= 100000)/whole >= 1000000)/
