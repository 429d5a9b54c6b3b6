// What an application does, as Prometheus sees it.
#include <sstream>

#include "tests/e2e/one_server.h"
#include "tests/support/http_get.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

class Metrics : public OneServer {
protected:
    explicit Metrics(std::uint16_t chosen = free_port())
        : OneServer({"--realm", "R", "--metrics", "127.0.0.1:" + std::to_string(chosen)}),
          port(chosen)
    {
    }

    // The value of a metric at this moment; "none" where there is none.
    std::string value(const std::string& metric) const
    {
        std::istringstream page(http_get(port, "/metrics"));
        for (std::string line; std::getline(page, line);)
            if (line.rfind(metric + " ", 0) == 0)
                return line.substr(metric.size() + 1);
        return "none";
    }

    std::string in_realm(const std::string& metric, const std::string& realm = "ROOT") const
    {
        return value("velmod_" + metric + "{realm=\"" + realm + "\"}");
    }

    // "CALLS ERRORS"
    std::string calls(const std::string& service, const std::string& operation) const
    {
        const std::string labels =
            "{service=\"" + service + "\",operation=\"" + operation + "\"";
        return value("velmod_calls_total" + labels + "}") + " " +
               value("velmod_call_errors_total" + labels + ",kind=\"code\"}");
    }

private:
    const std::uint16_t port;
};

TEST_F(Metrics, CountCallsAndErrorsOfEachService)
{
    EXPECT_EQ(create_point("p"), VL_OK);
    EXPECT_EQ(create_point("p"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_point("p", "text", "R"), VL_OK) << "realms are counted together";
    EXPECT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(receive(1), "[2002]");
    EXPECT_EQ(declare_event(7, ""), VL_OK);
    EXPECT_EQ(raise_event("none"), EVENT_DECLARE_NUL);
    EXPECT_EQ(regist("g", "c", 1), VL_OK);
    EXPECT_EQ(update("g", "c"), VL_OK);
    EXPECT_EQ(update("g", "d"), CONTENDER_IS_NUL);
    listed([](NameList* list) { return vl_get_query_data_type(list, nullptr, nullptr); });
    listed([](NameList* list) { return vl_releam_seq(list, nullptr); });

    EXPECT_EQ(calls("point", "create_DTP"), "3 1");
    EXPECT_EQ(calls("point", "set_DTP"), "0 0");
    EXPECT_EQ(calls("port", "create_port"), "1 0");
    EXPECT_EQ(calls("port", "receive_packet"), "1 1");
    EXPECT_EQ(calls("port", "declare_event"), "1 0");
    EXPECT_EQ(calls("port", "send_event"), "1 1");
    EXPECT_EQ(calls("contention", "regist_contender"), "1 0");
    EXPECT_EQ(calls("contention", "update_contender"), "2 1");
    EXPECT_EQ(calls("template", "get_query_data_type"), "1 0");
    EXPECT_EQ(calls("manager", "get_releam_seq"), "1 0");
}

TEST_F(Metrics, CallsThatNeverLeaveTheLibraryAreNone)
{
    ASSERT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(vl_send_packet(1, nullptr, 1, 0, nullptr, nullptr), 112);
    EXPECT_EQ(vl_load_port_snapshot(nullptr, nullptr), VL_OK);
    EXPECT_EQ(calls("port", "send_packet"), "0 0");
    EXPECT_EQ(calls("port", "load_port_snapshot"), "0 0");
}

TEST_F(Metrics, TellHowMuchThereIs)
{
    ASSERT_EQ(create_set("s", "text", "1\n2\n3"), VL_OK);
    ASSERT_EQ(create_port("p", 1), VL_OK);
    ASSERT_EQ(create_port("q", 2), VL_OK);
    ASSERT_EQ(connect("p", "q"), VL_OK);
    ASSERT_EQ(send(1, "12345"), VL_OK);
    ASSERT_EQ(send(1, "678"), VL_OK);
    ASSERT_EQ(send(1, "9"), VL_OK);
    ASSERT_EQ(receive(2), "12345");
    ASSERT_EQ(reply(2, "answer"), VL_OK);
    ASSERT_EQ(declare_event(7, ""), VL_OK);
    ASSERT_EQ(add_event("e", 7), VL_OK);
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    ASSERT_EQ(regist("g", "b", 1), VL_OK);

    EXPECT_EQ(in_realm("points"), "3");
    EXPECT_EQ(in_realm("ports"), "2");
    EXPECT_EQ(in_realm("port_connections"), "1");
    EXPECT_EQ(in_realm("queued_packets"), "2");
    EXPECT_EQ(in_realm("queued_replies"), "1");
    EXPECT_EQ(in_realm("queued_bytes"), "10") << "replies too";
    EXPECT_EQ(value(R"(velmod_queue_packets{realm="ROOT",port="q"})"), "2");
    EXPECT_EQ(in_realm("waiting_calls"), "0");
    EXPECT_EQ(in_realm("events"), "1");
    EXPECT_EQ(in_realm("contention_groups"), "1");
    EXPECT_EQ(in_realm("contention_leases"), "2");
    for (const char* metric : {"points", "ports", "events", "contention_leases"})
        EXPECT_EQ(in_realm(metric, "R"), "0") << metric;

    ASSERT_EQ(vl_remove_template_point("s/1", nullptr, nullptr), VL_OK);
    ASSERT_EQ(withdraw("g", "a"), VL_OK);
    EXPECT_EQ(in_realm("points"), "2");
    EXPECT_EQ(in_realm("contention_leases"), "1");
}

} // namespace
