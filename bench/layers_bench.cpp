// What each layer adds to a call of 64 bytes, on one processor: a bare socket, the
// broker, velmod's servant and model, the library.
#include <functional>

#include "VelmoC.h"
#include "bench/contenders/contender.h"
#include "bench/measure.h"
#include "vlReferenceContainer.h"
#include "vl_result.h"

namespace {

using namespace velmo::bench;

constexpr std::size_t bytes = 64;
constexpr int calls = 200;
constexpr int turns = 60;

void measure(Velmods& velmods, Transport transport)
{
    const auto raw = make_raw_socket(transport);
    const auto bare = raw->connect();
    const auto library = velmods.connect(transport);
    Velmo::DT_POINT_SVC::DT_Point_Factory_var stub =
        vlReferenceContainer::instance()->GetDptReferenceWithServerName(
            server_name(transport), nullptr);
    const Bytes value(bytes, 'x');
    constexpr const char* point = "layers";
    expect(stub->create_DTP(point, "bytes") == VL_OK, "create_DTP");

    const std::pair<const char*, std::function<void()>> layers[] = {
        {"bare socket", [&] { bare->set(value); }},
        {"empty call", [&] { expect(!stub->_non_existent(), "the point service"); }},
        {"stub",
         [&] {
             Velmo::DATA_BUFFER data;
             data.length(bytes);
             std::copy(value.begin(), value.end(), data.get_buffer());
             expect(stub->set_DTP(point, data) == VL_OK, "set_DTP");
         }},
        {"library", [&] { library->set(value); }}};
    std::vector<double> times[std::size(layers)];
    for (int turn = 0; turn < turns; ++turn)
        for (std::size_t i = 0; i < std::size(layers); ++i)
            times[i].push_back(time_of(calls, layers[i].second));
    for (std::size_t i = 0; i < std::size(layers); ++i)
        print({"layers",
               "set 64 B, " + std::string(in_words(transport)) + ", " + layers[i].first,
               "ns",
               median(times[i]),
               {{"layer", layers[i].first}, {"transport", in_words(transport)}}});
}

} // namespace

int main()
{
    pin_to_one_processor();
    Velmods velmods;
    measure(velmods, Transport::unix_socket);
    measure(velmods, Transport::tcp);
    return 0;
}
