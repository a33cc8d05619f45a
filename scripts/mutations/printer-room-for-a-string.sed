# file: framework/json_printer.cpp
# tests: json_printer_test
s/reserve(out, longest + 2 + margin)/reserve(out, 2 + margin)/
