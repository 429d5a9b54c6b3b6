// What it costs that a call gives up in time: on connections of the broker's own, and on
// those that the library has it use.
//
// Two servers, alike: one is connected to before the library's connections are asked for,
// the other afterwards.

#include <iostream>

#include "bench/measure.h"
#include "bench/points_of_a_server.h"
#include "idl/service_keys.h"
#include "orb/client.h"
#include "orb/corba.h"
#include "orb/timed_connection_omniorb.h"

namespace {

using namespace velmo::bench;
using PointStubVar = Velmo::DT_POINT_SVC::DT_Point_Factory_var;

constexpr velmo::orb::Milliseconds call_timeout{30000};

// With a point to set.
PointStubVar stub_of(CORBA::ORB_ptr orb, const velmo::tests::Velmod& velmod)
{
    const CORBA::Object_var root = orb->string_to_object(velmod.naming_url().c_str());
    const CosNaming::NamingContext_var context =
        CosNaming::NamingContext::_narrow(root.in());
    CosNaming::Name name;
    name.length(1);
    name[0].id = velmo::keys::data_template_point_service;
    const CORBA::Object_var object = context->resolve(name);
    PointStubVar stub = Velmo::DT_POINT_SVC::DT_Point_Factory::_narrow(object.in());
    expect_ok(stub->create_DTP(point, "bytes"));
    return stub;
}

PointStubVar with_timeout(CORBA::ORB_ptr orb, PointStub stub)
{
    const CORBA::Object_var limited =
        velmo::orb::with_call_timeout(orb, stub, call_timeout);
    PointStubVar result =
        Velmo::DT_POINT_SVC::DT_Point_Factory::_unchecked_narrow(limited.in());
    velmo::orb::reapply_call_timeout(result.in(), call_timeout);
    return result;
}

void compare(const char* transport, const std::vector<std::string>& options)
{
    const velmo::tests::Velmod first(options), second(options);
    int argc = 0;
    const CORBA::ORB_var orb = CORBA::ORB_init(argc, nullptr);
    const PointStubVar unlimited = stub_of(orb.in(), first);
    const PointStubVar polling = with_timeout(orb.in(), unlimited.in());
    velmo::orb::time_connections();
    const PointStubVar also_unlimited = stub_of(orb.in(), second);
    const PointStubVar timed = with_timeout(orb.in(), also_unlimited.in());

    const std::vector<char> value(64, 'x');
    const auto turn = [&value](PointStub stub) {
        return time_of(40, [&] { expect_ok(set_by_stub(stub, value)); });
    };
    std::vector<double> without, with_polls, without_on_ours, with_ours;
    for (int i = 0; i < 600; ++i) {
        without.push_back(turn(unlimited.in()));
        with_polls.push_back(turn(polling.in()));
        without_on_ours.push_back(turn(also_unlimited.in()));
        with_ours.push_back(turn(timed.in()));
    }
    const std::string where = std::string(", 64 B, ") + transport;
    Row row{"deadline", "a call time-out over none" + where, "ratio",
            ratio(with_ours, without), bar(1.03, "lower")};
    row.more["without_ns"] = median(without);
    row.more["with_ns"] = median(with_ours);
    print(row);
    print({"deadline", "the broker's own call time-out over none" + where, "ratio",
           ratio(with_polls, without)});
    print({"deadline", "none on the library's connections over none" + where, "ratio",
           ratio(without_on_ours, without)});
    orb->destroy();
}

} // namespace

int main()
try {
    pin_to_one_processor();
    compare("TCP", {"--no-unix"});
    compare("unix", {});
    return 0;
} catch (const CORBA::Exception& error) {
    std::cerr << velmo::orb::describe(error) << '\n';
    return 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
