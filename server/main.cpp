// velmod, the Velmo server.
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CQuilp.h"
#include "server/log.h"
#include "server/process.h"
#include "server/server.h"

namespace {

using namespace velmo;
using server::Options;
using server::Server;

// Blocked in every thread, so that only sigwait() sees them.
sigset_t block_signals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

std::string status(const Server& velmod)
{
    return "Serving, naming " + velmod.naming_url();
}

void announce(const Options& options, const Server& velmod)
{
    const std::string& url = velmod.naming_url();
    server::log_event("ready", {{"server", options.server}, {"naming", url}});
    server::notify_ready(status(velmod));
    std::printf("velmod: server %s ready, naming %s\n", options.server.c_str(),
                url.c_str());
    std::fflush(stdout);
    if (options.ready_fd < 0)
        return;
    const std::string line = url + "\n";
    if (write(options.ready_fd, line.data(), line.size()) < 0)
        server::log_event("unread", {{"descriptor", std::to_string(options.ready_fd)}});
    close(options.ready_fd);
}

void reload(Server& velmod, const server::Arguments& arguments)
{
    server::notify_reloading();
    try {
        velmod.reload(server::read_options(arguments));
    } catch (const std::exception& error) {
        server::log_event("reload-failed", {{"reason", error.what()}});
    }
    server::notify_ready(status(velmod));
}

int run(const Options& options, const server::Arguments& arguments, const sigset_t& signals)
{
    server::raise_descriptor_limit();
    Server velmod(options);
    announce(options, velmod);

    int signal = 0;
    while (sigwait(&signals, &signal) != 0 || signal == SIGHUP)
        reload(velmod, arguments);
    server::log_event( // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody else asks for one
        "stopping", {{"server", options.server}, {"signal", strsignal(signal)}});
    server::notify_stopping();
    if (!velmod.stop()) {
        server::log_event("abandoned", {{"reason", "a client does not take its answer"}});
        CQuilp::instance()->flush();
        std::_Exit(EXIT_SUCCESS);
    }
    server::log_event("stopped", {{"server", options.server}});
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
    server::keep_freed_memory();
    const server::Arguments arguments(argv + std::min(argc, 1), argv + argc);
    std::optional<Options> options;
    try {
        int exit_status = EXIT_SUCCESS;
        std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error, not the end
        options = server::parse_options(arguments, exit_status);
        if (!options)
            return exit_status;
        return run(*options, arguments, block_signals());
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
