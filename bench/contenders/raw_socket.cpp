#include "bench/contenders/contender.h"
#include "bench/contenders/peer_process.h"
#include "bench/contenders/stream_socket.h"

namespace velmo::bench {

namespace {

constexpr std::uint32_t code_bytes = 4;  // an answer without data
constexpr std::uint32_t name_bytes = 16; // a request without data

class RawClient final : public Client {
public:
    explicit RawClient(const std::string& address) : socket(connect_to(address)) {}

    void set(const Bytes& value) override
    {
        std::uint32_t code = 0;
        call(value.data(), static_cast<std::uint32_t>(value.size()), &code, code_bytes);
    }
    void get(Bytes& value) override
    {
        const char name[name_bytes] = "plant/value 1";
        call(name, name_bytes, value.data(), static_cast<std::uint32_t>(value.size()));
    }

private:
    void call(const void* request, std::uint32_t request_bytes, void* answer,
              std::uint32_t answer_bytes)
    {
        RequestHeader header{request_bytes, answer_bytes};
        iovec parts[] = {{&header, sizeof header},
                         {const_cast<void*>(request), request_bytes}};
        expect(write_all(socket.get(), parts, 2) &&
                   read_all(socket.get(), answer, answer_bytes),
               "the bare socket");
    }

    tests::Descriptor socket;
};

class RawSocket final : public Contender {
public:
    explicit RawSocket(Transport transport) : process("raw", transport) {}

    std::unique_ptr<Client> connect() override
    {
        return std::make_unique<RawClient>(process.address());
    }

private:
    PeerProcess process;
};

} // namespace

std::unique_ptr<Contender> make_raw_socket(Transport transport)
{
    return std::make_unique<RawSocket>(transport);
}

} // namespace velmo::bench
