// Points against a model of them that is too simple to be wrong: thousands of random
// operations, always the same ones, with the same results.
#include <random>
#include <set>

#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;
using model::PointImage;

namespace {

constexpr std::size_t max_points = 40;

struct Type {
    std::size_t least, most;
    std::optional<std::string> initial;
};

const std::map<std::string, Type> types{{"int16", {2, 2, std::nullopt}},
                                        {"text", {0, 12, std::nullopt}},
                                        {"short", {0, 4, "new"}},
                                        {"fixed", {5, 5, std::nullopt}}};

class Reference {
public:
    vl_result create(const Names& names, const std::string& type)
    {
        if (type.empty())
            return INVAILD_NULL_PARAMETER;
        if (types.count(type) == 0)
            return ABSTRACT_DATA_TYPE_NULL;
        for (const std::string& name : names) {
            if (name.empty())
                return INVAILD_NULL_PARAMETER;
            if (name.size() > 255 || name.rfind("$SYS/", 0) == 0)
                return PARAMETER_ERROR;
        }
        for (const std::string& name : names)
            if (points.count(name) != 0)
                return OBJECT_ALREADY_EXSIT;
        if (points.size() + names.size() > max_points)
            return CREATE_DATAPOINT_FAI;
        for (const std::string& name : names)
            points[name] = {type, "", types.at(type).initial};
        return VL_OK;
    }

    vl_result remove(const std::string& name)
    {
        if (name.rfind("$SYS/", 0) == 0)
            return PARAMETER_ERROR;
        return points.erase(name) == 1 ? VL_OK : VARIABLE_IS_NOT_EXIST;
    }

    vl_result set(const std::string& name, const std::string& text)
    {
        if (name.rfind("$SYS/", 0) == 0)
            return PARAMETER_ERROR;
        if (points.count(name) == 0)
            return VARIABLE_IS_NOT_EXIST;
        const Type& type = types.at(points[name].type);
        if (text.size() < type.least || text.size() > type.most)
            return SIZE_IS_NOT_MATCH;
        points[name].value = text;
        return VL_OK;
    }

    vl_result describe(const std::string& name, const std::string& text)
    {
        if (name.rfind("$SYS/", 0) == 0)
            return PARAMETER_ERROR;
        if (points.count(name) == 0)
            return VARIABLE_IS_NOT_EXIST;
        points[name].description = text;
        return VL_OK;
    }

    std::string get(const std::string& name) const
    {
        const auto found = points.find(name);
        if (found == points.end())
            return "[4002]";
        return found->second.value.value_or("[2001]");
    }

    std::string info(const std::string& name) const
    {
        const auto found = points.find(name);
        if (found == points.end())
            return "[4002]";
        const Point& point = found->second;
        return point.type + "|" + point.description + "|" + point.value.value_or("no data");
    }

    std::map<std::string, std::string> all() const
    {
        std::map<std::string, std::string> infos;
        for (const auto& [name, point] : points)
            infos[name] = info(name);
        return infos;
    }

    Names names() const
    {
        return wanted([](const Point&) { return true; });
    }
    Names names_without_data() const
    {
        return wanted([](const Point& point) { return !point.value; });
    }
    std::string of_type(const std::string& type) const
    {
        if (types.count(type) == 0)
            return "[4000]";
        std::string text;
        for (const std::string& name :
             wanted([&](const Point& point) { return point.type == type; }))
            text.append(text.empty() ? "" : " ").append(name);
        return text;
    }

private:
    struct Point {
        std::string type, description;
        std::optional<std::string> value;
    };

    template <class Wanted>
    Names wanted(Wanted wants) const
    {
        Names names;
        for (const auto& [name, point] : points)
            if (wants(point))
                names.push_back(name);
        return names;
    }

    std::map<std::string, Point> points;
};

class PointModel : public PointFixture {
protected:
    static model::PointLimits narrow()
    {
        model::PointLimits limits;
        limits.max_points = max_points;
        limits.max_value_bytes = 12;
        return limits;
    }

    PointModel() : PointFixture(narrow())
    {
        auto bounded = definition("short", "text");
        bounded.max_size = 4;
        bounded.initial = "new";
        templates.add(bounded);
        auto fixed = definition("fixed", "bytes");
        fixed.size = 5;
        templates.add(fixed);
    }

    std::size_t below(std::size_t limit) { return random() % limit; }

    std::string any_name()
    {
        switch (below(40)) {
        case 0:
            return "";
        case 1:
            return "$SYS/x";
        case 2:
            return std::string(256, 'n');
        default:
            return (below(2) == 0 ? "a/" : "b/") + std::to_string(below(30));
        }
    }

    std::string any_type()
    {
        static const Names some{"int16", "text", "short", "fixed", "no such", ""};
        return some[below(some.size())];
    }

    std::string any_text(std::size_t longest)
    {
        std::string text(below(longest + 1), ' ');
        for (char& c : text)
            c = static_cast<char>(below(256));
        return text;
    }

    // Some members of a set, each once.
    Names any_members()
    {
        std::set<std::string> members;
        for (std::size_t left = 1 + below(4); left > 0; --left)
            members.insert(std::to_string(below(30)));
        return {members.begin(), members.end()};
    }

    void create_set()
    {
        const std::string set_name = below(2) == 0 ? "a" : "b";
        const std::string type = any_type();
        std::string lines;
        Names names;
        for (const std::string& member : any_members()) {
            lines += member + "\n";
            names.push_back(set_name + "/" + member);
        }
        ASSERT_EQ(points.create_set(set_name, type, lines), reference.create(names, type));
    }

    void any_operation()
    {
        const std::string name = any_name();
        switch (below(8)) {
        case 0: {
            const std::string type = any_type();
            ASSERT_EQ(points.create(name, type), reference.create({name}, type));
            break;
        }
        case 1:
            create_set();
            break;
        case 2:
            ASSERT_EQ(points.remove(name), reference.remove(name));
            break;
        case 3: {
            const std::string text = any_text(20);
            ASSERT_EQ(points.set_description(name, text), reference.describe(name, text));
            break;
        }
        default: {
            const std::string text = any_text(14);
            ASSERT_EQ(set(name, text), reference.set(name, text));
        }
        }
    }

    void compare()
    {
        const std::string name = any_name();
        ASSERT_EQ(get(name), reference.get(name));
        ASSERT_EQ(info(name), reference.info(name));
        switch (below(10)) {
        case 0:
            ASSERT_EQ(points.names(), reference.names());
            ASSERT_EQ(points.size(), reference.names().size());
            break;
        case 1:
            ASSERT_EQ(points.names_without_data(), reference.names_without_data());
            break;
        case 2: {
            const std::string type = any_type();
            ASSERT_EQ(of_type(type), reference.of_type(type));
        }
        }
    }

    std::minstd_rand random{20};
    Reference reference;
};

TEST_F(PointModel, TheSameOperationsGiveTheSameResults)
{
    for (int i = 0; i < 50000 && !HasFatalFailure(); ++i) {
        any_operation();
        compare();
    }
}

TEST_F(PointModel, MomentsAreTakenAndRestoredInBetween)
{
    std::vector<PointImage> saved;
    Reference saved_reference;
    for (int round = 0; round < 300 && !HasFatalFailure(); ++round) {
        const Reference then = reference;
        std::vector<PointImage> images;
        const auto seen = moment([&](const PointImage& image) {
            images.push_back(image);
            any_operation();
        });
        ASSERT_EQ(seen, then.all());
        if (below(3) == 0) {
            saved = std::move(images);
            saved_reference = then;
        } else if (below(3) == 0) {
            ASSERT_EQ(restore(saved), VL_OK) << problem;
            reference = saved_reference;
        }
        for (int i = 0; i < 20; ++i) {
            any_operation();
            compare();
        }
        ASSERT_EQ(points.names(), reference.names());
    }
}

} // namespace
