# file: framework/json_reader.cpp
# tests: json_text_test
/text = skipSpace(text);/{n;s/if (text != end_)/if (false)/}
