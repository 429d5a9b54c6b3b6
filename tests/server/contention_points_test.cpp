// Contenders as system points.
#include "server/model/system_path.h"
#include "tests/server/contention_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class ContentionPoints : public ContentionFixture {};

TEST_F(ContentionPoints, TellAboutAGroup)
{
    regist("a", 1);
    regist("b", 2);
    regist("c", 1);
    EXPECT_EQ(point("g/master"), "b");
    EXPECT_EQ(point("g/epoch"), "2");
    EXPECT_EQ(point("g/state"), "2 b");
    EXPECT_EQ(point("g/contenders"), "b\na\nc\n");
}

TEST_F(ContentionPoints, TellAboutAContender)
{
    regist("a", -3);
    pass(Duration(30));
    EXPECT_EQ(point("g/contenders/a/priority"), "-3");
    EXPECT_EQ(point("g/contenders/a/role"), "role");
    EXPECT_EQ(point("g/contenders/a/data"), "data of a");
    EXPECT_EQ(point("g/contenders/a/lease"), "70");
}

TEST_F(ContentionPoints, OnlyTheMasterHasAToken)
{
    regist("a");
    regist("b");
    EXPECT_EQ(point("g/contenders/a/token"), "1");
    EXPECT_EQ(point("g/contenders/b/token"), "none");
    pass(lease / 2);
    update("b");
    pass(lease / 2);
    EXPECT_EQ(point("g/contenders/a/token"), "none");
    EXPECT_EQ(point("g/contenders/b/token"), "2");
}

TEST_F(ContentionPoints, AreNotThereForWhatIsNot)
{
    regist("a");
    for (const char* name :
         {"", "g", "g/", "/master", "h/master", "g/size", "g/priority",
          "g/contenders/b/priority", "g/contenders/a", "g/contenders/a/", "g/a/priority",
          "g/contenders/a/master", "h/contenders/a/priority"})
        EXPECT_EQ(point(name), "none") << name;
    EXPECT_EQ(model::ContentionPoints(contention).read("$SYS/ports/g/master"),
              std::nullopt);
}

TEST_F(ContentionPoints, NamesWithSlashesAreUnambiguous)
{
    regist("c", 1, "a/contenders/b");
    regist("b/contenders/c", 2, "a");
    regist("x", 3, "a/contenders/b/epoch");
    EXPECT_EQ(point("a/contenders/b/contenders/c/priority"), "1");
    EXPECT_EQ(point("a/contenders/b%2Fcontenders%2Fc/priority"), "2");
    EXPECT_EQ(point("a/contenders/b/master"), "c");
    EXPECT_EQ(point("a/contenders/b/contenders"), "c\n");
    EXPECT_EQ(point("a/contenders"), "b%2Fcontenders%2Fc\n");
    EXPECT_EQ(point("a/contenders/b/epoch/master"), "x");
    EXPECT_EQ(point("a/master"), "b/contenders/c") << "as it is where it stands alone";
}

TEST_F(ContentionPoints, EveryPointThatIsListedCanBeReadAndTheOtherWayRound)
{
    regist("c", 1, "a/contenders/b");
    regist("100%\n", 2, "a");
    regist("d", 1, "a");
    regist("gone", 1, "h");
    out("gone", "h");
    std::vector<std::string> names;
    const model::ContentionPoints points(contention);
    points.list(names);
    EXPECT_EQ(names.size(), 3 * 4 + 3 * 4 + 2u);
    for (const std::string& name : names)
        EXPECT_TRUE(points.read(name)) << name;
    for (const char* name : {"$SYS/contention/h/master", "$SYS/contention/a/state",
                             "$SYS/contention/a/contenders/100%25%0A/token"})
        EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
}

TEST(SystemPath, NamesAreEscapedInOneWay)
{
    for (const std::string name :
         {"", "plain", "a/b", "100%", "%2F", "line\nbreak", "\x7f\x01", "\xc3\xa4", "\xff"})
        EXPECT_EQ(model::unescaped(model::escaped(name)), name);
    EXPECT_EQ(model::escaped("a/b%\n"), "a%2Fb%25%0A");
    for (const char* text : {"%", "%2", "%2f", "%41", "%GG", "a/b", "%%"})
        EXPECT_EQ(model::unescaped(text), std::nullopt) << text;
}

} // namespace
