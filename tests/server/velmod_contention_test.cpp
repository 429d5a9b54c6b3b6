// velmod's contenders, called over the broker, and what clients see of them and of events
// and ports.
#include <gtest/gtest.h>

#include "tests/server/client.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

using Velmo::DT_POINT_SVC::DT_Point_Factory;
using Velmo::DT_POINT_SVC::DT_Point_Factory_var;
using Velmo::HEART_BIT::contender_server;
using Velmo::HEART_BIT::contender_server_var;

class VelmodContention : public ::testing::Test {
protected:
    explicit VelmodContention(std::vector<std::string> arguments = {})
        : velmod(std::move(arguments)), contention(contention_service())
    {
    }

    contender_server_var contention_service(const std::string& realm = "")
    {
        CORBA::Object_var object =
            resolve(velmod.naming_url(), realm + keys::contention_service);
        return contender_server_var(contender_server::_narrow(object.in()));
    }

    // The point's value, or the code in brackets.
    std::string point(const std::string& name, const std::string& realm = "")
    {
        CORBA::Object_var object =
            resolve(velmod.naming_url(), realm + keys::data_template_point_service);
        DT_Point_Factory_var points = DT_Point_Factory::_narrow(object.in());
        Velmo::DATA_BUFFER_var value;
        const CORBA::Long result = points->get_DTP(("$SYS/" + name).c_str(), value.out());
        return result == VL_OK ? text(value.in()) : "[" + std::to_string(result) + "]";
    }

    CORBA::Long regist(const char* contender, CORBA::Long priority)
    {
        return contention->regist_contender("g", contender, buffer("data"), "role",
                                            priority);
    }

    unsigned long long epoch() { return std::stoull(point("contention/g/epoch")); }

    Velmod velmod;
    contender_server_var contention;
};

class VelmodWithShortLeases : public VelmodContention {
protected:
    VelmodWithShortLeases() : VelmodContention({"--lease", "100"}) {}
};

class VelmodContentionInRealms : public VelmodContention {
protected:
    VelmodContentionInRealms() : VelmodContention({"--realm", "alpha"}) {}
};

TEST_F(VelmodContention, ContendersComeAndGo)
{
    ASSERT_EQ(regist("low", 1), VL_OK);
    const unsigned long long first = epoch();
    ASSERT_EQ(regist("high", 2), VL_OK);
    EXPECT_EQ(point("contention/g/state"), std::to_string(first + 1) + " high");
    EXPECT_EQ(point("contention/g/contenders/high/token"), std::to_string(first + 1));
    EXPECT_EQ(point("contention/g/contenders/low/token"), "[4002]");
    EXPECT_EQ(point("contention/g/contenders/low/data"), "data");
    EXPECT_EQ(point("contention/g/contenders/low/role"), "role");
    EXPECT_EQ(contention->update_contender("g", "low"), VL_OK);
    EXPECT_EQ(contention->out_contend("g", "high"), VL_OK);
    EXPECT_EQ(point("contention/g/master"), "low");
    EXPECT_EQ(epoch(), first + 2);
}

TEST_F(VelmodContention, FailuresComeWithTheirCodes)
{
    const std::string long_name(256, 'n');
    EXPECT_EQ(contention->update_contender("g", "a"), CONTENDER_IS_NUL);
    EXPECT_EQ(contention->out_contend("g", "a"), CONTENDER_IS_NUL);
    EXPECT_EQ(regist("", 0), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(regist(long_name.c_str(), 0), PARAMETER_ERROR);
    EXPECT_EQ(contention->regist_contender("g", "a",
                                           buffer(std::string((1u << 20) + 1, 'x')), "", 0),
              SIZE_IS_NOT_MATCH);
}

TEST_F(VelmodWithShortLeases, WhoDoesNotRenewIsOut)
{
    ASSERT_EQ(regist("a", 0), VL_OK);
    EXPECT_TRUE(eventually([&] { return point("contention/g/master").empty(); }));
    EXPECT_EQ(contention->update_contender("g", "a"), CONTENDER_IS_NUL);
}

TEST_F(VelmodContentionInRealms, EveryRealmHasItsOwn)
{
    ASSERT_EQ(regist("a", 0), VL_OK);
    EXPECT_EQ(point("contention/g/master"), "a");
    EXPECT_EQ(point("contention/g/master", "alpha/"), "[4002]");
    EXPECT_EQ(contention_service("alpha/")->update_contender("g", "a"), CONTENDER_IS_NUL);
}

TEST_F(VelmodContention, AfterARestartEpochsAreHigher)
{
    ASSERT_EQ(regist("a", 0), VL_OK);
    const unsigned long long before = epoch();
    velmod.kill();
    velmod.restart();
    EXPECT_TRUE(eventually_answered(
        [&] { return contention->update_contender("g", "a") == CONTENDER_IS_NUL; }));
    ASSERT_EQ(regist("a", 0), VL_OK);
    EXPECT_TRUE(eventually_answered([&] { return epoch() > before; }));
}

TEST_F(VelmodContention, PortsAndEventsAreSystemPointsToo)
{
    Port_Factory_var ports = port_service(velmod.naming_url());
    const std::string longest(255, 'p');
    ASSERT_EQ(ports->create_port(longest.c_str(), 4000000000u, 3), VL_OK);
    EXPECT_EQ(point("ports/" + longest + "/handle"), "4000000000");
    ASSERT_EQ(ports->send_packet(4000000000u, buffer("x"), 0), VL_OK);
    EXPECT_EQ(point("ports/" + longest + "/depth"), "1");
    ASSERT_EQ(ports->declare_event(7, buffer("idle"), 1), VL_OK);
    ASSERT_EQ(ports->add_event("e", 7), VL_OK);
    ASSERT_EQ(ports->send_event("e", buffer("happened")), VL_OK);
    EXPECT_EQ(point("events/e/count"), "1");
    EXPECT_EQ(point("events/e/data"), "happened");
}

} // namespace
