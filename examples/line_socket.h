/// Lines of text over a Unix domain socket: how the two example programs carry their messages.
#pragma once

#include <cerrno>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>

/// One end of a connection, or a place where connections arrive. Every failure is a std::system_error.
class LineSocket {
public:
    /// A place at `path` where connections arrive.
    static LineSocket listenAt(std::string const& path)
    {
        LineSocket socket;
        ::unlink(path.c_str()); // what a former run left behind
        sockaddr_un const address = addressOf(path);
        socket.check(::bind(socket.descriptor_, reinterpret_cast<sockaddr const*>(&address), sizeof address));
        socket.check(::listen(socket.descriptor_, 8));
        return socket;
    }

    /// A connection to whoever listens at `path`.
    static LineSocket connectTo(std::string const& path)
    {
        LineSocket socket;
        sockaddr_un const address = addressOf(path);
        socket.check(
            ::connect(socket.descriptor_, reinterpret_cast<sockaddr const*>(&address), sizeof address));
        return socket;
    }

    LineSocket(LineSocket&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)), received_(std::move(other.received_))
    {}
    LineSocket& operator=(LineSocket&&) = delete;
    ~LineSocket()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }

    /// Waits for the next connection.
    LineSocket accept() const
    {
        int const descriptor = ::accept(descriptor_, nullptr, nullptr);
        check(descriptor);
        return LineSocket(descriptor);
    }

    void sendLine(std::string line) const
    {
        line += '\n';
        for (std::size_t sent = 0; sent < line.size();) {
            ssize_t const count = ::send(descriptor_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
            check(count);
            sent += static_cast<std::size_t>(count);
        }
    }

    /// The next line without its end; false when the other side has closed the connection.
    bool receiveLine(std::string& line)
    {
        constexpr std::size_t longest = 1 << 20; // nobody can make this side store more
        for (;;) {
            std::size_t const end = received_.find('\n');
            if (end != std::string::npos) {
                line = received_.substr(0, end);
                received_.erase(0, end + 1);
                return true;
            }
            if (received_.size() > longest)
                throw std::system_error(EMSGSIZE, std::generic_category(), "socket");
            char chunk[4096];
            ssize_t const count = ::recv(descriptor_, chunk, sizeof chunk, 0);
            check(count);
            if (count == 0)
                return false;
            received_.append(chunk, static_cast<std::size_t>(count));
        }
    }

private:
    LineSocket() : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) { check(descriptor_); }
    explicit LineSocket(int descriptor) : descriptor_(descriptor) {}

    static void check(long long result)
    {
        if (result < 0)
            throw std::system_error(errno, std::generic_category(), "socket");
    }

    static sockaddr_un addressOf(std::string const& path)
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path)
            throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
        path.copy(address.sun_path, path.size());
        return address;
    }

    int descriptor_;
    std::string received_;
};
