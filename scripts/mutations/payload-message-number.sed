# file: msgs/msgidstate/info.h
# tests: info_test
s/InfoResponseData, 4>/InfoResponseData, 5>/
