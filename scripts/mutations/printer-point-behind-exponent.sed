# file: framework/json_printer.cpp
# tests: json_printer_test
s/c == '\.' || c == 'e'/c == '.'/
