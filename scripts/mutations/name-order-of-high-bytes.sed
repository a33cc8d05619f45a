# file: framework/names.h
# tests: containers_test
s/static_cast<unsigned char>(a.front()) - static_cast<unsigned char>(b.front())/a.front() - b.front()/
