# file: framework/containers.h
# tests: json_text_test json_printer_test containers_test
s/ && right->_M_left == nullptr//
