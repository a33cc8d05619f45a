#include "tools/zelk-msg/table.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ZelkMsg {

Table::Table(std::vector<std::string> headings)
{
    for (std::string& heading : headings) {
        right_.push_back(heading.front() == '>');
        if (right_.back())
            heading.erase(0, 1);
    }
    rows_.push_back(std::move(headings));
}

void Table::print(Output& output, std::string_view indent) const
{
    std::vector<std::size_t> widths(right_.size());
    for (auto const& row : rows_) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], width(row[i]));
    }
    for (auto const& row : rows_) {
        output << indent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            bool const last = i + 1 == row.size();
            std::string cell = row[i];
            if (right_[i])
                cell.insert(0, widths[i] - width(cell), ' ');
            else if (!last)
                cell = padded(cell, widths[i]);
            output.print(&row == &rows_.front() ? Style::name : Style::plain, cell) << (last ? "\n" : "  ");
        }
    }
}

} // namespace ZelkMsg
