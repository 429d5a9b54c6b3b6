// Points that the server itself provides.
#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

// Values that change.
class Source : public model::SystemPoints {
public:
    void list(std::vector<std::string>& names) const override
    {
        for (const auto& [name, text] : values)
            names.push_back(name);
    }

    std::optional<std::string> read(std::string_view name) const override
    {
        const auto found = values.find(std::string(name));
        if (found == values.end())
            return std::nullopt;
        return found->second;
    }

    std::map<std::string, std::string> values;
};

class SystemPoints : public PointFixture {
protected:
    SystemPoints()
    {
        first.values = {{"$SYS/b", "1"}, {"$SYS/empty", ""}};
        second.values = {{"$SYS/a", "2"}};
        points.add_system_points(first);
        points.add_system_points(second);
    }

    Source first, second;
};

TEST_F(SystemPoints, AreReadLikeOthers)
{
    EXPECT_EQ(get("$SYS/b"), "1");
    EXPECT_EQ(get("$SYS/a"), "2");
    EXPECT_EQ(get("$SYS/empty"), "");
    EXPECT_EQ(info("$SYS/b"), "$SYS||1");
    first.values["$SYS/b"] = "changed";
    EXPECT_EQ(get("$SYS/b"), "changed");
    EXPECT_EQ(get("$SYS/no such"), "[4002]");
    EXPECT_EQ(info("$SYS/no such"), "[4002]");
}

TEST_F(SystemPoints, AreListedUnderTheirTypeOnly)
{
    create({"$SYSTEM", "p"});
    EXPECT_EQ(of_type("$SYS"), "$SYS/a $SYS/b $SYS/empty");
    EXPECT_EQ(points.names(), (Names{"$SYSTEM", "p"}));
    EXPECT_EQ(points.names_without_data(), (Names{"$SYSTEM", "p"}));
    EXPECT_EQ(points.size(), 2u);
    EXPECT_EQ(moment().size(), 2u);
}

TEST_F(SystemPoints, CannotBeWritten)
{
    for (const std::string name : {"$SYS/a", "$SYS/no such", "$SYS/"}) {
        EXPECT_EQ(points.create(name, "text"), PARAMETER_ERROR);
        EXPECT_EQ(set(name, "x"), PARAMETER_ERROR);
        EXPECT_EQ(points.remove(name), PARAMETER_ERROR);
        EXPECT_EQ(points.set_description(name, "x"), PARAMETER_ERROR);
        EXPECT_EQ(restore({{name, "text", "", nullptr}}), PARAMETER_ERROR);
    }
    EXPECT_EQ(points.create("p", "$SYS"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(get("$SYS/a"), "2");
}

TEST_F(SystemPoints, WithoutASourceThereAreNone)
{
    const model::PointService bare(templates);
    model::NameTable names;
    names.add("before");
    EXPECT_EQ(bare.names_of_type("$SYS", names), VL_OK);
    EXPECT_TRUE(names.empty());
}

} // namespace
