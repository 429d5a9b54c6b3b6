#include "cli/interruption.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "cli/failure.h"

namespace velmo::cli {

namespace {

std::atomic<int> noted_signals{0};
int noting_pipe[2] = {-1, -1};
struct sigaction outer_interrupt, outer_termination;

void end_at_once(int)
{
    _exit(interrupted);
}

void note(int)
{
    const int error = errno;
    if (noted_signals++ > 0)
        _exit(interrupted);
    static_cast<void>(!write(noting_pipe[1], "", 1));
    errno = error;
}

void handle(int signal, void (*handler)(int), struct sigaction* before)
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, before);
}

} // namespace

void end_when_interrupted()
{
    handle(SIGINT, end_at_once, nullptr);
}

Interruption::Interruption()
{
    if (pipe2(noting_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    noted_signals = 0;
    handle(SIGINT, note, &outer_interrupt);
    handle(SIGTERM, note, &outer_termination);
}

Interruption::~Interruption()
{
    sigaction(SIGINT, &outer_interrupt, nullptr);
    sigaction(SIGTERM, &outer_termination, nullptr);
    for (int& end : noting_pipe)
        close(end);
}

bool Interruption::happened() const
{
    return noted_signals > 0;
}

void Interruption::wait(std::chrono::milliseconds time) const
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + time;
    while (!happened()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            return;
        pollfd readable{descriptor(), POLLIN, 0};
        poll(&readable, 1, static_cast<int>(left.count()));
    }
    throw Interrupted();
}

int Interruption::descriptor() const
{
    return noting_pipe[0];
}

} // namespace velmo::cli
