#include "cli/bench_work.h"

#include <algorithm>
#include <chrono>

#include "cli/memory.h"
#include "cli/ports.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

// What a queue of the server's default size holds in any case.
constexpr std::size_t most_packets = 256;
constexpr std::size_t most_bytes = 32u << 20;

// Calls, and counts the time when that was good. Throws Failure.
template <class Call>
void measure(const Session& session, Histogram& histogram, const char* action, Call call)
{
    const auto begin = std::chrono::steady_clock::now();
    const int code = call();
    const auto taken = std::chrono::steady_clock::now() - begin;
    session.check(code, action);
    histogram.add(taken);
}

Histogram& of(Measured& measured, Operation operation)
{
    return measured[static_cast<std::size_t>(operation)];
}

} // namespace

const std::vector<std::string>& operation_names()
{
    static const std::vector<std::string> names = {"set", "get", "send", "receive"};
    return names;
}

BenchWork::BenchWork(const Session& its_session, const std::string& its_name, bool points,
                     bool packets)
    : session(its_session), name(its_name), has_point(points)
{
    if (packets) {
        handle = usual_handle(name);
        session.check(
            vl_create_port(name.c_str(), handle, 0, session.server(), session.realm()),
            "create port " + in_quotes(name));
    }
    if (has_point)
        session.check(vl_create_data_template_point(name.c_str(), "bytes", session.server(),
                                                    session.realm()),
                      "create point " + in_quotes(name));
}

BenchWork::~BenchWork()
{
    if (has_point)
        vl_remove_template_point(name.c_str(), session.server(), session.realm());
}

void BenchWork::set(std::size_t size, const Done& done, Measured& measured) const
{
    const std::string value(size, 'v');
    do {
        measure(session, of(measured, Operation::set), "write a point", [&] {
            return vl_set_data_template_point(name.c_str(), value.data(),
                                              static_cast<int>(size), session.server(),
                                              session.realm());
        });
    } while (!done());
}

void BenchWork::get(std::size_t size, const Done& done, Measured& measured) const
{
    std::string value(size, 'v');
    session.check(vl_set_data_template_point(name.c_str(), value.data(),
                                             static_cast<int>(size), session.server(),
                                             session.realm()),
                  "write a point");
    do {
        measure(session, of(measured, Operation::get), "read a point", [&] {
            return vl_get_data_template_point(name.c_str(), value.data(),
                                              static_cast<int>(size), session.server(),
                                              session.realm());
        });
    } while (!done());
}

void BenchWork::packets(std::size_t size, const Done& done, Measured& measured) const
{
    const std::string packet(size, 'p');
    const std::size_t batch = std::clamp<std::size_t>(
        most_bytes / std::max<std::size_t>(size, 1), 1, most_packets);
    do {
        std::size_t sent = 0;
        do {
            measure(session, of(measured, Operation::send), "send a packet", [&] {
                return vl_send_packet(handle, packet.data(), static_cast<int>(size), 0,
                                      session.server(), session.realm());
            });
        } while (++sent < batch && !done());
        for (std::size_t i = 0; i < sent; ++i) {
            Block received;
            measure(session, of(measured, Operation::receive), "receive a packet", [&] {
                return vl_receive_packetv(handle, nullptr, received.out(),
                                          received.length_out(), 0, session.server(),
                                          session.realm());
            });
        }
    } while (!done());
}

} // namespace velmo::cli
