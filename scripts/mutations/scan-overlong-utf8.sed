# file: framework/text_scan.h
# tests: json_text_test json_printer_test
s/low = 0xA0;/low = 0x80;/
