# file: framework/json_printer.cpp
# tests: json_printer_test
s/deepestNesting = 1024;/deepestNesting = 1025;/
