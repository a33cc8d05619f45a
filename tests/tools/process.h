/// Runs programs as their users do and tells what came out.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace ZelkTest {

struct Result {
    int status = -1; ///< exit status; 128 and the number of the signal when one ended the program
    std::string out;
    std::string err;
};

struct Setting {
    std::string input;                              ///< standard input
    std::string folder;                             ///< where the program runs; empty: here
    std::map<std::string, std::string> environment; ///< added to that of the test
};

/// Runs the command to its end.
Result run(std::vector<std::string> const& command, Setting const& setting = {});

/// zelk-msg with these arguments; messages of the data folder may be named as they are.
Result zelkMsg(std::vector<std::string> const& arguments, Setting setting = {});

/// The content of a file.
std::string contentOf(std::string const& path);

/// The content of a file in the folder of expected outputs.
std::string expected(std::string const& name);

/// A file that exists as long as this object.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string const& content = "");
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile();
    std::string const& path() const { return path_; }
    void append(std::string const& content) const;

private:
    std::string path_;
};

} // namespace ZelkTest
