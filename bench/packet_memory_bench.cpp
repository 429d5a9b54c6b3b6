// The memory that each process needs at most while a packet of 64 MiB passes: the sender,
// velmod, and the receiver.
//
//     packet_memory_bench [send|receive]    the client that the rest of it starts
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "bench/measure.h"
#include "bench/peak_memory.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vl_api.h"
#include "vl_result.h"

namespace {

using namespace velmo::bench;
using velmo::tests::Process;
using velmo::tests::SettingsFile;
using velmo::tests::Velmod;

constexpr unsigned int port = 1;
constexpr int packet_bytes = 64 << 20;

int send()
{
    const std::vector<char> packet(packet_bytes, 'x');
    return vl_send_packet(port, packet.data(), packet_bytes, 0, nullptr, nullptr);
}

int receive()
{
    void* data = nullptr;
    unsigned int length = 0;
    const int result =
        vl_receive_packetv(port, nullptr, &data, &length, 0, nullptr, nullptr);
    vl_free_memory(&data);
    return result == VL_OK && length != packet_bytes ? VL_FAIL : result;
}

// All that the process has ever needed, its program and libraries included.
void print_peak(const char* of, pid_t process)
{
    const double peak = memory_of(process, "VmHWM");
    print({"memory", std::string("peak memory of ") + of + ", over a packet of 64 MiB",
           "ratio", peak / packet_bytes, bar(2.2, "lower")});
}

void run_client(const char* what)
{
    Process client({"/proc/self/exe", what});
    if (client.wait() != 0)
        throw std::runtime_error(std::string(what) + ": " + client.err());
    std::fputs(client.out().c_str(), stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1) {
        const bool sends = std::strcmp(argv[1], "send") == 0;
        if ((sends ? send() : receive()) != VL_OK)
            return 1;
        print_peak(sends ? "the sender" : "the receiver", getpid());
        return 0;
    }
    Velmod velmod;
    const SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    if (vl_create_port("large", port, 0, nullptr, nullptr) != VL_OK)
        return 1;
    run_client("send");
    run_client("receive");
    print_peak("velmod", velmod.process().pid());
    return 0;
}
