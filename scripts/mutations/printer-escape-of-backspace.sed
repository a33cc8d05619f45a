# file: framework/json_printer.cpp
# tests: json_printer_test
s/putWord("\\\\b")/putWord("\\\\u0008")/
