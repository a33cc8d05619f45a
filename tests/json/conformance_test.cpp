// Runs the reader over the tables of texts in this folder.
#include "framework/json_text.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Zelk::Json {
namespace {

struct Case {
    std::string name;
    std::vector<std::string> fields; // those behind the name
};

/// The bytes of a field: <hh> stands for one byte.
std::string bytesOf(std::string const& field)
{
    std::string bytes;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '<') {
            bytes += field[i];
            continue;
        }
        if (i + 3 >= field.size() || field[i + 3] != '>')
            throw std::runtime_error("not <hh>: " + field);
        bytes += static_cast<char>(std::stoi(field.substr(i + 1, 2), nullptr, 16));
        i += 3;
    }
    return bytes;
}

/// The cases of a table, each named after its section too.
std::vector<Case> casesOf(std::string const& table, std::size_t fieldCount)
{
    std::ifstream file(std::string(ZELK_TEST_DIR "/json/") + table);
    std::vector<Case> cases;
    std::set<std::string> names;
    std::string section;
    for (std::string line; std::getline(file, line);) {
        if (line.empty())
            continue;
        if (line[0] == '#') {
            section = line.substr(2);
            continue;
        }
        Case each;
        for (std::size_t begin = 0; begin != std::string::npos;) {
            std::size_t const tab = line.find('\t', begin);
            std::string const field = line.substr(begin, tab == std::string::npos ? tab : tab - begin);
            if (begin == 0)
                each.name = section + ": " + field;
            else
                each.fields.push_back(bytesOf(field));
            begin = tab == std::string::npos ? tab : tab + 1;
        }
        if (each.fields.size() != fieldCount)
            throw std::runtime_error(table + ": wrong number of fields: " + line);
        if (!names.insert(each.name).second)
            throw std::runtime_error(table + ": name occurs twice: " + each.name);
        cases.push_back(each);
    }
    return cases;
}

void expectAccepted(std::string const& text, std::string const& printed)
{
    try {
        MetaData::Element const tree = readText(text);
        EXPECT_EQ(printText(tree), printed);
        EXPECT_EQ(readText(printed), tree);
        std::istringstream stream(text);
        EXPECT_EQ(readText(stream), tree);
    } catch (ParseError const& error) {
        ADD_FAILURE() << "refused: " << error.what();
    }
}

void expectRefused(std::string const& text, std::string const& place)
{
    try {
        readText(text);
        ADD_FAILURE() << "accepted";
    } catch (ParseError const& error) {
        EXPECT_EQ(std::to_string(error.line()) + ":" + std::to_string(error.column()), place) << error.what();
    }
    std::istringstream stream(text);
    EXPECT_THROW(readText(stream), ParseError);
}

TEST(Conformance, AcceptsWhatIsJson)
{
    std::vector<Case> const cases = casesOf("accept.table", 2);
    EXPECT_GE(cases.size(), 90u);
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        expectAccepted(each.fields[0], each.fields[1]);
    }
}

TEST(Conformance, RefusesWhatIsNotJsonWhereItStopsBeingSo)
{
    std::vector<Case> const cases = casesOf("refuse.table", 2);
    EXPECT_GE(cases.size(), 170u);
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        expectRefused(each.fields[0], each.fields[1]);
    }
}

TEST(Conformance, AnswersAsDecidedWhereJsonLeavesItOpen)
{
    std::vector<Case> const cases = casesOf("decided.table", 3);
    EXPECT_GE(cases.size(), 25u);
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        if (each.fields[1] == "accepted") {
            expectAccepted(each.fields[0], each.fields[2]);
        } else {
            EXPECT_EQ(each.fields[1], "refused");
            expectRefused(each.fields[0], each.fields[2]);
        }
    }
}

} // namespace
} // namespace Zelk::Json
