#include <csignal>
#include <sstream>

#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class PointTransfer : public CommandTest {
protected:
    void create_a_few()
    {
        good("point create number int64");
        good("point set number -9223372036854775808");
        good("point create empty float64");
        good({"point", "create", "wörter/1", "text"});
        good({"point", "set", "wörter/1", "a \"quoted\"\nline"});
        good({"point", "describe", "wörter/1", "zwei"});
        good("point create raw bytes");
        good("point set raw --hex 00ff");
        good("point create none bytes");
        good({"point", "set", "none", ""});
    }
};

TEST_F(PointTransfer, ExportAndImportKeepEverything)
{
    create_a_few();
    const std::vector<json> lines = run_json_lines(words("point export"));
    EXPECT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0], (json{{"point", "empty"},
                              {"type", "float64"},
                              {"description", ""},
                              {"value", nullptr}}));
    const std::string before = good("point export");

    good({"point", "rm", "number", "empty", "wörter/1", "raw", "none"});
    EXPECT_EQ(run_json(words("point import"), before),
              (json{{"created", 5}, {"updated", 0}}));
    EXPECT_EQ(good("point export"), before);

    good("point set number 1");
    EXPECT_EQ(good({"point", "import"}, before), "0 points created, 5 updated\n");
    EXPECT_EQ(good("point export"), before);
}

TEST_F(PointTransfer, GoesThroughFiles)
{
    create_a_few();
    const std::string file = (folder.path() / "points.jsonl").string();
    EXPECT_EQ(good({"point", "export", file}), "");
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    EXPECT_EQ(text.str(), good("point export"));
    EXPECT_EQ(good({"--realm", "plant", "point", "import", file}),
              "5 points created, 0 updated\n");
    EXPECT_EQ(good("--realm plant point export"), good("point export"));
    EXPECT_EQ(good("point export --type bytes"),
              "{\"point\":\"none\",\"type\":\"bytes\",\"description\":\"\",\"value\":{"
              "\"hex\":\"\"}}\n{\"point\":\"raw\",\"type\":\"bytes\",\"description\":\"\","
              "\"value\":{\"hex\":\"00ff\"}}\n");
    EXPECT_EQ(run_velmo("point export /nonexistent/file").status, 2);
    EXPECT_EQ(run_velmo("point import /nonexistent/file").status, 2);
}

TEST_F(PointTransfer, KeepsTheOldFileWhenItFails)
{
    create_a_few();
    const std::string file = (folder.path() / "points.jsonl").string();
    const auto content = [&] {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    };
    std::ofstream(file) << "old";
    good({"point", "create", "z\xff", "int8"});
    EXPECT_EQ(run_velmo(Words{"point", "export", file}).status, 2);
    EXPECT_EQ(content(), "old");
    good({"point", "rm", "z\xff"});
    good({"point", "export", file});
    EXPECT_EQ(content(), good("point export"));
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        EXPECT_FALSE(contains(entry.path().filename().string(), ".velmo-")) << entry.path();
    EXPECT_EQ(run_velmo("point export /dev/full").status, 1);
}

TEST_F(PointTransfer, CarriesThousandsOfPoints)
{
    std::string lines;
    constexpr int count = 3000;
    for (int i = 0; i < count; ++i)
        lines += "{\"point\":\"p" + std::to_string(i) +
                 "\",\"type\":\"int32\",\"value\":" + std::to_string(i) + "}\n";
    EXPECT_EQ(good({"point", "import"}, lines), "3000 points created, 0 updated\n");
    const std::string exported = good("point export");
    EXPECT_EQ(std::count(exported.begin(), exported.end(), '\n'), count);
    EXPECT_EQ(good("point get p2999"), "2999\n");
}

TEST_F(PointTransfer, ImportNamesTheLineThatIsWrong)
{
    good("point create there int8");
    for (const auto& [line, status, said] :
         std::initializer_list<std::tuple<const char*, int, const char*>>{
             {"{\"point\":", 2, "line 2: not a point as export writes it"},
             {"{\"point\":\"x\"}", 2, "line 2: not a point"},
             {"[]", 2, "line 2: not a point as export writes it: no object"},
             {"{\"point\":\"there\\u0000x\",\"type\":\"int8\",\"value\":1}", 2,
              "line 2: \"point\" has a NUL byte"},
             {"{\"point\":\"x\",\"type\":\"speed\",\"value\":1}", 1,
              "line 2: cannot create point \"x\": ABSTRACT_DATA_TYPE_NULL (4000)"},
             {"{\"point\":\"x\",\"type\":\"int8\",\"value\":300}", 2, "line 2: \"300\""},
             {"{\"point\":\"there\",\"type\":\"int16\",\"value\":1}", 2,
              "line 2: point \"there\" is there with template \"int8\""},
             {"{\"point\":\"x\",\"type\":\"speed\",\"value\":null}", 1,
              "line 2: cannot create point \"x\""}}) {
        const Result result =
            run_velmo(words("point import"), "\n" + std::string(line) + "\n");
        EXPECT_EQ(result.status, status) << line;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(contains(result.err, said)) << result.err;
    }
    EXPECT_EQ(good("point ls"), "there\n") << "a wrong line has created nothing";
}

class Watching : public CommandTest {};

TEST_F(Watching, ShowsChangesUntilInterrupted)
{
    good("point create a int32");
    good("point set a 1");
    Process watch(velmo_command(words("point watch a --interval 5")), plain_environment());
    ASSERT_TRUE(eventually([&] { return watch.out() == "a\t1\n"; })) << watch.err();
    good("point set a 2");
    ASSERT_TRUE(eventually([&] { return watch.out() == "a\t1\na\t2\n"; })) << watch.out();
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 130);
    EXPECT_EQ(watch.err(), "");
}

TEST_F(Watching, ShowsSeveralPoints)
{
    good("point create a int32");
    good("point create b text");
    good({"point", "set", "b", "x"});
    const std::vector<json> lines = run_json_lines(words("point watch a b --count 2"));
    EXPECT_EQ(lines[0], (json{{"point", "a"}, {"value", nullptr}}));
    EXPECT_EQ(lines[1], (json{{"point", "b"}, {"value", "x"}}));
}

TEST_F(Watching, EndsWithThePoint)
{
    good("point create a int32");
    Process watch(velmo_command(words("point watch a --interval 5")), plain_environment());
    ASSERT_TRUE(eventually([&] { return watch.out() == "a\t(no data)\n"; })) << watch.err();
    good("point rm a");
    EXPECT_EQ(watch.wait(), 1);
    EXPECT_TRUE(contains(watch.err(), "VARIABLE_IS_NOT_EXIST (4002)")) << watch.err();
}

} // namespace
