#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Points : public CommandTest {};

TEST_F(Points, AreCreatedListedAndRemoved)
{
    EXPECT_EQ(run_json("point create b int32"), (json{{"point", "b"}, {"type", "int32"}}));
    good("point create a text");
    EXPECT_EQ(good("point ls"), "a\nb\n");
    EXPECT_EQ(run_json("point ls")["points"], json({"a", "b"}));
    EXPECT_EQ(run_json("point rm a b")["removed"], json({"a", "b"}));
    EXPECT_EQ(good("point ls"), "");
    EXPECT_EQ(run_json("point ls")["points"], json::array());
}

TEST_F(Points, AreListedByTemplateAndWithoutData)
{
    good("point create a int32");
    good("point create b int32");
    good("point create c text");
    good("point set a 1");
    EXPECT_EQ(good("point ls --type int32"), "a\nb\n");
    EXPECT_EQ(good("point ls --empty"), "b\nc\n");
    EXPECT_EQ(good("point ls --empty --type int32"), "b\n");
    const Result unknown = run_velmo("point ls --type speed");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(contains(unknown.err, "ABSTRACT_DATA_TYPE_NULL (4000)")) << unknown.err;
    EXPECT_TRUE(contains(unknown.err, "velmo point types")) << unknown.err;
}

TEST_F(Points, OfTheServerItselfAreListedByTheirType)
{
    good("event declare 7");
    good("event add pump 7");
    EXPECT_EQ(good("point ls"), "");
    EXPECT_TRUE(contains(good("point ls --type $SYS"), "$SYS/events/pump/count\n"));
    EXPECT_EQ(good("point get $SYS/events/pump/count"), "0\n");
    EXPECT_EQ(run_velmo("point set $SYS/events/pump/count 1").status, 1);
}

TEST_F(Points, TellAllAboutThemselves)
{
    good("point create level float64");
    EXPECT_EQ(run_json("point info level"), (json{{"point", "level"},
                                                  {"type", "float64"},
                                                  {"description", ""},
                                                  {"size", nullptr},
                                                  {"value", nullptr}}));
    good("point set level 1.5");
    EXPECT_EQ(run_json({"point", "describe", "level", "of the öl tank"}),
              (json{{"point", "level"}, {"description", "of the öl tank"}}));
    EXPECT_EQ(run_json("point info level"), (json{{"point", "level"},
                                                  {"type", "float64"},
                                                  {"description", "of the öl tank"},
                                                  {"size", 8},
                                                  {"value", 1.5}}));
    EXPECT_EQ(good("point info level"), "point\tlevel\ntemplate\tfloat64\n"
                                        "description\tof the öl tank\nsize\t8 bytes\n"
                                        "value\t1.5\n");
    EXPECT_EQ(good("point type level"), "float64\n");
    EXPECT_EQ(run_json("point type level")["type"], "float64");
}

TEST_F(Points, TemplatesAreListed)
{
    const json types = run_json("point types")["types"];
    EXPECT_EQ(types.size(), 13u);
    EXPECT_EQ(good("point types").rfind("bool\nbytes\n", 0), 0u);
}

TEST_F(Points, FailuresHaveTheirCodes)
{
    good("point create a int32");
    for (const auto& [command, said] :
         std::initializer_list<std::pair<const char*, const char*>>{
             {"point create a int32", "OBJECT_ALREADY_EXSIT (2014)"},
             {"point create b speed", "ABSTRACT_DATA_TYPE_NULL (4000)"},
             {"point create $SYS/x int32", "PARAMETER_ERROR (4)"},
             {"point get b", "VARIABLE_IS_NOT_EXIST (4002)"},
             {"point get a", "NON_EXIST_DATA (2001)"},
             {"point set b 1", "VARIABLE_IS_NOT_EXIST (4002)"},
             {"point rm b", "VARIABLE_IS_NOT_EXIST (4002)"},
             {"point describe b x", "VARIABLE_IS_NOT_EXIST (4002)"},
             {"point type b", "VARIABLE_IS_NOT_EXIST (4002)"},
             {"point info b", "VARIABLE_IS_NOT_EXIST (4002)"},
             {"point set a --hex 00", "SIZE_IS_NOT_MATCH (4001)"}}) {
        const Result result = run_velmo(command);
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_EQ(result.out, "") << command;
        EXPECT_TRUE(contains(result.err, said)) << result.err;
    }
}

} // namespace
