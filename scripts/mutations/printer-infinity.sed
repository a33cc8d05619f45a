# file: framework/json_printer.cpp
# tests: json_printer_test
s/!std::isfinite(value)/std::isnan(value)/
