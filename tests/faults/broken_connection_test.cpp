// Connections that break, or stand still, after any number of bytes.
#include "tests/faults/faulty_relay.h"
#include "tests/faults/servers.h"

using namespace velmo::tests;

namespace {

int raise_it()
{
    return raise_event("e");
}

// A server behind the relay, with an event whose count tells how often it was asked to
// raise it.
class BehindTheRelay : public ::testing::Test {
protected:
    // The reference is there, and a connection is open.
    void use_server()
    {
        ASSERT_EQ(declare_event(1, ""), VL_OK);
        ASSERT_EQ(add_event("e", 1), VL_OK);
    }

    // Every n up to bytes, or some of them: what stands still costs a time-out each.
    static std::vector<std::size_t> some_of(std::size_t bytes)
    {
        std::vector<std::size_t> all;
        for (std::size_t n = 0; n < bytes; n += long_form() ? 1 : bytes / 4)
            all.push_back(n);
        return all;
    }

    static int count() { return std::stoi(event_count("e")); }

    Velmod velmod{over_tcp};
    FaultyRelay relay{velmod.port()};
    FaultSettings settings{naming_url(relay.port())};
};

TEST_F(BehindTheRelay, AnAnswerCutAnywhereIsAFailedCallThatIsNotRepeated)
{
    use_server();
    relay.pass();
    ASSERT_EQ(raise_it(), VL_OK);
    const std::size_t answer = relay.answered();
    ASSERT_GT(answer, 12u) << "the call does not go through the relay";
    Fault fault("the connection is closed after n bytes of the answer, every n of " +
                std::to_string(answer));
    for (std::size_t n = 0; n < answer; ++n) {
        const int before = count();
        relay.cut_answers_after(n);
        EXPECT_EQ(fault.call(raise_it), 112) << n;
        relay.pass();
        fault.recovers([] { return add_event("e", 1) == OBJECT_ALREADY_EXSIT ? 0 : 1; });
        EXPECT_EQ(count(), before + 1) << "after " << n << " bytes: not exactly once";
    }
}

TEST_F(BehindTheRelay, AnAnswerOfManyBlocksCutAnywhereIsAFailedCall)
{
    const std::string value(long_form() ? 1 << 16 : 1 << 14, 'v');
    ASSERT_EQ(create_point("p", "text"), VL_OK);
    ASSERT_EQ(set_point("p", value), VL_OK);
    const auto get = [] {
        char byte;
        return vl_get_data_template_point("p", &byte, 1, nullptr, nullptr);
    };
    relay.pass();
    ASSERT_EQ(get(), VL_OK);
    const std::size_t answer = relay.answered();
    const std::size_t step = long_form() ? 13 : 211;
    Fault fault("the same, an answer of " + std::to_string(answer) + " bytes, every " +
                std::to_string(step) + "th n");
    for (std::size_t n = 0; n < answer; n += step) {
        relay.cut_answers_after(n);
        EXPECT_EQ(fault.call(get), 102) << n;
        relay.pass();
        fault.recovers(get);
    }
}

TEST_F(BehindTheRelay, ARequestCutAnywhereIsCarriedOutOnceOrNotAtAll)
{
    use_server();
    relay.pass();
    ASSERT_EQ(raise_it(), VL_OK);
    const std::size_t request = relay.requested();
    Fault fault("the connection is closed after n bytes of the request, every n of " +
                std::to_string(request));
    for (std::size_t n = 0; n <= request; ++n) {
        const int before = count();
        relay.cut_requests_after(n);
        EXPECT_EQ(fault.call(raise_it), 112) << n;
        relay.pass();
        fault.recovers([] { return add_event("e", 1) == OBJECT_ALREADY_EXSIT ? 0 : 1; });
        const int after = count();
        EXPECT_GE(after, before);
        EXPECT_LE(after, before + (n == request)) << "after " << n << " bytes";
    }
}

TEST_F(BehindTheRelay, ALookUpCutAnywhereFindsNothingOrAll)
{
    ASSERT_EQ(vl_mid_connect(nullptr), VL_OK);
    relay.pass();
    ASSERT_TRUE(port_is_there());
    const std::size_t answers = relay.answered();
    // A call that fails drops the reference: the next one looks it up.
    const auto forget = [&] {
        relay.cut_answers_after(0);
        EXPECT_EQ(make_port(), 112);
    };
    Fault fault("the connection is closed after n bytes of the answers to a look-up and a "
                "call, every n of " +
                std::to_string(answers));
    for (std::size_t n = 0; n < answers; ++n) {
        forget();
        relay.cut_answers_after(n);
        const int code = fault.call(make_port);
        EXPECT_TRUE(code == VL_NO_REFERENCE || code == 112 || code == VL_OK) << code;
        relay.pass();
        fault.recovers(make_port);
    }
}

TEST_F(BehindTheRelay, AnAnswerThatStandsStillCostsTheCallTimeOut)
{
    use_server();
    relay.pass();
    ASSERT_EQ(raise_it(), VL_OK);
    const std::vector<std::size_t> cuts = some_of(relay.answered());
    Fault fault("the answer stands still after n bytes, " + std::to_string(cuts.size()) +
                    " values of n",
                call_timeout);
    for (const std::size_t n : cuts) {
        const int before = count();
        relay.stall_answers_after(n);
        EXPECT_EQ(fault.call(raise_it), 112) << n;
        relay.pass();
        fault.recovers([] { return add_event("e", 1) == OBJECT_ALREADY_EXSIT ? 0 : 1; });
        EXPECT_EQ(count(), before + 1) << "after " << n << " bytes: not exactly once";
    }
}

TEST_F(BehindTheRelay, AConnectionThatIsHalfOpenCostsOneCallTimeOut)
{
    use_server();
    Fault fault("half-open connections: the server's host is gone without a word, and "
                "comes back",
                call_timeout);
    relay.swallow();
    velmod.kill();
    EXPECT_EQ(fault.call(raise_it), 112);
    velmod.restart();
    relay.pass();
    fault.recovers(make_port);
}

} // namespace
