#include "cli/forwarded_signals.h"

#include <cerrno>
#include <csignal>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace velmo::cli {

namespace {

constexpr int forwarded[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
struct sigaction outer[std::size(forwarded)];
struct sigaction outer_stop;
int noting_pipe[2] = {-1, -1};

void note(int signal)
{
    const int error = errno;
    const auto byte = static_cast<unsigned char>(signal);
    static_cast<void>(!write(noting_pipe[1], &byte, 1));
    errno = error;
}

struct sigaction with(void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    return action;
}

} // namespace

ForwardedSignals::ForwardedSignals()
{
    if (pipe2(noting_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    const struct sigaction noting = with(note), ignoring = with(SIG_IGN);
    for (std::size_t i = 0; i < std::size(forwarded); ++i)
        sigaction(forwarded[i], &noting, &outer[i]);
    sigaction(SIGTSTP, &ignoring, &outer_stop);
}

ForwardedSignals::~ForwardedSignals()
{
    for (std::size_t i = 0; i < std::size(forwarded); ++i)
        sigaction(forwarded[i], &outer[i], nullptr);
    sigaction(SIGTSTP, &outer_stop, nullptr);
    for (int& end : noting_pipe)
        close(end);
}

std::optional<int> ForwardedSignals::take() const
{
    unsigned char signal;
    return read(noting_pipe[0], &signal, 1) == 1 ? std::optional<int>(signal)
                                                 : std::nullopt;
}

int ForwardedSignals::descriptor() const
{
    return noting_pipe[0];
}

} // namespace velmo::cli
