#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <thrift/transport/TSocket.h>

#include "Store.h"
#include "bench/contenders/contender.h"
#include "bench/contenders/peer_process.h"

namespace velmo::bench {

namespace {

class ThriftClient final : public Client {
public:
    ThriftClient(const std::shared_ptr<apache::thrift::transport::TSocket>& socket,
                 int number)
        : buffered(std::make_shared<apache::thrift::transport::TBufferedTransport>(socket)),
          store(std::make_shared<apache::thrift::protocol::TBinaryProtocol>(buffered)),
          name("plant/value " + std::to_string(number))
    {
        buffered->open();
    }

    void set(const Bytes& value) override { store.set_value(name, copied(value)); }
    void get(Bytes& value) override
    {
        store.get_value(text, name);
        expect(text.size() == value.size(), "Thrift's value");
    }
    void send(const Bytes& packet) override { store.send_packet(name, copied(packet)); }
    void receive(std::size_t length) override
    {
        store.receive_packet(text, name);
        expect(text.size() == length, "Thrift's packet");
    }

private:
    const std::string& copied(const Bytes& bytes)
    {
        text.assign(bytes.begin(), bytes.end());
        return text;
    }

    const std::shared_ptr<apache::thrift::transport::TBufferedTransport> buffered;
    peer::StoreClient store;
    const std::string name;
    std::string text;
};

class Thrift final : public Contender {
public:
    explicit Thrift(Transport its_transport)
        : transport(its_transport), process("thrift", its_transport)
    {
    }

    std::unique_ptr<Client> connect() override
    {
        using apache::thrift::transport::TSocket;
        const auto socket =
            transport == Transport::unix_socket
                ? std::make_shared<TSocket>(process.address())
                : std::make_shared<TSocket>("127.0.0.1", std::stoi(process.address()));
        return std::make_unique<ThriftClient>(socket, ++clients);
    }

private:
    const Transport transport;
    PeerProcess process;
    int clients = 0;
};

} // namespace

std::unique_ptr<Contender> make_thrift(Transport transport)
{
    return std::make_unique<Thrift>(transport);
}

} // namespace velmo::bench
