// A client that receives once at each of some ports, at the same time:
// receiving_client URL PORT FROM [PORT...] [ORB options]
#include <cstdlib>
#include <future>
#include <vector>

#include "tests/server/client.h"

int main(int argc, char** argv)
{
    using namespace velmo::tests;
    const CORBA::ORB_var orb = CORBA::ORB_init(argc, argv);
    const auto number = [&](int i) {
        return static_cast<CORBA::ULong>(std::strtoul(argv[i], nullptr, 10));
    };
    const Port_Factory_var ports = port_service(argv[1]);
    const auto receive = [&](CORBA::ULong port) {
        Velmo::DATA_BUFFER_var data;
        return ports.in()->receive_packet(port, number(3), data.out(), 0xFFFFFFFF);
    };
    std::vector<std::future<CORBA::Long>> others;
    for (int i = 4; i < argc; ++i)
        others.push_back(std::async(std::launch::async, receive, number(i)));
    CORBA::Long result = receive(number(2));
    for (auto& other : others)
        result |= other.get();
    return result == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
