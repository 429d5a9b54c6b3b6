// What is logged about faulty settings, and that mended ones are noticed.
#include <filesystem>
#include <thread>

#include "tests/util/settings_fixture.h"
#include "vlServerInfoXmlImpl.h"

namespace velmo::tests {
namespace {

using settings::Settings;

const std::string healthy = R"(<velmo local="a">
  <server name="a" host="localhost" role="master"/>
</velmo>)";

// A server on the second line with these attributes.
std::string server(const std::string& attributes)
{
    return "<velmo>\n<server " + attributes + "/>\n</velmo>";
}

class Reporting : public SettingsTest {
protected:
    Reporting() { set("VELMO_SETTINGS", path().c_str()); }
    static void read_by_reader() { vlServerInfoXmlImpl(); }
};

// The first test of this program: afterwards the process goes by some settings.
TEST_F(Reporting, WithoutAReaderTheFirstUseReadsTheFile)
{
    write(server("name='a'"));
    EXPECT_EQ(settings::current()->path(), path());
    EXPECT_EQ(logged_lines().size(), 1u);
}

TEST_F(Reporting, FaultIsLoggedOnceWithFileLineAndReason)
{
    write(server("name='a'"));
    read_by_reader();
    read_by_reader();
    settings::current();
    ASSERT_EQ(logged_lines().size(), 1u);
    EXPECT_EQ(logged_lines()[0].find(path() + ":2: a server needs naming or host"), 0u);
}

TEST_F(Reporting, AnotherFaultOfTheFileIsLoggedToo)
{
    write(server("name='a'"));
    read_by_reader();
    write(server("host='h'"));
    read_by_reader();
    write(server("name='a'"));
    read_by_reader();
    EXPECT_EQ(logged_lines().size(), 2u);
}

TEST_F(Reporting, SameFaultIsLoggedAgainAfterTheFileWasHealthy)
{
    write(server("name='a'"));
    read_by_reader();
    write(healthy);
    read_by_reader();
    write(server("name='a'"));
    read_by_reader();
    EXPECT_EQ(logged_lines().size(), 2u);
}

TEST_F(Reporting, ReadingAloneDoesNotLog)
{
    write(server("name='a'"));
    EXPECT_NE(Settings::read()->error(), "");
    EXPECT_NE(Settings::read(path())->error(), "");
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(Reporting, TimeoutOfTheEnvironmentThatIsNoneIsLoggedOnce)
{
    write(healthy);
    set("VELMO_CONNECT_TIMEOUT_MS", "soon");
    read_by_reader();
    read_by_reader();
    ASSERT_EQ(logged_lines().size(), 1u);
    EXPECT_NE(logged_lines()[0].find("VELMO_CONNECT_TIMEOUT_MS"), std::string::npos);
    EXPECT_NE(settings::current()->find("a"), nullptr);
}

TEST_F(Reporting, HostileTextIsNotTakenForAFormat)
{
    write(server("name='%s%n%n' host=''"));
    write(server("%s%n%d='1'"));
    write(server("name='a' host='%s%n%s'"));
    read_by_reader();
    ASSERT_EQ(logged_lines().size(), 1u);
    EXPECT_NE(logged_lines()[0].find("%s%n%s"), std::string::npos);
}

TEST_F(Reporting, MendedFileIsNoticedWithoutAnotherReader)
{
    write(server("name='a'"));
    read_by_reader();
    EXPECT_EQ(settings::current()->find("a"), nullptr);
    write(healthy);
    ASSERT_NE(settings::current()->find("a"), nullptr);
    EXPECT_EQ(settings::current(), settings::current());
}

TEST_F(Reporting, FaultyFileThatNobodyTouchesIsNotReadAgain)
{
    write(server("name='a'"));
    read_by_reader();
    EXPECT_EQ(settings::current(), settings::current());
}

TEST_F(Reporting, FaultyFileWhosePermissionsChangeIsReadAgain)
{
    write(server("name='a'"));
    read_by_reader();
    const auto before_change = settings::current();
    std::filesystem::permissions(path(), std::filesystem::perms::owner_all);
    EXPECT_NE(settings::current(), before_change);
}

TEST_F(Reporting, NamedFileThatAppearsIsNoticed)
{
    read_by_reader();
    EXPECT_EQ(settings::current()->find("a"), nullptr);
    write(healthy);
    EXPECT_NE(settings::current()->find("a"), nullptr);
}

TEST_F(Reporting, FileThatIsReplacedIsNoticedWhateverItsTimeAndSize)
{
    std::string bad = healthy;
    bad.replace(bad.find("master"), 6, "mister");
    write(bad);
    read_by_reader();
    write(healthy, "new.xml");
    std::filesystem::last_write_time(path("new.xml"),
                                     std::filesystem::last_write_time(path()));
    std::filesystem::rename(path("new.xml"), path());
    EXPECT_NE(settings::current()->find("a"), nullptr);
}

TEST_F(Reporting, SettingsReadFromAnArgumentAreReadAgainFromThere)
{
    set("VELMO_SETTINGS", path("missing.xml").c_str());
    settings::make_current(read(server("name='a'")));
    EXPECT_EQ(settings::current()->find("a"), nullptr);
    write(healthy);
    EXPECT_NE(settings::current()->find("a"), nullptr);
}

TEST_F(Reporting, ManyThreadsMeetOnAFileThatIsMended)
{
    write(server("name='a'"));
    read_by_reader();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i] {
            for (int round = 0; round < 200; ++round) {
                if (i == 0 && round % 20 == 0)
                    read_by_reader();
                const auto now = settings::current();
                EXPECT_EQ(now->find("a") == nullptr, !now->error().empty());
            }
        });
    }
    write(healthy, "new.xml");
    std::filesystem::rename(path("new.xml"), path());
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_NE(settings::current()->find("a"), nullptr);
    EXPECT_EQ(logged_lines().size(), 1u);
}

} // namespace
} // namespace velmo::tests
