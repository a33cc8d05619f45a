# file: framework/json_printer.cpp
# tests: json_printer_test
s/open\.index - 1/open.index/
