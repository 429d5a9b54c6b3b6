// A point service and the short words in which tests talk to it.
#ifndef VELMO_TESTS_SERVER_POINT_FIXTURE_H
#define VELMO_TESTS_SERVER_POINT_FIXTURE_H

#include <algorithm>
#include <functional>
#include <map>

#include <gtest/gtest.h>

#include "server/model/point_service.h"
#include "tests/server/images.h"

namespace velmo::tests {

using Names = std::vector<std::string>;

inline std::string text_of(const model::Data& data)
{
    return data ? std::string(data->begin(), data->end()) : "no data";
}

// The text, or the code in brackets.
inline std::string coded(vl_result result, const std::string& text)
{
    return result == VL_OK ? text : "[" + std::to_string(result) + "]";
}

inline model::TemplateDefinition definition(const std::string& name,
                                            const std::string& kind)
{
    model::TemplateDefinition written;
    written.name = name;
    written.kind = kind;
    return written;
}

class PointFixture : public ::testing::Test {
protected:
    explicit PointFixture(const model::PointLimits& limits = {})
        : templates(limits.max_value_bytes), points(templates, limits)
    {
    }

    void create(const Names& names, const std::string& type = "text")
    {
        for (const std::string& name : names)
            ASSERT_EQ(points.create(name, type), VL_OK) << name;
    }

    vl_result set(const std::string& name, const std::string& text)
    {
        return points.set(name, bytes_of(text));
    }

    // The value, or the code in brackets.
    std::string get(const std::string& name) const
    {
        model::Data data;
        const vl_result result = points.get(name, data);
        return coded(result, text_of(data));
    }

    // "TYPE|DESCRIPTION|VALUE", or the code in brackets.
    std::string info(const std::string& name) const
    {
        model::PointInfo all;
        const vl_result result = points.info(name, all);
        return coded(result, all.type + "|" + all.description + "|" + text_of(all.value));
    }

    // "NAME NAME ...", or the code in brackets.
    std::string of_type(const std::string& type) const
    {
        model::NameTable names;
        const vl_result result = points.names_of_type(type, names);
        std::string all;
        for (const char* name : names)
            all.append(all.empty() ? "" : " ").append(name);
        return coded(result, all);
    }

    // All points of one moment: by name, what info() gives. meanwhile is called with
    // each of them, and may change them.
    std::map<std::string, std::string>
    moment(const std::function<void(const model::PointImage&)>& meanwhile = {})
    {
        std::map<std::string, std::string> all;
        points.visit_moment([&](const model::PointImage& image) {
            if (meanwhile)
                meanwhile(image);
            const std::string text =
                image.template_name + "|" + image.description + "|" + text_of(image.value);
            EXPECT_TRUE(all.emplace(image.name, text).second) << image.name;
        });
        return all;
    }

    vl_result restore(std::vector<model::PointImage> images)
    {
        return points.restore(std::move(images), problem);
    }

    model::TemplateCatalogue templates;
    model::PointService points;
    std::string problem;
};

} // namespace velmo::tests

#endif
