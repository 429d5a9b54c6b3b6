// velmod, the Velmo server.
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CQuilp.h"
#include "server/server.h"

namespace {

using namespace velmo;
using server::Options;
using server::Server;

// Blocked in every thread, so that only sigwait() sees them.
sigset_t block_end_signals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void announce(const Options& options, const std::string& url)
{
    std::printf("velmod: server %s ready, naming %s\n", options.server.c_str(),
                url.c_str());
    std::fflush(stdout);
    if (options.ready_fd < 0)
        return;
    const std::string line = url + "\n";
    if (write(options.ready_fd, line.data(), line.size()) < 0)
        CQuilp::instance()->vl_log("velmod: nobody reads descriptor %d", options.ready_fd);
    close(options.ready_fd);
}

int run(const Options& options, const sigset_t& end_signals)
{
    Server velmod(options);
    announce(options, velmod.naming_url());

    int signal = 0;
    sigwait(&end_signals, &signal);
    CQuilp::instance()->vl_log("velmod: server %s stops (%s)", options.server.c_str(),
                               strsignal(signal));
    if (!velmod.stop()) {
        CQuilp::instance()->vl_log(
            "velmod: a client does not take its answer; ending anyway");
        CQuilp::instance()->flush();
        std::_Exit(EXIT_SUCCESS);
    }
    return EXIT_SUCCESS;
}

int fail(const std::string& what)
{
    std::fprintf(stderr, "velmod: %s\n", what.c_str());
    return EXIT_FAILURE;
}

std::string cannot_listen(const Options& options, const orb::EndpointError& error)
{
    std::string places;
    for (const orb::Endpoint& endpoint : options.endpoints)
        places.append(places.empty() ? "" : ", ").append(server::host_and_port(endpoint));
    if (!options.unix_socket.empty())
        places.append(", ").append(options.unix_socket);
    const orb::Endpoint& first = options.endpoints.front();
    std::string text = "cannot listen on " + places + ": " + error.what();
    if (first.port != 0)
        text += "\nMost likely another program does; once omniNames is installed, Debian "
                "starts "
                "it on port 2809. To register with the naming service there:\n"
                "    velmod --naming corbaloc::1.2@" +
                server::host_and_port(first) + "/NameService";
    return text +
           "\nTo listen elsewhere, on any free port:\n    velmod --listen 127.0.0.1:0";
}

std::string cannot_register(const Options& options, const std::runtime_error& error)
{
    return "cannot register with the naming service at " + options.naming + ": " +
           error.what() +
           "\nStart that naming service first, correct --naming, or leave it out: then "
           "velmod "
           "answers for naming itself.";
}

} // namespace

int main(int argc, char** argv)
{
    int exit_status = EXIT_SUCCESS;
    const std::optional<Options> options = server::parse_options(argc, argv, exit_status);
    if (!options)
        return exit_status;
    const sigset_t end_signals = block_end_signals();
    try {
        return run(*options, end_signals);
    } catch (const orb::EndpointError& error) {
        return fail(cannot_listen(*options, error));
    } catch (const naming::RegistrationError& error) {
        return fail(cannot_register(*options, error));
    } catch (const CORBA::Exception& error) {
        return fail(orb::describe(error));
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}
