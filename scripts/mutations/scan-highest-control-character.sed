# file: framework/text_scan.h
# tests: json_printer_test json_text_test
s/byte < 0x20 || byte >= 0x80/byte < 0x1F || byte >= 0x80/
