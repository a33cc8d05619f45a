# file: framework/json_reader.cpp
# tests: json_text_test
s/StoreHead\* const former = TreeAccess::clear(node)/StoreHead* const former = nullptr/
