# file: framework/text_scan.h
# tests: json_text_test json_printer_test
s/high = 0x9F;/high = 0xBF;/
