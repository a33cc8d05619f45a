# file: framework/text_scan.h
# tests: json_text_test
s/byte == '\\t'/byte == '\\v'/
