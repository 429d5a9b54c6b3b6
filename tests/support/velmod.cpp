#include "tests/support/velmod.h"

#include <algorithm>
#include <csignal>
#include <stdexcept>

namespace velmo::tests {

std::string velmod_path()
{
    return VELMOD_PATH;
}

Velmod::Velmod(std::vector<std::string> given_arguments, Process::Environment additions,
               std::string other_program)
    : program(other_program.empty() ? velmod_path() : std::move(other_program)),
      arguments(std::move(given_arguments)), environment(std::move(additions))
{
    environment.emplace("XDG_RUNTIME_DIR", runtime_folder.path().string());
    if (std::find(arguments.begin(), arguments.end(), "--listen") == arguments.end())
        arguments.insert(arguments.begin(), {"--listen", "127.0.0.1:0"});
    start();
}

void Velmod::start()
{
    Process::Command command{program, "--ready-fd", std::to_string(Process::ready_fd)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    running.emplace(command, environment);
    const std::optional<std::string> line = running->wait_ready();
    if (!line)
        throw std::runtime_error("velmod does not start: " + running->out() +
                                 running->err());
    url = *line;
}

std::uint16_t Velmod::port() const
{
    const std::size_t slash = url.rfind('/');
    const std::size_t colon = url.rfind(':', slash);
    return static_cast<std::uint16_t>(std::stoul(url.substr(colon + 1, slash - colon - 1)));
}

std::optional<int> Velmod::stop()
{
    running->signal(SIGTERM);
    return running->wait();
}

void Velmod::kill()
{
    running->signal(SIGKILL);
    running->wait();
}

void Velmod::restart()
{
    // Where it published its own naming service, that is where it has to be again.
    const bool own_naming =
        std::find(arguments.begin(), arguments.end(), "--naming") == arguments.end();
    const auto listen = std::find(arguments.begin(), arguments.end(), "127.0.0.1:0");
    if (own_naming && listen != arguments.end())
        *listen = "127.0.0.1:" + std::to_string(port());
    start();
}

} // namespace velmo::tests
