#include <cstring>
#include <atomic>
#include <stdexcept>

#include "bench/contenders/contender.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vl_api.h"
#include "vl_result.h"

namespace velmo::bench {

namespace {

constexpr const char* unix_server = "U";
constexpr const char* tcp_server = "T";

class VelmoClient final : public Client {
public:
    explicit VelmoClient(const char* its_server) : server(its_server)
    {
        static std::atomic<unsigned> clients{0};
        port = ++clients;
        name = "plant/value " + std::to_string(port);
        expect_ok(vl_create_data_template_point(name.c_str(), "bytes", server, nullptr));
        expect_ok(vl_create_port(name.c_str(), port, 0, server, nullptr));
    }

    void set(const Bytes& value) override
    {
        expect_ok(vl_set_data_template_point(
            name.c_str(), value.data(), static_cast<int>(value.size()), server, nullptr));
    }
    void get(Bytes& value) override
    {
        expect_ok(vl_get_data_template_point(
            name.c_str(), value.data(), static_cast<int>(value.size()), server, nullptr));
    }
    void send(const Bytes& packet) override
    {
        expect_ok(vl_send_packet(port, packet.data(), static_cast<int>(packet.size()), 0,
                                 server, nullptr));
    }
    void receive(std::size_t length) override
    {
        void* data = nullptr;
        unsigned int size = 0;
        expect_ok(vl_receive_packetv(port, nullptr, &data, &size, 0, server, nullptr));
        vl_free_memory(&data);
        expect(size == length, "velmod's packet");
    }

private:
    static void expect_ok(int result)
    {
        if (result != VL_OK)
            throw std::runtime_error("velmod: result " + std::to_string(result));
    }

    const char* const server;
    std::string name;
    unsigned port;
};

} // namespace

const char* server_name(Transport transport)
{
    return transport == Transport::unix_socket ? unix_server : tcp_server;
}

// Each with a data folder of its own, where they are to be durable.
struct Velmods::Running {
    explicit Running(bool durable)
        : on_unix(options(durable, unix_folder, {})),
          on_tcp(options(durable, tcp_folder, {"--no-unix"})),
          settings("local=\"U\"",
                   {{unix_server, on_unix.naming_url()}, {tcp_server, on_tcp.naming_url()}})
    {
    }

    static std::vector<std::string> options(bool durable,
                                            const tests::TemporaryFolder& folder,
                                            std::vector<std::string> more)
    {
        if (durable)
            more.insert(more.end(), {"--durable", "--data-dir", folder.path()});
        return more;
    }

    tests::TemporaryFolder unix_folder, tcp_folder;
    tests::Velmod on_unix; // the defaults
    tests::Velmod on_tcp;
    tests::SettingsFile settings;
};

Velmods::Velmods(bool durable) : running(std::make_unique<Running>(durable)) {}

Velmods::~Velmods() = default;

std::unique_ptr<Client> Velmods::connect(Transport transport)
{
    return std::make_unique<VelmoClient>(server_name(transport));
}

} // namespace velmo::bench
