// The program of service_host.h: tells its references on descriptor 3 and serves
// until it is ended.

#include <unistd.h>

#include "tests/support/port_servant.h"
#include "tests/support/process.h"
#include "tests/support/service_servants.h"
#include "tests/support/test_orb.h"

namespace {

using namespace velmo::tests;

std::string ior(const CORBA::Object_var& object)
{
    const CORBA::String_var text = test_orb()->object_to_string(object.in());
    return text.in();
}

} // namespace

int main()
{
    Published<PortServant> ports;
    for (const char* operation : {"create_port", "connect_port", "register_port_host",
                                  "disconnect_port", "send_packet", "reply_packet"})
        ports->answer(operation, 0);
    for (const char* operation : {"receive_packet", "receive_reply"})
        ports->answer(operation, [] { return PortServant::Reply{0, "hello"}; });
    Published<ServiceManagerServant> manager;
    manager->realms = [] { return ServiceManagerServant::Realms{0, {{"alpha"}}}; };

    const std::string line = ior(ports.reference()) + " " + ior(manager.reference()) + "\n";
    if (write(Process::ready_fd, line.data(), line.size()) !=
        static_cast<ssize_t>(line.size()))
        return 1;
    test_orb()->run();
    return 0;
}
