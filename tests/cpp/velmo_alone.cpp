// The header alone, with all of its templates used.
#include "velmo/velmo.hpp"

int use_all();

int use_all()
{
    using namespace std::chrono_literals;
    struct Pair {
        int first;
        int second;
    };
    const velmo::Points points({"server", "realm"});
    const std::string name = "name";
    int failures = 0;
    const auto count = [&](const velmo::Result<>& result) { failures += !result; };

    count(points.set(name, 1.5));
    count(points.set(name, Pair{1, 2}));
    count(points.set(name, "text"));
    count(points.set(name, name));
    count(points.get<bool>("flag"));
    failures += points.get<Pair>("pair").value().first;
    failures += points.info(name)->value.as<int>().value_or(0);
    for (const std::string_view one : *points.all())
        failures += static_cast<int>(one.size());
    for (const velmo::Connection& one : *velmo::Ports().connections())
        failures += static_cast<int>(one.from.size() + one.to.size());
    count(velmo::Ports().receive(1, 1.5s).error() == TIME_OUT ? VL_OK : VL_FAIL);
    return failures;
}
