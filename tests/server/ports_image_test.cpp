// Ports saved and brought back.
#include "tests/server/images.h"
#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class PortsImage : public PortFixture {
protected:
    using PortFixture::PortFixture;

    // Connections, packets, replies, questions to be answered, and the rest.
    void make_everything()
    {
        create({1, 2, 3});
        create({10}, 3);
        ASSERT_EQ(connect(2, 10), VL_OK);
        ASSERT_EQ(connect(1, 10, from_host), VL_OK);
        ASSERT_EQ(connect(1, 3), VL_OK);
        ASSERT_EQ(ports.register_port_host("p1", "host"), VL_OK);
        ASSERT_EQ(send(1, "answered"), VL_OK);
        ASSERT_EQ(receive(10), "answered");
        ASSERT_EQ(reply(10, "answer"), VL_OK);
        ASSERT_EQ(send(2, "received"), VL_OK);
        ASSERT_EQ(receive(10), "received");
        ASSERT_EQ(ports.enable_copy("p1", 0), VL_OK);
        ASSERT_EQ(send(1, std::string("queued\0\xff", 8)), VL_OK);
        ASSERT_EQ(send(1, "elsewhere"), VL_OK);
        ASSERT_EQ(send(2, ""), VL_OK);
    }

    // Whether the damaged image is refused and nothing has changed.
    template <class Damage>
    bool refuses(const model::PortsImage& good, Damage damage)
    {
        model::PortsImage bad = good;
        damage(bad);
        return ports.check(bad) == MIDPLUSDATA_IS_BAD &&
               ports.restore(bad) == MIDPLUSDATA_IS_BAD && ports.image() == good;
    }
};

class PortsImageInTenBytes : public PortsImage {
protected:
    PortsImageInTenBytes() : PortsImage(narrow_limits(10)) {}
};

TEST_F(PortsImage, HoldsEverything)
{
    make_everything();
    const model::PortsImage image = ports.image();
    ASSERT_EQ(image.ports.size(), 4u);
    const model::PortImage& first = image.ports.front();
    EXPECT_EQ(first.name, "p1");
    EXPECT_EQ(first.handle, 1u);
    EXPECT_EQ(first.capacity, model::PortLimits().default_capacity);
    EXPECT_EQ(first.host, "host");
    EXPECT_FALSE(first.copies);
    EXPECT_EQ(first.turn, 0u);
    ASSERT_EQ(first.replies.size(), 1u);
    EXPECT_EQ(model::as_text(first.replies[0].data), "answer");
    const model::PortImage& last = image.ports.back();
    EXPECT_EQ(last.capacity, 3u);
    ASSERT_EQ(last.packets.size(), 2u);
    EXPECT_EQ(model::as_text(last.packets[0].data), std::string("queued\0\xff", 8));
    EXPECT_EQ(last.packets[0].sender, 1u);
    EXPECT_EQ(last.packets[1].sender, 2u);
    EXPECT_EQ(last.unanswered, (std::vector<model::Handle>{2}));
    ASSERT_EQ(image.connections.size(), 3u);
    EXPECT_EQ(image.connections[0].from, 2u);
    EXPECT_EQ(image.connections[1].mode, from_host);
    EXPECT_EQ(image.connections[2].to, 3u);
}

TEST_F(PortsImage, BringsEverythingBack)
{
    make_everything();
    const model::PortsImage saved = ports.image();
    create({77});
    drain(10);
    ASSERT_EQ(ports.disconnect_port(1), VL_OK);
    ASSERT_EQ(ports.restore(saved), VL_OK);
    EXPECT_TRUE(ports.image() == saved);

    EXPECT_EQ(send(77, "x"), INVAILD_PORT_HANDLE);
    EXPECT_EQ(receive_reply(1), "answer");
    EXPECT_EQ(receive_reply(1), "[2002]") << "questions are on their way";
    EXPECT_EQ(reply(10, "late answer"), VL_OK);
    EXPECT_EQ(receive_reply(2), "late answer");
    EXPECT_EQ(receive_reply(2), "[2002]");
    EXPECT_EQ(receive(10, 0, 2), "");
    EXPECT_EQ(reply(10, "the last one"), VL_OK);
    EXPECT_EQ(receive_reply(2), "the last one");
    EXPECT_EQ(receive_reply(2), "[2001]");
    EXPECT_EQ(connect(1, 3), ALREADY_CONNECTED);
    ASSERT_EQ(send(1, "in turn"), VL_OK);
    EXPECT_EQ(drain(10), std::string("queued\0\xff", 8) + "in turn");
    EXPECT_EQ(drain(3), "answered"
                        "elsewhere");
}

TEST_F(PortsImage, GoesToAnotherService)
{
    make_everything();
    model::PortService other(patient_limits());
    ASSERT_EQ(other.restore(ports.image()), VL_OK);
    EXPECT_TRUE(other.image() == ports.image());
    EXPECT_EQ(other.create_port("p1", 5, 0), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(other.create_port("p5", 5, 0), VL_OK);
}

TEST_F(PortsImage, AnEmptyOneEmptiesTheService)
{
    make_everything();
    ASSERT_EQ(ports.restore({}), VL_OK);
    EXPECT_TRUE(ports.names().empty());
    EXPECT_TRUE(ports.connections().empty());
    create({1});
    EXPECT_EQ(send(1, "x"), VL_OK);
}

TEST_F(PortsImage, AnImpossibleOneChangesNothing)
{
    make_everything();
    const model::PortsImage good = ports.image();
    using Image = model::PortsImage;
    EXPECT_EQ(ports.check(good), VL_OK);
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].name = ""; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].name = std::string(256, 'n'); }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].name = i.ports[1].name; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].handle = i.ports[1].handle; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[2].handle = 0; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].capacity = 0; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].host = std::string(256, 'h'); }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports.erase(i.ports.begin()); }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[3].packets[0].sender = 99; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[3].packets[0].data = nullptr; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[0].replies[0].sender = 99; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[3].unanswered[0] = 99; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.ports[3].unanswered.assign(4, 1); }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.connections[0].from = 99; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.connections[0].to = 99; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.connections[0].mode = 1; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.connections[0].mode = exclusive; }));
    EXPECT_TRUE(refuses(good, [](Image& i) { i.connections.push_back(i.connections[0]); }));
}

TEST_F(PortsImageInTenBytes, AQueueAboveTheLimitsIsKeptButTakesNothingMore)
{
    model::PortService roomy;
    ASSERT_EQ(roomy.create_port("p1", 1, 0), VL_OK);
    ASSERT_EQ(roomy.send_packet(1, bytes_of("12345678901"), 0), VL_OK);
    ASSERT_EQ(roomy.send_packet(1, bytes_of("12"), 0), VL_OK);
    ASSERT_EQ(ports.restore(roomy.image()), VL_OK);
    EXPECT_EQ(send(1, ""), WOULD_BLOCK);
    EXPECT_EQ(receive(1), "12345678901");
    EXPECT_EQ(send(1, "12345678"), VL_OK);
    EXPECT_EQ(drain(1), "1212345678");
}

TEST_F(PortsImage, RestoringEndsEveryWait)
{
    create({1, 2}, 1);
    ASSERT_EQ(send(1, "full"), VL_OK);
    const model::PortsImage saved = ports.image();
    auto sent = waiting([this] { return send(1, "not sent", long_enough); });
    auto received = waiting([this] { return receive(2, long_enough); });
    auto answered = waiting([this] { return receive_reply(2, long_enough); });
    ASSERT_EQ(ports.restore(saved), VL_OK);
    EXPECT_EQ(sent.get(), SENDMSG_TIMEOUT);
    EXPECT_EQ(received.get(), "[2000]");
    EXPECT_EQ(answered.get(), "[2016]");
    EXPECT_EQ(ports.waiting(), 0u);
    EXPECT_EQ(drain(1), "full");

    auto again = waiting([this] { return receive(2, long_enough); });
    ASSERT_EQ(send(2, "x"), VL_OK);
    EXPECT_EQ(again.get(), "x") << "waiting goes on as before";
}

} // namespace
