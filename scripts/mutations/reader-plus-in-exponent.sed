# file: framework/json_reader.cpp
# tests: json_text_test
s/(\*p == '-' || \*p == '+')/*p == '-'/
