#include "tools/zelk-msg/input.h"

#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/output.h"
#include "tools/zelk-msg/progress.h"
#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <new>
#include <unistd.h>

namespace ZelkMsg {

int readMessages(std::vector<std::string> files,
                 std::function<void(TextSource const& source, Reception& reception)> const& visit,
                 std::function<void()> const& beforeWaiting, bool follow)
{
    if (files.empty())
        files.emplace_back("-");
    int status = fine;
    for (std::string const& file : files) {
        try {
            TextSource source(file, longestText(), beforeWaiting, follow);
            Progress progress(source.name(), source.size());
            Text text;
            while (source.next(text)) {
                receive(text, [&](Reception& reception) {
                    if (!reception.accepted())
                        status = std::max<int>(status, findings);
                    try {
                        visit(source, reception);
                    } catch (std::bad_alloc const&) {
                        // It could be read, but not also shown.
                        complain(errorLine(source.name(), reception.begin, tooMuchMemory()));
                        status = std::max<int>(status, findings);
                    }
                });
                progress.show(source.position());
            }
        } catch (UnreadableFile const& e) {
            complain(std::string("zelk-msg: ") + e.what());
            status = trouble;
        }
    }
    return status;
}

void complain(std::string const& what)
{
    wipeProgress();
    std::string const line = harmless(what) + '\n';
    // Nobody is left to be told when this fails.
    [[maybe_unused]] ssize_t const written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace ZelkMsg
