# file: framework/containers.cpp
# tests: containers_test
s/node = order < 0 ? node->_M_left : node->_M_right;/node = node->_M_right;/
