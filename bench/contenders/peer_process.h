// The servers that are programs of this folder.
#ifndef VELMO_BENCH_CONTENDERS_PEER_PROCESS_H
#define VELMO_BENCH_CONTENDERS_PEER_PROCESS_H

#include <stdexcept>
#include <string>

#include "bench/contenders/contender.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::bench {

// peer_server KIND [PATH], listening.
class PeerProcess {
public:
    PeerProcess(const std::string& kind, Transport transport)
        : process(command(kind, transport))
    {
        const auto line = process.wait_ready();
        if (!line)
            throw std::runtime_error(kind + " does not start: " + process.err());
        listens_on = *line;
    }

    // A path, or a port of 127.0.0.1.
    const std::string& address() const { return listens_on; }

private:
    tests::Process::Command command(const std::string& kind, Transport transport) const
    {
        tests::Process::Command words{PEER_SERVER_PATH, kind};
        if (transport == Transport::unix_socket)
            words.push_back(folder.path() / "socket");
        return words;
    }

    tests::TemporaryFolder folder;
    tests::Process process;
    std::string listens_on;
};

} // namespace velmo::bench

#endif
