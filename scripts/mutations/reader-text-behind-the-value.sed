# file: framework/json_reader.cpp
# tests: json_text_test
/^        skipSpace();/{n;s/if (cursor_ != end_)/if (false)/}
