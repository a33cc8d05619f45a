/// Rows under headings, each column as wide as its widest cell.
#pragma once

#include "tools/zelk-msg/output.h"

#include <string>
#include <string_view>
#include <vector>

namespace ZelkMsg {

class Table {
public:
    /// A heading that begins with ">" makes a column whose cells stand at the right.
    explicit Table(std::vector<std::string> headings);

    void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
    void print(Output& output, std::string_view indent) const;

private:
    std::vector<std::vector<std::string>> rows_; // the headings first
    std::vector<bool> right_;
};

} // namespace ZelkMsg
