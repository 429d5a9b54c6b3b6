// peer_server raw|thrift [PATH]: one of the servers that velmod is compared with. Listens
// on the unix socket or a free port of 127.0.0.1, which it writes to descriptor 3.
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string>

#include "bench/contenders/stream_socket.h"
#include "bench/contenders/thrift_server.h"
#include "tests/support/process.h"

int main(int argc, char** argv)
try {
    const std::string kind = argc > 1 ? argv[1] : "";
    std::string address = argc > 2 ? argv[2] : "";
    const auto announce = [](const std::string& listens_on) {
        dprintf(velmo::tests::Process::ready_fd, "%s\n", listens_on.c_str());
    };
    if (kind == "thrift") {
        velmo::bench::serve_thrift(address, announce);
        return 0;
    }
    const velmo::tests::Descriptor listener = velmo::bench::listen_on(address);
    announce(address);
    velmo::bench::serve_raw(listener);
} catch (const std::exception& error) {
    std::fprintf(stderr, "peer_server: %s\n", error.what());
    return 1;
}
