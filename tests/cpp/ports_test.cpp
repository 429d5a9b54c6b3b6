// Ports, packets and replies.
#include <array>

#include "tests/e2e/one_server.h"
#include "velmo/velmo.hpp"

using namespace std::chrono_literals;
using namespace velmo::tests;

namespace {

class CppPorts : public OneServer {
protected:
    // "a" and "b", connected.
    void connect()
    {
        ports.create("a", 1).value();
        ports.create("b", 2).value();
        ports.connect("a", "b").value();
    }

    velmo::Ports ports;
};

TEST_F(CppPorts, AreCreatedWithANameAHandleAndACapacity)
{
    EXPECT_TRUE(ports.create(std::string("inbox"), 42, 1));
    EXPECT_EQ(ports.create("inbox", 43).code(), OBJECT_ALREADY_EXSIT);
    EXPECT_TRUE(ports.send(42, "first"));
    EXPECT_TRUE(ports.send(42, "second").error() == velmo::Condition::would_block);
    EXPECT_TRUE(ports.send(42, "second", 1ms).error() == SENDMSG_TIMEOUT);
}

TEST_F(CppPorts, PacketsGoToWhatIsConnected)
{
    connect();
    EXPECT_TRUE(ports.send(1, "hello"));
    const auto packet = ports.receive(2, 10s);
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->text(), "hello");
    EXPECT_EQ(packet->size(), 5U);
    EXPECT_TRUE(ports.receive(2).error() == EMPTY_QUEUE);
    EXPECT_TRUE(ports.receive(2, 1ms).error() == velmo::Condition::timed_out);
    EXPECT_TRUE(ports.receive(3).error() == velmo::Condition::not_found);
}

TEST_F(CppPorts, EmptyPacketsAreBlocksAsWell)
{
    connect();
    ASSERT_TRUE(ports.send(1, {}));
    auto packet = ports.receive(2);
    ASSERT_TRUE(packet);
    EXPECT_TRUE(packet->empty());
    EXPECT_NE(packet->data(), nullptr);
    void* block = packet->release();
    EXPECT_EQ(packet->data(), nullptr);
    vl_free_memory(&block);
}

TEST_F(CppPorts, BlocksCanBeMovedAndReplaced)
{
    connect();
    ASSERT_TRUE(ports.send(1, "first"));
    ASSERT_TRUE(ports.send(1, velmo::bytes_of(7)));
    velmo::Block kept = ports.receive(2).value();
    velmo::Block first = std::move(kept);
    EXPECT_EQ(first.text(), "first");
    EXPECT_EQ(kept.size(), 0U); // NOLINT(bugprone-use-after-move)
    kept = ports.receive(2).value();
    EXPECT_EQ(kept.as<int>(), 7);
    EXPECT_FALSE(kept.as<double>());
    first = std::move(kept);
    EXPECT_TRUE(ports.send(1, first)) << "a block is bytes";
}

TEST_F(CppPorts, APacketCanBeTheNextOne)
{
    connect();
    ASSERT_TRUE(ports.send(1, "second"));
    ASSERT_TRUE(ports.send_to_front(1, "first"));
    EXPECT_EQ(ports.receive(2)->text(), "first");
}

TEST_F(CppPorts, APacketCanBeAskedForBySender)
{
    connect();
    ports.create("c", 3).value();
    ports.connect("c", "b").value();
    ASSERT_TRUE(ports.send(1, "from a"));
    ASSERT_TRUE(ports.send(3, "from c"));
    EXPECT_EQ(ports.receive(2, {}, 3)->text(), "from c");
    std::string buffer(6, ' ');
    EXPECT_TRUE(ports.receive_into(2, buffer, {}, 3).error() == EMPTY_QUEUE);
    EXPECT_TRUE(ports.receive_into(2, buffer, {}, 1));
    EXPECT_EQ(buffer, "from a");
}

TEST_F(CppPorts, ABufferTakesAPacketOfItsLengthOnly)
{
    connect();
    const std::array<int, 2> numbers{3, 4};
    std::array<int, 2> buffer{};
    ASSERT_TRUE(ports.send(1, numbers));
    EXPECT_TRUE(ports.receive_into(2, buffer, 10s));
    EXPECT_EQ(buffer, numbers);
    std::byte byte{};
    EXPECT_EQ(ports.receive_into(2, velmo::Buffer(&byte, std::size_t{1} << 32)).code(), 123)
        << "not a buffer of no bytes";
}

TEST_F(CppPorts, RepliesGoBack)
{
    connect();
    ASSERT_TRUE(ports.send(1, "one"));
    ASSERT_TRUE(ports.send(1, "two"));
    EXPECT_TRUE(ports.receive_reply(1).error() == EMPTY_QUEUE);
    ASSERT_TRUE(ports.receive(2));
    ASSERT_TRUE(ports.receive(2));
    EXPECT_TRUE(ports.reply(2, "answer"));
    EXPECT_TRUE(ports.reply(2, "second"));
    EXPECT_TRUE(ports.reply(2, "third").error() == velmo::Condition::no_data);
    EXPECT_EQ(ports.receive_reply(1, 10s)->text(), "answer");
    std::string buffer(6, ' ');
    EXPECT_TRUE(ports.receive_reply_into(1, buffer, 10s));
    EXPECT_EQ(buffer, "second");
}

TEST_F(CppPorts, ConnectionsAreAList)
{
    EXPECT_TRUE(ports.connections()->empty());
    connect();
    ports.create("c", 3).value();
    ports.connect("a", "c").value();
    EXPECT_EQ(ports.connect("a", "b", velmo::Mode::exclusive).code(), ALREADY_CONNECTED);
    std::vector<std::string> shown;
    for (const auto [from, to] : *ports.connections())
        shown.push_back(std::string(from) + " -> " + std::string(to));
    EXPECT_EQ(shown, (std::vector<std::string>{"a -> b", "a -> c"}));
    EXPECT_EQ(ports.connections()->size(), 2U);
    EXPECT_FALSE(ports.connections()->empty());

    const auto names = ports.connected();
    EXPECT_EQ(Names(names->begin(), names->end()), (Names{"a", "b", "c"}));
    EXPECT_TRUE(ports.disconnect(1));
    EXPECT_TRUE(ports.disconnect(1).error() == NOT_CONNECTED);
    EXPECT_TRUE(ports.connections()->empty());
    EXPECT_TRUE(ports.connected()->empty());
}

TEST_F(CppPorts, ReceiversGetCopiesOrTurns)
{
    connect();
    ports.create("c", 3).value();
    ports.connect("a", "c", velmo::Mode::registered).value();
    ASSERT_TRUE(ports.deliver("a", velmo::Delivery::in_turn));
    ASSERT_TRUE(ports.send(1, "one"));
    ASSERT_TRUE(ports.send(1, "two"));
    EXPECT_EQ(ports.receive(2)->text(), "one");
    EXPECT_EQ(ports.receive(3)->text(), "two");
    ASSERT_TRUE(ports.deliver("a", velmo::Delivery::copies));
    ASSERT_TRUE(ports.send(1, "both"));
    EXPECT_EQ(ports.receive(2)->text(), "both");
    EXPECT_EQ(ports.receive(3)->text(), "both");
}

} // namespace
