# file: framework/json_printer.cpp
# tests: json_printer_test
s/digits\[code >> 4\]/'0'/
