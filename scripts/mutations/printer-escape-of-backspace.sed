# file: framework/json_printer.cpp
# tests: json_printer_test
s/copy(out, "\\\\b")/copy(out, "\\\\u0008")/
