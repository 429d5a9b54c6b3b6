// Which servers are own ones, and the positions of the others.
#include <cstring>
#include <set>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <unistd.h>

#include "tests/util/settings_fixture.h"

namespace velmo::tests {
namespace {

const std::string field = R"(<velmo LOCAL>
  <server name="top" host="host1.invalid" role="master">
    <server name="left" host="host2.invalid"/>
    <server name="middle" host="host3.invalid" role="slave">
      <server name="below" host="host4.invalid" role="slave">
        <server name="deep" host="host5.invalid"/>
      </server>
      <server name="beside" host="host6.invalid"/>
    </server>
  </server>
  <server name="other" host="host7.invalid">
    <server name="cousin" host="host8.invalid"/>
  </server>
</velmo>)";

std::string field_of(const std::string& local)
{
    std::string text = field;
    return text.replace(text.find("LOCAL"), 5, local);
}

TEST_F(SettingsTest, PositionsFollowTheNestingAroundTheOwnServer)
{
    const auto read = this->read(field_of("local='middle'"));
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(names_at(*read, "own"), "middle");
    EXPECT_EQ(names_at(*read, "parent"), "top");
    EXPECT_EQ(names_at(*read, "sibling"), "left");
    EXPECT_EQ(names_at(*read, "child"), "below beside");
    EXPECT_EQ(names_at(*read, "others"), "deep other cousin");
}

TEST_F(SettingsTest, RolesAreFiledInAddition)
{
    const auto read = this->read(field_of("local='middle'"));
    EXPECT_EQ(names_at(*read, "master"), "top");
    EXPECT_EQ(names_at(*read, "slave"), "middle below");
}

TEST_F(SettingsTest, TopServersAreSiblingsOfAnOwnOneAtTheTop)
{
    const auto read = this->read(field_of("local='other'"));
    EXPECT_EQ(names_at(*read, "parent"), "");
    EXPECT_EQ(names_at(*read, "sibling"), "top");
    EXPECT_EQ(names_at(*read, "child"), "cousin");
    EXPECT_EQ(names_at(*read, "others"), "left middle below deep beside");
}

TEST_F(SettingsTest, OtherWordsAreNoPositions)
{
    const auto read = this->read(field_of("local='middle'"));
    for (const char* word : {"", "OWN", "own ", "own slave", "parents"})
        EXPECT_EQ(names_at(*read, word), "") << word;
}

TEST_F(SettingsTest, EnvironmentNamesTheOwnServerBeforeTheFile)
{
    set("VELMO_LOCAL_SERVER", "cousin");
    const auto read = this->read(field_of("local='middle'"));
    EXPECT_EQ(names_at(*read, "own"), "cousin");
    EXPECT_EQ(names_at(*read, "parent"), "other");
}

TEST_F(SettingsTest, WithoutAnOwnServerAllAreOthers)
{
    const auto read = this->read(field_of(""));
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(read->at("others").size(), read->servers().size());
    EXPECT_EQ(names_at(*read, "own"), "");
    EXPECT_EQ(names_at(*read, "sibling"), "");
    EXPECT_EQ(names_at(*read, "master"), "top");
    EXPECT_EQ(read->find("0000"), nullptr);
}

TEST_F(SettingsTest, SeveralOwnServersEachServerAtTheNearestPosition)
{
    const auto read = this->read(R"(<velmo>
      <server name="a" host="host1.invalid">
        <server name="b" host="localhost">
          <server name="c" host="127.0.0.1"><server name="d" host="host2.invalid"/></server>
          <server name="e" host="host3.invalid"/>
        </server>
      </server>
      <server name="f" host="::1"/>
      <server name="g" host="host4.invalid"/>
    </velmo>)");
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(names_at(*read, "own"), "b c f");
    EXPECT_EQ(names_at(*read, "parent"), "a"); // b is c's, and an own one first
    EXPECT_EQ(names_at(*read, "child"), "d e");
    EXPECT_EQ(names_at(*read, "sibling"), "g");
    EXPECT_EQ(names_at(*read, "others"), "");
}

// -------------------------------------------------------------- this machine

class OwnByHost : public SettingsTest {
protected:
    bool is_own(const std::string& host)
    {
        const auto read =
            this->read("<velmo><server name='a' host='" + host + "'/></velmo>");
        EXPECT_EQ(read->error(), "");
        return !read->at("own").empty();
    }
};

TEST_F(OwnByHost, LoopbackIsThisMachine)
{
    for (const char* host : {"localhost", "LocalHost", "127.0.0.1", "127.8.9.10", "::1",
                             "[::1]", "::ffff:127.0.0.1"})
        EXPECT_TRUE(is_own(host)) << host;
}

TEST_F(OwnByHost, TheHostsNameIsThisMachineWithAndWithoutDomain)
{
    char buffer[256] = "";
    ASSERT_EQ(gethostname(buffer, sizeof buffer - 1), 0);
    const std::string name = buffer;
    const std::string short_name = name.substr(0, name.find('.'));
    EXPECT_TRUE(is_own(name));
    EXPECT_TRUE(is_own(short_name));
    EXPECT_EQ(is_own(short_name + ".velmo.invalid"), name == short_name);
    EXPECT_FALSE(is_own(short_name + "x"));
    EXPECT_FALSE(is_own("x" + short_name));
}

TEST_F(OwnByHost, AddressesOfTheInterfacesAreThisMachine)
{
    ifaddrs* first = nullptr;
    ASSERT_EQ(getifaddrs(&first), 0);
    std::set<std::string> texts;
    for (const ifaddrs* i = first; i; i = i->ifa_next) {
        char text[INET6_ADDRSTRLEN] = "";
        if (i->ifa_addr && i->ifa_addr->sa_family == AF_INET) {
            sockaddr_in address;
            std::memcpy(&address, i->ifa_addr, sizeof address);
            texts.insert(inet_ntop(AF_INET, &address.sin_addr, text, sizeof text));
        }
    }
    freeifaddrs(first);
    for (const std::string& text : texts)
        EXPECT_TRUE(is_own(text)) << text;
}

TEST_F(OwnByHost, OtherHostsAreNot)
{
    for (const char* host : {"239.255.255.254", "ff0e::1", "elsewhere.invalid"})
        EXPECT_FALSE(is_own(host)) << host;
}

TEST_F(OwnByHost, ServerWithANamingUrlHasNoHost)
{
    const auto read =
        this->read("<velmo><server name='a' "
                   "naming='corbaloc::1.2@127.0.0.1:2809/NameService'/></velmo>");
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(names_at(*read, "others"), "a");
}

TEST_F(OwnByHost, LocalStandsBeforeTheHost)
{
    const auto read = this->read("<velmo local='b'><server name='a' host='localhost'/>"
                                 "<server name='b' host='elsewhere.invalid'/></velmo>");
    EXPECT_EQ(names_at(*read, "own"), "b");
    EXPECT_EQ(names_at(*read, "sibling"), "a");
}

} // namespace
} // namespace velmo::tests
