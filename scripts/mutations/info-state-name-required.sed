# file: msgs/msgidstate/info.cpp
# tests: info_test
s/"StateName", false/"StateName", true/
