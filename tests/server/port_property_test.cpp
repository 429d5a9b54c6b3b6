// Thousands of random operations on ports and on a simple reference model: the same
// results.
#include <random>

#include "tests/server/images.h"
#include "tests/server/port_fixture.h"
#include "tests/server/reference_ports.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

constexpr std::size_t queue_bytes = 40;
constexpr int operations = 20000;

// The sequence of a number is always the same.
class PortProperty : public PortFixture, public ::testing::WithParamInterface<unsigned> {
protected:
    PortProperty() : PortFixture(narrow_limits(queue_bytes)) {}

    std::uint32_t below(std::uint32_t end)
    {
        return static_cast<std::uint32_t>(random()) % end;
    }

    // One more than there ever are.
    model::Handle any_handle() { return below(9); }
    std::string any_name() { return below(30) == 0 ? "" : name(any_handle()); }

    std::string any_text()
    {
        std::string text = std::to_string(++texts);
        if (below(20) == 0)
            text.resize(below(queue_bytes + 3), '.');
        return text;
    }

    std::uint32_t any_mode()
    {
        constexpr std::uint32_t modes[] = {plain,     plain, plain,    from_host,
                                           from_host, 30003, exclusive};
        return modes[below(7)];
    }

    void create_port()
    {
        const model::Handle handle = below(8);
        const std::string port = below(10) == 0 ? any_name() : name(handle);
        const std::uint32_t capacity = 1 + below(6);
        ASSERT_EQ(ports.create_port(port, handle, capacity),
                  reference.create_port(port, handle, capacity));
    }

    void connect_port()
    {
        const std::string from = any_name(), to = any_name();
        const std::uint32_t mode = any_mode();
        ASSERT_EQ(ports.connect_port(from, to, mode),
                  reference.connect_port(from, to, mode));
    }

    void change_a_port()
    {
        const std::string port = any_name();
        const std::uint32_t enable = below(3);
        const model::Handle handle = any_handle();
        ASSERT_EQ(ports.enable_copy(port, enable), reference.enable_copy(port, enable));
        ASSERT_EQ(ports.register_port_host(port, "host"),
                  reference.register_port_host(port, "host"));
        if (below(4) == 0) {
            ASSERT_EQ(ports.disconnect_port(handle), reference.disconnect_port(handle));
        }
    }

    void send()
    {
        const model::Handle handle = any_handle();
        const std::string text = any_text();
        const bool to_front = below(4) == 0;
        ASSERT_EQ(to_front ? ports.send_packet_to_front(handle, bytes_of(text), 0)
                           : ports.send_packet(handle, bytes_of(text), 0),
                  reference.send(handle, text, to_front));
    }

    void receive()
    {
        const model::Handle handle = any_handle();
        const std::uint64_t from = below(3) == 0 ? any_handle() : 0;
        model::Data packet = bytes_of("");
        std::string expected;
        ASSERT_EQ(ports.receive_packet(handle, from, packet, 0),
                  reference.receive_packet(handle, from, expected));
        ASSERT_EQ(model::as_text(packet), expected);
    }

    void reply()
    {
        const model::Handle handle = any_handle();
        const std::string text = any_text();
        ASSERT_EQ(ports.reply_packet(handle, bytes_of(text), 0),
                  reference.reply_packet(handle, text));
    }

    void receive_reply()
    {
        const model::Handle handle = any_handle();
        model::Data packet = bytes_of("");
        std::string expected;
        ASSERT_EQ(ports.receive_reply(handle, packet, 0),
                  reference.receive_reply(handle, expected));
        ASSERT_EQ(model::as_text(packet), expected);
    }

    void look()
    {
        std::vector<std::pair<std::string, std::string>> seen;
        for (const model::ConnectionNames& connection : ports.connections())
            seen.emplace_back(connection.from, connection.to);
        ASSERT_EQ(seen, reference.connections());
    }

    // What the reference has no idea of: it must not show.
    void save_and_restore()
    {
        const model::PortsImage image = ports.image();
        ASSERT_EQ(ports.restore(image), VL_OK);
        ASSERT_TRUE(ports.image() == image);
    }

    void do_anything()
    {
        const std::uint32_t what = below(100);
        if (what < 3)
            create_port();
        else if (what < 12)
            connect_port();
        else if (what < 16)
            change_a_port();
        else if (what < 46)
            send();
        else if (what < 74)
            receive();
        else if (what < 87)
            reply();
        else if (what < 97)
            receive_reply();
        else if (what < 99)
            look();
        else
            save_and_restore();
    }

    std::mt19937 random{GetParam()};
    ReferencePorts reference{queue_bytes};
    unsigned texts = 0;
};

TEST_P(PortProperty, ResultsAreThoseOfTheReference)
{
    for (int i = 0; i < operations; ++i) {
        do_anything();
        ASSERT_FALSE(HasFatalFailure()) << "operation " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Sequences, PortProperty, ::testing::Range(1u, 6u));

} // namespace
