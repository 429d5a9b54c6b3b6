#include "tests/support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace velmo::tests {

namespace {

int checked(int result, const char* what)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

Descriptor memory_file(const char* name)
{
    Descriptor file(checked(memfd_create(name, MFD_CLOEXEC), "memfd_create"));
    // Otherwise what two processes write at the same time may land in the same place.
    checked(fcntl(file.get(), F_SETFL, O_APPEND), "fcntl");
    return file;
}

Descriptor input_file(const std::string& text)
{
    Descriptor file = memory_file("stdin");
    const ssize_t size = static_cast<ssize_t>(text.size());
    checked(pwrite(file.get(), text.data(), text.size(), 0) == size ? 0 : -1, "pwrite");
    return file;
}

std::string contents(const Descriptor& file)
{
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t got =
            pread(file.get(), block, sizeof block, static_cast<off_t>(text.size()));
        if (got <= 0)
            return text;
        text.append(block, static_cast<std::size_t>(got));
    }
}

std::vector<char*> pointers(std::vector<std::string>& strings)
{
    std::vector<char*> result;
    for (std::string& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> environment_with(Process::Environment additions)
{
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (!additions.count(text.substr(0, text.find('='))))
            result.push_back(text);
    }
    for (const auto& [name, value] : additions)
        result.push_back(name + "=" + value);
    return result;
}

struct ChildPlan {
    char** argv;
    char** envp;
    int in, out, err, ready;
    int terminal;
    pid_t parent;
};

// The child, between fork() and exec(): nothing here may allocate or lock, since
// another thread of the parent may have held any lock.
[[noreturn]] void become(const ChildPlan& plan)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != plan.parent)
        _exit(127);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (plan.terminal >= 0) {
        setsid();
        ioctl(plan.terminal, TIOCSCTTY, 0);
    }
    // First out of the way of the numbers that are about to be used.
    const int sources[] = {plan.in, plan.out, plan.err, plan.ready};
    int moved[4];
    for (int i = 0; i < 4; ++i)
        moved[i] = fcntl(sources[i], F_DUPFD, Process::ready_fd + 1);
    for (int i = 0; i < 4; ++i)
        dup2(moved[i], i);
    close_range(Process::ready_fd + 1, ~0u, 0);
    execve(plan.argv[0], plan.argv, plan.envp);
    _exit(127);
}

} // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    reset();
    fd = other.release();
    return *this;
}

void Descriptor::reset()
{
    if (fd >= 0)
        close(fd);
    fd = -1;
}

int Descriptor::release()
{
    const int number = fd;
    fd = -1;
    return number;
}

Process::Process(const Command& command, const Environment& additions,
                 const Streams& streams)
    : out_file(memory_file("stdout")), err_file(memory_file("stderr"))
{
    std::vector<std::string> arguments = command;
    std::vector<std::string> environment = environment_with(additions);
    const std::vector<char*> argv = pointers(arguments);
    const std::vector<char*> envp = pointers(environment);

    int ends[2];
    checked(pipe2(ends, O_CLOEXEC), "pipe2");
    ready = Descriptor(ends[0]);
    const Descriptor ready_end(ends[1]);
    const Descriptor input = input_file(streams.input);
    const auto chosen = [](int given, const Descriptor& otherwise) {
        return given >= 0 ? given : otherwise.get();
    };
    const ChildPlan plan{const_cast<char**>(argv.data()),
                         const_cast<char**>(envp.data()),
                         chosen(streams.in, input),
                         chosen(streams.out, out_file),
                         chosen(streams.err, err_file),
                         ready_end.get(),
                         streams.terminal,
                         getpid()};
    child = checked(fork(), "fork");
    if (child == 0)
        become(plan);
}

Process::~Process()
{
    if (!status) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

std::optional<std::string> Process::wait_ready(std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::string line;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd readable{ready.get(), POLLIN, 0};
        if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) <= 0)
            return std::nullopt;
        char character;
        if (read(ready.get(), &character, 1) != 1)
            return std::nullopt;
        if (character == '\n')
            return line;
        line.push_back(character);
    }
}

void Process::signal(int number)
{
    if (!status)
        kill(child, number);
}

void Process::suspend()
{
    signal(SIGSTOP);
    if (!status)
        waitpid(child, nullptr, WUNTRACED);
}

std::optional<int> Process::wait(std::chrono::milliseconds limit)
{
    eventually(
        [this] {
            int raw = 0;
            if (!status && waitpid(child, &raw, WNOHANG) == child)
                status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
            return status.has_value();
        },
        limit);
    return status;
}

std::string Process::out() const
{
    return contents(out_file);
}

std::string Process::err() const
{
    return contents(err_file);
}

} // namespace velmo::tests
