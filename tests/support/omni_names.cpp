#include "tests/support/omni_names.h"

#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/loopback.h"

namespace velmo::tests {

namespace {

constexpr int attempts = 10;

} // namespace

OmniNames::OmniNames()
{
    // The port may be taken between its choice and its use.
    for (int i = 0; i < attempts; ++i) {
        number = free_port();
        if (start())
            return;
    }
    throw std::runtime_error("omniNames does not start: " + log());
}

bool OmniNames::start()
{
    const std::string data = folder.path().string();
    std::filesystem::remove(folder.path() / "errors");
    const std::string port_text = std::to_string(number);
    running.emplace(Process::Command{OMNI_NAMES_PATH, "-start", port_text, "-always",
                                     "-datadir", data, "-errlog", data + "/errors",
                                     "-ORBendPoint", "giop:tcp:127.0.0.1:" + port_text});
    // It says so once the port is its own.
    eventually([this] {
        return !running->running() || log().find("Root context is") != std::string::npos;
    });
    return running->running();
}

std::string OmniNames::naming_url() const
{
    return tests::naming_url(number);
}

void OmniNames::kill()
{
    running->signal(SIGKILL);
    running->wait();
}

void OmniNames::restart()
{
    if (!start())
        throw std::runtime_error("omniNames does not start again: " + log());
}

void OmniNames::restart_empty()
{
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        std::filesystem::remove(file);
    restart();
}

std::string OmniNames::log() const
{
    std::ostringstream text;
    text << std::ifstream(folder.path() / "errors").rdbuf();
    return text.str();
}

bool OmniNames::available()
{
    return access(OMNI_NAMES_PATH, X_OK) == 0;
}

} // namespace velmo::tests
