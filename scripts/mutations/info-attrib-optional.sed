# file: msgs/msgidstate/info.cpp
# tests: info_test
s/"AttribInfo", true/"AttribInfo", false/
