// What velmod tells Prometheus.
#include <regex.h>

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "server/metrics/exposition.h"
#include "server/services/calls.h"
#include "tests/server/client.h"
#include "tests/support/http_get.h"
#include "tests/support/loopback.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;
using metrics::Operation;
using std::chrono::microseconds;

namespace {

// ------------------------------------------------------------ counting

TEST(CallMetrics, CallsAreCountedByDurationAndOutcome)
{
    metrics::CallMetrics calls;
    calls.record(Operation::get_DTP, microseconds(10), metrics::Outcome::success);
    calls.record(Operation::get_DTP, microseconds(11), metrics::Outcome::code);
    calls.record(Operation::get_DTP, std::chrono::hours(1), metrics::Outcome::exception);
    const metrics::CallCounts counts = calls.counts(Operation::get_DTP);
    EXPECT_EQ(counts.calls(), 3u);
    EXPECT_EQ(counts.by_duration.front(), 1u) << "bounds belong to their buckets";
    EXPECT_EQ(counts.by_duration[1], 1u);
    EXPECT_EQ(counts.by_duration.back(), 1u);
    EXPECT_EQ(counts.codes, 1u);
    EXPECT_EQ(counts.exceptions, 1u);
    EXPECT_EQ(counts.total, std::chrono::hours(1) + microseconds(21));
    EXPECT_EQ(calls.counts(Operation::set_DTP).calls(), 0u);
}

TEST(CallMetrics, ThreadsLoseNoCall)
{
    constexpr int threads = 8;
    constexpr int calls_each = 10000;
    metrics::CallMetrics calls;
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&] {
            for (int call = 0; call < calls_each; ++call)
                metrics::Measurement(&calls, Operation::send_packet)
                    .ended(metrics::Outcome::success);
        });
    for (std::thread& thread : all)
        thread.join();
    const metrics::CallCounts counts = calls.counts(Operation::send_packet);
    EXPECT_EQ(counts.calls(), static_cast<std::uint64_t>(threads) * calls_each);
    EXPECT_EQ(counts.codes + counts.exceptions, 0u);
}

TEST(Calls, ResultsAndExceptionsAreTold)
{
    metrics::CallMetrics counted;
    const services::Calls call(&counted, 4);
    EXPECT_EQ(call(Operation::create_port, [] { return VL_OK; }), VL_OK);
    EXPECT_EQ(call(Operation::create_port, [] { return WOULD_BLOCK; }), WOULD_BLOCK);
    EXPECT_THROW(
        call(Operation::create_port, []() -> vl_result { throw std::runtime_error("x"); }),
        std::runtime_error);
    EXPECT_EQ(call(Operation::create_port, []() -> vl_result { throw std::bad_alloc(); }),
              MEMORY_ALLOCATION_FAI);
    const metrics::CallCounts counts = counted.counts(Operation::create_port);
    EXPECT_EQ(counts.calls(), 4u);
    EXPECT_EQ(counts.codes, 2u);
    EXPECT_EQ(counts.exceptions, 1u);
}

TEST(Calls, TooMuchDataIsRefusedBeforeAnythingIsDone)
{
    metrics::CallMetrics counted;
    const services::Calls call(&counted, 4);
    int done = 0;
    const auto body = [&] {
        ++done;
        return VL_OK;
    };
    EXPECT_EQ(call(Operation::set_DTP, buffer("1234"), body), VL_OK);
    EXPECT_EQ(call(Operation::set_DTP, buffer("12345"), body), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(done, 1);
    EXPECT_EQ(counted.counts(Operation::set_DTP).codes, 1u);
}

// ------------------------------------------------------------- showing

bool has_line(const std::string& text, const std::string& wanted)
{
    return ("\n" + text).find("\n" + wanted + "\n") != std::string::npos;
}

TEST(Exposition, NamesThatAreNotUtf8DoNotSpoilTheText)
{
    model::Realm realm("");
    ASSERT_EQ(realm.ports.create_port("bad\xff\n\"name", 1, 0), VL_OK);
    const auto packet = std::make_shared<const model::Bytes>(3);
    ASSERT_EQ(realm.ports.send_packet(1, packet, 0), VL_OK);
    const metrics::CallMetrics calls;
    const metrics::Exposition exposition("127.0.0.1:0", {}, calls, {&realm});
    const std::string text = http_get(exposition.port(), "/metrics");
    EXPECT_TRUE(
        has_line(text, R"(velmod_queue_packets{realm="ROOT",port="bad?\n\"name"} 1)"))
        << text;
    EXPECT_TRUE(has_line(text, R"(velmod_queued_bytes{realm="ROOT"} 3)"));
}

TEST(Exposition, OnlyTheFullestQueuesAreShownOneByOne)
{
    model::Realm realm("r");
    const auto packet = std::make_shared<const model::Bytes>(1);
    for (model::Handle handle = 1; handle <= 2 * metrics::queues_shown; ++handle) {
        ASSERT_EQ(realm.ports.create_port("p" + std::to_string(handle), handle, 0), VL_OK);
        for (model::Handle i = 0; i < handle; ++i)
            ASSERT_EQ(realm.ports.send_packet(handle, packet, 0), VL_OK);
    }
    metrics::Families families;
    metrics::add_realm_families(families, {&realm});
    const prometheus::MetricFamily& depths = families.back();
    ASSERT_EQ(depths.name, "velmod_queue_packets");
    ASSERT_EQ(depths.metric.size(), metrics::queues_shown);
    EXPECT_EQ(depths.metric.front().gauge.value, 2.0 * metrics::queues_shown);
    EXPECT_EQ(depths.metric.back().gauge.value, metrics::queues_shown + 1.0);
}

TEST(Exposition, APlaceThatIsTakenIsAnError)
{
    const SilentListener taken;
    const metrics::CallMetrics calls;
    const std::string address = "127.0.0.1:" + std::to_string(taken.port());
    try {
        const metrics::Exposition exposition(address, {}, calls, {});
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find(address), std::string::npos);
    }
}

// ---------------------------------------------------------- the daemon

// An extended regular expression.
bool matches(const std::string& text, const char* pattern)
{
    regex_t compiled;
    if (regcomp(&compiled, pattern, REG_EXTENDED | REG_NOSUB) != 0)
        throw std::runtime_error(pattern);
    const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return found;
}

class DaemonMetrics : public ::testing::Test {
protected:
    std::string scrape() const { return http_get(port, "/metrics"); }

    const std::uint16_t port = free_port();
    Velmod velmod{{"--metrics", "127.0.0.1:" + std::to_string(port), "--realm", "alpha",
                   "--server", "press"}};
};

TEST_F(DaemonMetrics, EveryLineIsAsPrometheusTakesIt)
{
    const std::string answer = scrape();
    ASSERT_EQ(answer.rfind("HTTP/1.1 200", 0), 0u) << answer;
    EXPECT_NE(answer.find("text/plain"), std::string::npos);
    const char* comment = "^# (HELP|TYPE) [a-z_]+ .+$";
    const char* sample =
        R"re(^[a-z_]+(\{([a-z_]+="[^"]*",?)*\})? ([0-9.eE+-]+|\+Inf|Nan)$)re";
    std::istringstream body(answer.substr(answer.find("\r\n\r\n") + 4));
    int samples = 0;
    for (std::string line; std::getline(body, line);) {
        const bool is_comment = line.rfind("#", 0) == 0;
        EXPECT_TRUE(matches(line, is_comment ? comment : sample)) << line;
        samples += is_comment ? 0 : 1;
    }
    EXPECT_GT(samples, 500);
    EXPECT_TRUE(has_line(answer, R"(velmod_info{server="press",version=")" VELMO_VERSION
                                 R"("} 1)"));
    EXPECT_EQ(http_get(port, "/other").rfind("HTTP/1.1 404", 0), 0u);
}

TEST_F(DaemonMetrics, KnownCallsGiveKnownCounts)
{
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("a", 1, 0), VL_OK);
    ASSERT_EQ(ports->create_port("b", 2, 0), VL_OK);
    ASSERT_EQ(ports->create_port("b", 2, 0), OBJECT_ALREADY_EXSIT);
    ASSERT_EQ(ports->connect_port("a", "b", 30001, 0, ""), VL_OK);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(ports->send_packet(1, buffer("12345"), 0), VL_OK);
    const std::string text = scrape();
    for (
        const char* line :
        {R"(velmod_calls_total{service="port",operation="create_port"} 3)",
         R"(velmod_call_errors_total{service="port",operation="create_port",kind="code"} 1)",
         R"(velmod_call_errors_total{service="port",operation="create_port",kind="exception"} 0)",
         R"(velmod_calls_total{service="port",operation="send_packet"} 3)",
         R"(velmod_call_duration_seconds_count{service="port",operation="send_packet"} 3)",
         R"(velmod_call_duration_seconds_bucket{service="port",operation="send_packet",le="+Inf"} 3)",
         R"(velmod_ports{realm="ROOT"} 2)", R"(velmod_ports{realm="alpha"} 0)",
         R"(velmod_port_connections{realm="ROOT"} 1)",
         R"(velmod_queued_packets{realm="ROOT"} 3)",
         R"(velmod_queued_bytes{realm="ROOT"} 15)",
         R"(velmod_queue_packets{realm="ROOT",port="b"} 3)",
         R"(velmod_points{realm="ROOT"} 0)", R"(velmod_contention_leases{realm="ROOT"} 0)"})
        EXPECT_TRUE(has_line(text, line)) << line << "\n" << text;
}

TEST_F(DaemonMetrics, PointsAndLeasesAreCountedInTheirRealm)
{
    CORBA::Object_var object =
        resolve(velmod.naming_url(), std::string("alpha/") + keys::contention_service);
    Velmo::HEART_BIT::contender_server_var contention =
        Velmo::HEART_BIT::contender_server::_narrow(object.in());
    ASSERT_EQ(contention->regist_contender("g", "c", buffer(""), "", 1), VL_OK);
    object = resolve(velmod.naming_url(),
                     std::string("alpha/") + keys::data_template_point_service);
    Velmo::DT_POINT_SVC::DT_Point_Factory_var points =
        Velmo::DT_POINT_SVC::DT_Point_Factory::_narrow(object.in());
    ASSERT_EQ(points->create_DTP("p", "int8"), VL_OK);
    const std::string text = scrape();
    EXPECT_TRUE(has_line(text, R"(velmod_contention_leases{realm="alpha"} 1)"));
    EXPECT_TRUE(has_line(text, R"(velmod_contention_groups{realm="alpha"} 1)"));
    EXPECT_TRUE(has_line(text, R"(velmod_points{realm="alpha"} 1)"));
    EXPECT_TRUE(has_line(text, R"(velmod_points{realm="ROOT"} 0)"));
}

TEST_F(DaemonMetrics, ClientsThatSayNothingHoldUpNobodyForLong)
{
    std::vector<Descriptor> silent;
    for (int i = 0; i < 8; ++i)
        silent.push_back(connection_to(port));
    EXPECT_EQ(scrape().rfind("HTTP/1.1 200", 0), 0u);
    EXPECT_EQ(velmod.stop(), 0);
}

TEST_F(DaemonMetrics, ItStopsWithTheServer)
{
    EXPECT_TRUE(somebody_listens(port));
    EXPECT_EQ(velmod.stop(), 0);
    EXPECT_FALSE(somebody_listens(port));
}

} // namespace
