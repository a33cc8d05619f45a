# file: framework/element.cpp
# tests: element_test
s/setBoolean(target, TreeAccess::integer(source) != 0)/setInteger(target, TreeAccess::integer(source))/
