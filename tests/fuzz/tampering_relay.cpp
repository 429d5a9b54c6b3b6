#include "tests/fuzz/tampering_relay.h"

#include <sys/socket.h>

#include <utility>

#include "tests/support/giop.h"
#include "tests/support/loopback.h"

namespace velmo::tests {

TamperingRelay::TamperingRelay(std::uint16_t target_port)
    : target(target_port), listener(listening_socket(number))
{
    thread = std::thread([this] { run(); });
}

TamperingRelay::~TamperingRelay()
{
    shutdown(listener.get(), SHUT_RDWR);
    thread.join();
}

void TamperingRelay::tamper_with(Tamper with)
{
    const std::lock_guard lock(mutex);
    tamper = std::move(with);
}

void TamperingRelay::run()
{
    for (;;) {
        const Descriptor client(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (client.get() < 0)
            return;
        serve(client);
    }
}

void TamperingRelay::serve(const Descriptor& client)
{
    const Descriptor server = connected_socket(target);
    for (;;) {
        const std::string request = giop::receive(client);
        if (request.empty() || !giop::send(server, request))
            return;
        std::string reply = giop::receive(server);
        const bool last = tampered_with(reply);
        if (!giop::send(client, reply) || last)
            return;
    }
}

bool TamperingRelay::tampered_with(std::string& message)
{
    Tamper with;
    {
        const std::lock_guard lock(mutex);
        with = std::exchange(tamper, nullptr);
    }
    if (!with)
        return false;
    with(message);
    return true;
}

} // namespace velmo::tests
