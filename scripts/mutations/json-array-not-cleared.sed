# file: framework/json_array.h
# tests: json_array_test
s/^    items_\.clear();//
