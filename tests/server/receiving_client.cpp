// A client that receives once: receiving_client URL PORT FROM
#include <cstdlib>

#include "tests/server/client.h"

int main(int, char** argv)
{
    using namespace velmo::tests;
    const auto number = [&](int i) {
        return static_cast<CORBA::ULong>(std::strtoul(argv[i], nullptr, 10));
    };
    Velmo::DATA_BUFFER_var data;
    return port_service(argv[1])->receive_packet(number(2), number(3), data.out(),
                                                 0xFFFFFFFF);
}
