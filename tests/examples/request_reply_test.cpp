// A service, and clients that ask it.
#include "tests/examples/example.h"
#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

class RequestReply : public OneServer {};

TEST_F(RequestReply, TwoClientsAskOneService)
{
    Process service({example("request_reply"), "serve"});
    EXPECT_EQ(output_of({example("request_reply"), "ask", "1", "how late is it?", "hm"}),
              "answer: HOW LATE IS IT?\nanswer: HM\n");
    EXPECT_EQ(output_of({example("request_reply"), "ask", "2", "stop"}), "answer: STOP\n");
    EXPECT_EQ(service.wait(), 0) << service.err();
    EXPECT_EQ(service.out(), "asked: how late is it?\nasked: hm\nasked: stop\n");
}

TEST_F(RequestReply, TheClientMayBeFirst)
{
    Process client({example("request_reply"), "ask", "7", "stop"});
    ASSERT_TRUE(
        eventually([] { return get_point("$SYS/ports/example service/depth") == "1"; }));
    EXPECT_EQ(output_of({example("request_reply"), "serve"}), "asked: stop\n");
    EXPECT_EQ(client.wait(), 0);
    EXPECT_EQ(client.out(), "answer: STOP\n");
}

} // namespace
