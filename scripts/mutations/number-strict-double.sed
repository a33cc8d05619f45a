# file: framework/number.h
# tests: number_test
/static_cast<double>(node\.asInt64())/s/static_cast<double>(node\.asInt64())/node.asDouble()/
