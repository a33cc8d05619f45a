# file: msgs/msgidstate/info.cpp
# tests: info_test
s/payload()\.StateName = stateName;//
