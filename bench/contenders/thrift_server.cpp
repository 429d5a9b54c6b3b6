#include "bench/contenders/thrift_server.h"

#include <deque>
#include <mutex>
#include <unordered_map>

#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/server/TThreadedServer.h>
#include <thrift/transport/TBufferTransports.h>
#include <thrift/transport/TServerSocket.h>

#include "Store.h"

namespace velmo::bench {

namespace {

class Store final : public peer::StoreIf {
public:
    void set_value(const std::string& name, const std::string& value) override
    {
        const std::lock_guard lock(mutex);
        values[name] = value;
    }
    void get_value(std::string& value, const std::string& name) override
    {
        const std::lock_guard lock(mutex);
        value = values[name];
    }
    void send_packet(const std::string& name, const std::string& packet) override
    {
        const std::lock_guard lock(mutex);
        queues[name].push_back(packet);
    }
    void receive_packet(std::string& packet, const std::string& name) override
    {
        const std::lock_guard lock(mutex);
        auto& queue = queues[name];
        if (queue.empty())
            return;
        packet = std::move(queue.front());
        queue.pop_front();
    }

private:
    std::mutex mutex;
    std::unordered_map<std::string, std::string> values;
    std::unordered_map<std::string, std::deque<std::string>> queues;
};

// Tells where it listens as soon as it does.
class Announcing final : public apache::thrift::server::TServerEventHandler {
public:
    explicit Announcing(std::function<void()> its_action) : action(std::move(its_action)) {}
    void preServe() override { action(); }

private:
    const std::function<void()> action;
};

} // namespace

void serve_thrift(const std::string& address,
                  const std::function<void(const std::string&)>& announce)
{
    using namespace apache::thrift;
    const auto socket = address.empty()
                            ? std::make_shared<transport::TServerSocket>("127.0.0.1", 0)
                            : std::make_shared<transport::TServerSocket>(address);
    server::TThreadedServer server(
        std::make_shared<peer::StoreProcessor>(std::make_shared<Store>()), socket,
        std::make_shared<transport::TBufferedTransportFactory>(),
        std::make_shared<protocol::TBinaryProtocolFactory>());
    server.setServerEventHandler(std::make_shared<Announcing>(
        [&] { announce(address.empty() ? std::to_string(socket->getPort()) : address); }));
    server.serve();
}

} // namespace velmo::bench
