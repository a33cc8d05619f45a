# file: framework/element.cpp
# tests: element_test
s/if (kind_ != integer)/if (kind_ != integer \&\& kind_ != boolean)/
