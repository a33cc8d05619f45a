# file: framework/json_printer.cpp
# tests: json_printer_test
s/room(out) < length + count)/room(out) < length)/
