// A server of this build, whose points are set and read through the library and on the
// bare stub.
#ifndef VELMO_BENCH_POINTS_OF_A_SERVER_H
#define VELMO_BENCH_POINTS_OF_A_SERVER_H

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vlReferenceContainer.h"
#include "vl_api.h"
#include "vl_result.h"

namespace velmo::bench {

using PointStub = Velmo::DT_POINT_SVC::DT_Point_Factory_ptr;

constexpr const char* point = "bench/value";

inline void expect_ok(int result)
{
    if (result != VL_OK)
        throw std::runtime_error("a call gave " + std::to_string(result));
}

// What a program does that has a stub, and a value in memory of its own.
inline int set_by_stub(PointStub points, const std::vector<char>& value)
{
    Velmo::DATA_BUFFER data;
    data.length(static_cast<CORBA::ULong>(value.size()));
    std::memcpy(data.get_buffer(), value.data(), value.size());
    return points->set_DTP(point, data);
}

inline int get_by_stub(PointStub points, std::vector<char>& value)
{
    Velmo::DATA_BUFFER_var data;
    const int result = points->get_DTP(point, data.out());
    if (result == VL_OK)
        std::memcpy(value.data(), data->get_buffer(),
                    std::min<std::size_t>(value.size(), data->length()));
    return result;
}

inline int set_by_library(const std::vector<char>& value)
{
    return vl_set_data_template_point(point, value.data(), static_cast<int>(value.size()),
                                      nullptr, nullptr);
}

inline int get_by_library(std::vector<char>& value)
{
    return vl_get_data_template_point(point, value.data(), static_cast<int>(value.size()),
                                      nullptr, nullptr);
}

// The server, and settings that name it as this host's own.
class PointsOfAServer {
public:
    // options: velmod's. others: how many servers more the settings list. Throws
    // std::runtime_error when it does not come up.
    explicit PointsOfAServer(std::vector<std::string> options = {}, int others = 0)
        : velmod(std::move(options)),
          settings("local=\"S\"", servers(velmod.naming_url(), others))
    {
    }

    // Makes the point, and gives the library's own reference: one with its time-outs.
    Velmo::DT_POINT_SVC::DT_Point_Factory_var connect() const
    {
        vlReferenceContainer* const registry = vlReferenceContainer::instance();
        registry->BuildSettingData();
        expect_ok(vl_create_data_template_point(point, "bytes", nullptr, nullptr));
        return registry->GetDptReferenceWithServerName("S", nullptr);
    }

    static std::string other(int number) { return "other" + std::to_string(number); }

private:
    static std::vector<tests::SettingsFile::Server> servers(const std::string& url,
                                                            int others)
    {
        std::vector<tests::SettingsFile::Server> all{{"S", url}};
        for (int i = 0; i < others; ++i)
            all.push_back({other(i), url});
        return all;
    }

    tests::Velmod velmod;
    tests::SettingsFile settings;
};

} // namespace velmo::bench

#endif
