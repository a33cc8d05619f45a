# file: framework/containers.h
# tests: json_text_test containers_test
s/name.view()) >= 0)/name.view()) > 0)/
