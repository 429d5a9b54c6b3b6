#include <sstream>

#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class PointValues : public CommandTest {
protected:
    std::string path(const char* name) const { return (folder.path() / name).string(); }

    std::string content(const char* name) const
    {
        std::ostringstream text;
        text << std::ifstream(path(name), std::ios::binary).rdbuf();
        return text.str();
    }
};

TEST_F(PointValues, AreOfTheirTemplates)
{
    for (const auto& [type, typed, value] :
         std::initializer_list<std::tuple<const char*, const char*, json>>{
             {"int8", "-5", -5},
             {"uint64", "18446744073709551615", 18446744073709551615u},
             {"float32", "0.1", 0.1},
             {"float64", "-1.5", -1.5},
             {"bool", "true", true},
             {"text", "zwei Wörter", "zwei Wörter"}}) {
        good({"point", "create", type, type});
        good({"point", "set", type, typed});
        EXPECT_EQ(good({"point", "get", type}), std::string(typed) + "\n");
        EXPECT_EQ(run_json({"point", "get", type}),
                  (json{{"point", type}, {"type", type}, {"value", value}}));
    }
}

TEST_F(PointValues, ThatDoNotFitAreMisuse)
{
    good("point create a int8");
    for (const char* typed : {"128", "x", "", "1.5"}) {
        const Result result = run_velmo(Words{"point", "set", "a", typed});
        EXPECT_EQ(result.status, 2) << typed;
        EXPECT_TRUE(contains(result.err, "int8")) << result.err;
    }
    EXPECT_EQ(run_velmo("point set a --hex 0").status, 2);
    EXPECT_EQ(run_velmo("point set a --file /nonexistent/file").status, 2);
    EXPECT_EQ(run_velmo("point set a 1 --file x").status, 2);
    EXPECT_EQ(good("point ls --empty"), "a\n") << "nothing was written";
}

TEST_F(PointValues, BytesPassAsTheyAre)
{
    const std::string bytes("\0\xff\n\r\x1b", 5);
    good("point create b bytes");
    good({"point", "set", "b"}, bytes);
    EXPECT_EQ(good("point get b"), bytes) << "with nothing added";
    EXPECT_EQ(good("point get b --hex"), "00ff0a0d1b\n");
    EXPECT_EQ(run_json("point get b")["value"], (json{{"hex", "00ff0a0d1b"}}));

    EXPECT_EQ(good({"point", "get", "b", "--file", path("out")}), "");
    EXPECT_EQ(content("out"), bytes);
    good("point set b --hex 00");
    EXPECT_EQ(run_json({"point", "set", "b", "--file", path("out")}),
              (json{{"point", "b"}, {"size", 5}}));
    EXPECT_EQ(good("point get b --file -"), bytes);
    good({"point", "set", "b", "--file", "-"}, "");
    EXPECT_EQ(good("point get b"), "") << "no bytes are not the same as no data";
}

TEST_F(PointValues, ThatDoNotFitOnTheDiskAreAFailure)
{
    good("point create b bytes");
    good("point set b abc");
    const Result full = run_velmo("point get b --file /dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(contains(full.err, "cannot write \"/dev/full\"")) << full.err;
    EXPECT_EQ(run_velmo("point get b --file /nonexistent/file").status, 2);
}

TEST_F(PointValues, OfAMegabytePass)
{
    std::string bytes(1u << 20, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 256);
    good("point create b bytes");
    good({"point", "set", "b", "--file", "-"}, bytes);
    EXPECT_EQ(good("point get b"), bytes);
}

TEST_F(PointValues, ComeFromAPipeAsFromTheCommandLine)
{
    good("point create a int32");
    good({"point", "set", "a"}, "42\n");
    EXPECT_EQ(good("point get a"), "42\n");
    good({"point", "set", "a", "--hex"}, "01 00 00 00\n");
    EXPECT_EQ(good("point get a"), "1\n");
    good({"point", "set", "a", "--file", "-"}, std::string("\2\0\0\0", 4));
    EXPECT_EQ(good("point get a"), "2\n");
}

TEST_F(PointValues, CanBeTakenForAnotherKind)
{
    good("point create b bytes");
    good("point set b 258 --as uint16");
    EXPECT_EQ(good("point get b --hex"), "0201\n");
    EXPECT_EQ(good("point get b --as uint16"), "258\n");
    EXPECT_EQ(run_json("point get b --as int16")["value"], 258);
    const Result result = run_velmo("point get b --as int32");
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.err, "2 bytes")) << result.err;
}

TEST(ConfiguredTemplates, AreBytesUnlessSaidOtherwise)
{
    TemporaryFolder folder;
    const std::string configuration = (folder.path() / "velmod.xml").string();
    std::ofstream(configuration) << R"(<velmo><velmod><templates>
        <template name="speed" type="float64" initial="2.5"/>
        </templates></velmod></velmo>)";
    Velmod velmod({"--server", "S", "--config", configuration});
    SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    EXPECT_EQ(run_velmo("point create v speed").status, 0);
    EXPECT_EQ(run_json("point get v")["value"], (json{{"hex", "0000000000000440"}}));
    EXPECT_EQ(run_velmo("point get v --as float64").out, "2.5\n");
    EXPECT_EQ(run_velmo("point set v -1 --as float64").status, 0);
    EXPECT_EQ(run_velmo("point get v --as float64").out, "-1\n");
}

} // namespace
