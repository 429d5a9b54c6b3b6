// Many threads on one port service: nothing lost, nothing twice, in order. Meant for
// the thread sanitizer as well.
#include <map>
#include <thread>

#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class PortStress : public PortFixture {
protected:
    using Counts = std::map<model::Handle, int>; // by sender

    // Sends the numbers from 0 on; some wait, some try again.
    void send_numbers(model::Handle port, int count)
    {
        for (int i = 0; i < count; ++i) {
            const std::string text = std::to_string(port) + " " + std::to_string(i);
            const model::WaitOption wait = i % 3 == 0 ? 0 : long_enough;
            vl_result result = send(port, text, wait);
            while (result == WOULD_BLOCK)
                result = send(port, text, wait);
            ASSERT_EQ(result, VL_OK);
        }
    }

    // Receives until "end" comes; checks the order per sender, if it can be known.
    Counts receive_numbers(model::Handle port, bool in_order)
    {
        Counts next;
        for (;;) {
            const std::string text = receive(port, long_enough);
            if (text == "end")
                return next;
            const auto space = text.find(' ');
            if (space == std::string::npos) {
                ADD_FAILURE() << text;
                return next;
            }
            const auto sender =
                static_cast<model::Handle>(std::stoul(text.substr(0, space)));
            if (in_order) {
                EXPECT_EQ(std::stoi(text.substr(space + 1)), next[sender]);
            }
            ++next[sender];
        }
    }

    static constexpr int packets = 1000;
};

TEST_F(PortStress, FourSendersToFourReceiversInOrder)
{
    create({1, 2, 3, 4});
    create({11, 12, 13, 14}, 5);
    for (const model::Handle from : {1u, 2u, 3u, 4u})
        for (const model::Handle to : {11u, 12u, 13u, 14u})
            ASSERT_EQ(connect(from, to), VL_OK);

    std::vector<std::future<Counts>> receivers;
    for (const model::Handle port : {11u, 12u, 13u, 14u})
        receivers.push_back(
            std::async(std::launch::async, [=] { return receive_numbers(port, true); }));
    std::vector<std::thread> senders;
    for (const model::Handle port : {1u, 2u, 3u, 4u})
        senders.emplace_back([=] { send_numbers(port, packets); });
    for (std::thread& sender : senders)
        sender.join();
    ASSERT_EQ(send(1, "end", long_enough), VL_OK);
    for (auto& receiver : receivers)
        EXPECT_EQ(receiver.get(),
                  (Counts{{1, packets}, {2, packets}, {3, packets}, {4, packets}}));
    EXPECT_EQ(ports.waiting(), 0u);
}

TEST_F(PortStress, OnePortBetweenFourSendersAndFourReceivers)
{
    create({1, 2, 3, 4});
    create({10}, 3);
    for (const model::Handle from : {1u, 2u, 3u, 4u})
        ASSERT_EQ(connect(from, 10), VL_OK);

    std::vector<std::future<Counts>> receivers;
    for (int i = 0; i < 4; ++i)
        receivers.push_back(
            std::async(std::launch::async, [=] { return receive_numbers(10, false); }));
    std::vector<std::thread> senders;
    for (const model::Handle port : {1u, 2u, 3u, 4u})
        senders.emplace_back([=] { send_numbers(port, packets); });
    for (std::thread& sender : senders)
        sender.join();
    for (int i = 0; i < 4; ++i)
        ASSERT_EQ(send(1, "end", long_enough), VL_OK);
    Counts total;
    for (auto& receiver : receivers)
        for (const auto& [sender, count] : receiver.get())
            total[sender] += count;
    EXPECT_EQ(total, (Counts{{1, packets}, {2, packets}, {3, packets}, {4, packets}}));
}

TEST_F(PortStress, QuestionsAndAnswersWhileConnectionsChange)
{
    create({1, 2, 3});
    create({10}, 4);
    ASSERT_EQ(connect(1, 10), VL_OK);
    ASSERT_EQ(connect(2, 10), VL_OK);

    std::vector<std::thread> threads;
    for (const model::Handle port : {1u, 2u})
        threads.emplace_back([=] {
            for (int i = 0; i < packets; ++i) {
                ASSERT_EQ(send(port, "question", long_enough), VL_OK);
                ASSERT_EQ(receive_reply(port, long_enough), "answer");
            }
        });
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([=] {
            for (int k = 0; k < packets; ++k) {
                ASSERT_EQ(receive(10, long_enough), "question");
                ASSERT_EQ(reply(10, "answer", long_enough), VL_OK);
            }
        });
    threads.emplace_back([=] {
        for (int i = 0; i < packets; ++i) {
            ASSERT_EQ(connect(3, 10, from_host), VL_OK);
            ASSERT_EQ(ports.register_port_host("p3", "host"), VL_OK);
            ASSERT_EQ(ports.enable_copy("p3", i % 2 == 0), VL_OK);
            ASSERT_EQ(ports.disconnect_port(3), VL_OK);
        }
    });
    threads.emplace_back([=] {
        for (int i = 0; i < packets; ++i) {
            ASSERT_GE(ports.connections().size(), 2u);
            ASSERT_GE(ports.channels().outgoing.size(), 2u);
            ASSERT_EQ(receive(3), "[2002]");
        }
    });
    threads.emplace_back([=] {
        for (model::Handle i = 100; i < 100u + packets; ++i)
            create({i}, 1);
    });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(PortStress, SavingAndRestoringWhileEverybodyWorks)
{
    create({1, 2});
    create({3, 4}, 2);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(connect(2, 3), VL_OK);
    ASSERT_EQ(connect(2, 4), VL_OK);
    std::vector<std::thread> threads;
    for (const model::Handle port : {1u, 2u})
        threads.emplace_back([=] {
            for (int i = 0; i < packets; ++i) {
                send(port, "question", 1);
                receive_reply(port, 1);
            }
        });
    for (const model::Handle port : {3u, 3u, 4u})
        threads.emplace_back([=] {
            for (int i = 0; i < packets; ++i) {
                const std::string got = receive(port, 1);
                ASSERT_TRUE(got == "question" || got == "[2000]") << got;
                reply(port, "answer", 1);
            }
        });
    for (int i = 0; i < packets; ++i) {
        const model::PortsImage image = ports.image();
        ASSERT_EQ(ports.check(image), VL_OK);
        if (i % 3 == 0) {
            ASSERT_EQ(ports.restore(image), VL_OK);
        }
        ASSERT_EQ(ports.totals().ports, 4u);
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(ports.waiting(), 0u);
}

TEST_F(PortStress, StoppingWhileEverybodyWaits)
{
    create({1}, 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([=] {
            while (receive(1, long_enough) != "[2000]") {
            }
        });
        threads.emplace_back([=] {
            while (send(1, "x", long_enough) == VL_OK) {
            }
        });
    }
    ports.stop();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(ports.waiting(), 0u);
}

} // namespace
