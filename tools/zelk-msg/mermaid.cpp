#include "tools/zelk-msg/mermaid.h"

#include "tools/zelk-msg/output.h"

#include <cctype>
#include <cstddef>

namespace ZelkMsg {

namespace {

bool isWordPart(std::string_view text, std::size_t index)
{
    return index < text.size() && (std::isalnum(static_cast<unsigned char>(text[index])) != 0);
}

} // namespace

std::string mermaidText(std::string_view text)
{
    std::string const plain = harmless(text);
    bool const keyword = plain == "end"; // which closes a block wherever it stands alone
    std::string result;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        char const c = plain[i];
        bool const special = std::string_view("\"#;:<>{}[]()&`%\\|*~").find(c) != std::string_view::npos ||
                             (c == '_' && !(isWordPart(plain, i + 1) && i > 0 && isWordPart(plain, i - 1)));
        if (special || (keyword && i == 0))
            result += '#' + std::to_string(static_cast<unsigned char>(c)) + ';';
        else
            result += c;
    }
    return result.empty() ? "#8203;" : result;
}

} // namespace ZelkMsg
