#include "tests/faults/network.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "tests/support/loopback.h"

namespace velmo::tests {

namespace {

constexpr const char* device_name = "wire";

Descriptor this_host()
{
    Descriptor result(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC));
    check_system_call(result.get() >= 0, "/proc/thread-self/ns/net");
    return result;
}

void go_to(const Descriptor& host)
{
    check_system_call(setns(host.get(), CLONE_NEWNET) == 0, "setns");
}

ifreq request(const char* device)
{
    ifreq result{};
    std::strncpy(result.ifr_name, device, IFNAMSIZ - 1);
    return result;
}

// Of a device of the calling thread's host.
void configure(unsigned long what, ifreq wanted)
{
    const Descriptor any(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    check_system_call(ioctl(any.get(), what, &wanted) == 0, "network device");
}

void set_address(unsigned long what, const char* address)
{
    ifreq wanted = request(device_name);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    inet_pton(AF_INET, address, &place.sin_addr);
    std::memcpy(&wanted.ifr_addr, &place, sizeof place);
    configure(what, wanted);
}

void bring_up(const char* device)
{
    ifreq wanted = request(device);
    wanted.ifr_flags = IFF_UP | IFF_RUNNING;
    configure(SIOCSIFFLAGS, wanted);
}

void take_address(const char* address)
{
    set_address(SIOCSIFADDR, address);
    set_address(SIOCSIFNETMASK, "255.255.255.0");
}

Descriptor open_device()
{
    Descriptor device(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
    ifreq wanted = request(device_name);
    wanted.ifr_flags = IFF_TUN | IFF_NO_PI;
    check_system_call(device.get() >= 0 && ioctl(device.get(), TUNSETIFF, &wanted) == 0,
                      "/dev/net/tun");
    return device;
}

} // namespace

// In a process of its own, lest the thread that asks gets into a new namespace.
std::string Network::unavailable()
{
    const pid_t child = fork();
    if (child == 0) {
        const bool good = unshare(CLONE_NEWNET) == 0;
        _exit(good && open("/dev/net/tun", O_RDWR) >= 0 ? 0 : errno);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status) == 0
               ? ""
               : "no network namespaces with tun devices: " +
                     std::generic_category().message(WEXITSTATUS(status));
}

Network::End Network::new_host(const char* address)
{
    check_system_call(unshare(CLONE_NEWNET) == 0, "unshare");
    End end{this_host(), open_device(), {}};
    bring_up("lo");
    take_address(address);
    bring_up(device_name);
    return end;
}

Network::Network()
    : home(this_host()), server(new_host(server_address)), client(new_host(client_address))
{
    int ends[2];
    check_system_call(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
    stop_reader = Descriptor(ends[0]);
    stop_writer = Descriptor(ends[1]);
    wire = std::thread([this] { run(); });
}

Network::~Network()
{
    stop_writer.reset();
    wire.join();
    static_cast<void>(setns(home.get(), CLONE_NEWNET));
}

Network::Visit::Visit(const Network& its_network) : network(its_network)
{
    go_to(network.server.host);
}

Network::Visit::~Visit()
{
    static_cast<void>(setns(network.client.host.get(), CLONE_NEWNET));
}

void Network::delay(std::chrono::milliseconds each_way)
{
    const std::lock_guard<std::mutex> guard(mutex);
    latency = each_way;
}

void Network::lose(int percent)
{
    const std::lock_guard<std::mutex> guard(mutex);
    loss = percent;
}

void Network::cut()
{
    lose(100);
}

void Network::heal()
{
    lose(0);
}

int Network::lost() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return lost_packets;
}

void Network::move_server(const char* address)
{
    on_server([address] { take_address(address); });
}

void Network::move_client(const char* address)
{
    take_address(address);
}

void Network::run()
{
    for (;;) {
        Clock::time_point next = Clock::now() + std::chrono::hours(1);
        for (const End* end : {&server, &client})
            if (!end->incoming.empty())
                next = std::min(next, end->incoming.front().due);
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
        pollfd waiting[] = {{stop_reader.get(), POLLIN, 0},
                            {server.device.get(), POLLIN, 0},
                            {client.device.get(), POLLIN, 0}};
        poll(waiting, 3, static_cast<int>(std::max<long long>(wait.count(), 0)));
        if (waiting[0].revents)
            return;
        take(server, client);
        take(client, server);
        deliver(server);
        deliver(client);
    }
}

void Network::take(const End& from, End& to)
{
    char bytes[1 << 16];
    for (;;) {
        const ssize_t count = read(from.device.get(), bytes, sizeof bytes);
        if (count <= 0)
            return;
        const std::lock_guard<std::mutex> guard(mutex);
        if (std::uniform_int_distribution<int>(1, 100)(random) <= loss)
            ++lost_packets;
        else
            to.incoming.push_back({Clock::now() + latency,
                                   std::string(bytes, static_cast<std::size_t>(count))});
    }
}

void Network::deliver(End& end)
{
    while (!end.incoming.empty() && end.incoming.front().due <= Clock::now()) {
        const std::string& bytes = end.incoming.front().bytes;
        static_cast<void>(!write(end.device.get(), bytes.data(), bytes.size()));
        end.incoming.pop_front();
    }
}

} // namespace velmo::tests
