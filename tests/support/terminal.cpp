#include "tests/support/terminal.h"

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include "tests/support/loopback.h"

namespace velmo::tests {

Terminal::Terminal(const Process::Command& command, const Process::Environment& additions,
                   Shows shows)
{
    int ours = -1, childs = -1;
    winsize size{};
    size.ws_row = 30;
    size.ws_col = 100;
    check_system_call(openpty(&ours, &childs, nullptr, nullptr, &size) == 0, "openpty");
    screen = Descriptor(ours);
    const Descriptor keyboard(childs);
    fcntl(ours, F_SETFD, FD_CLOEXEC);
    fcntl(ours, F_SETFL, O_NONBLOCK);
    fcntl(childs, F_SETFD, FD_CLOEXEC);

    Process::Environment environment = additions;
    environment.emplace("TERM", "xterm");
    Process::Streams streams;
    streams.in = streams.terminal = childs;
    streams.out = shows == Shows::messages ? -1 : childs;
    streams.err = shows == Shows::results ? -1 : childs;
    child.emplace(command, environment, streams);
}

void Terminal::type(const std::string& keys)
{
    const auto size = static_cast<ssize_t>(keys.size());
    check_system_call(write(screen.get(), keys.data(), keys.size()) == size, "write");
}

const std::string& Terminal::shown()
{
    char block[4096];
    for (;;) {
        const ssize_t count = read(screen.get(), block, sizeof block);
        if (count <= 0) // nothing now, or (EIO) the child has gone
            return received;
        received.append(block, static_cast<std::size_t>(count));
    }
}

bool Terminal::wait_for(const std::string& text, std::chrono::milliseconds limit)
{
    return eventually(
        [&] {
            const std::size_t at = shown().find(text, found);
            if (at != std::string::npos)
                found = at + text.size();
            return at != std::string::npos;
        },
        limit);
}

std::optional<int> Terminal::wait(std::chrono::milliseconds limit)
{
    eventually(
        [&] {
            shown(); // or the child could not go on writing
            return !child->running();
        },
        limit);
    shown();
    return child->wait(std::chrono::milliseconds(0));
}

} // namespace velmo::tests
