#include "bench/contenders/contender.h"

#include <stdexcept>

namespace velmo::bench {

void Client::send(const Bytes&)
{
    throw std::runtime_error("this server has no queues");
}

void Client::receive(std::size_t)
{
    throw std::runtime_error("this server has no queues");
}

const char* in_words(Transport transport)
{
    return transport == Transport::unix_socket ? "unix" : "TCP";
}

void expect(bool good, const char* what)
{
    if (!good)
        throw std::runtime_error(std::string("not as it has to be: ") + what);
}

} // namespace velmo::bench
