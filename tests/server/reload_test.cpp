// velmod reads its configuration again on SIGHUP.
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include "tests/server/client.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;
using Points = Velmo::DT_POINT_SVC::DT_Point_Factory_var;

namespace {

class Reload : public ::testing::Test {
protected:
    void write(const std::string& attributes, const std::string& content = "") const
    {
        std::ofstream(file) << "<velmo>\n<velmod " << attributes << ">\n"
                            << content << "</velmod></velmo>";
    }

    void start(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.end(), {"--config", file});
        velmod.emplace(std::move(arguments));
        CORBA::Object_var object =
            resolve(velmod->naming_url(), keys::data_template_point_service);
        points = Velmo::DT_POINT_SVC::DT_Point_Factory::_narrow(object.in());
    }

    // Gives what velmod has logged about it.
    std::string reload()
    {
        const std::size_t before = log().size();
        velmod->process().signal(SIGHUP);
        std::string told;
        EXPECT_TRUE(eventually([&] {
            told = log().substr(before);
            // A reload that works tells the limits at the end.
            return told.find("event=limits") != std::string::npos ||
                   told.find("event=reload-failed") != std::string::npos;
        }));
        return told;
    }

    std::string log() { return velmod->process().err(); }

    static bool contains(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }

    TemporaryFolder folder;
    const std::string file = (folder.path() / "c.xml").string();
    std::optional<Velmod> velmod;
    Points points;
};

TEST_F(Reload, LimitsChange)
{
    write("max-points='1'");
    start();
    EXPECT_EQ(points->create_DTP("a", "int8"), VL_OK);
    EXPECT_EQ(points->create_DTP("b", "int8"), CREATE_DATAPOINT_FAI);
    write("max-points='2' lease='77'");
    const std::string told = reload();
    EXPECT_TRUE(contains(told, "event=reloaded file=" + file)) << told;
    EXPECT_TRUE(contains(told, "event=limits max-points=2")) << told;
    EXPECT_TRUE(contains(told, "lease=77")) << told;
    EXPECT_FALSE(contains(told, "needs-restart")) << told;
    EXPECT_EQ(points->create_DTP("b", "int8"), VL_OK);
    EXPECT_EQ(points->create_DTP("c", "int8"), CREATE_DATAPOINT_FAI);
}

TEST_F(Reload, AShorterWaitHoldsForTheNextCall)
{
    write("max-wait='3600000'");
    start();
    Port_Factory_var ports = port_service(velmod->naming_url());
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    write("max-wait='1'");
    reload();
    Velmo::DATA_BUFFER_var data;
    EXPECT_EQ(ports->receive_packet(1, 0, data.out(), 0xFFFFFFFF), TIME_OUT);
}

TEST_F(Reload, TheCommandLineStillWins)
{
    write("");
    start({"--max-points", "1"});
    write("max-points='5'");
    EXPECT_TRUE(contains(reload(), "max-points=1"));
    EXPECT_EQ(points->create_DTP("a", "int8"), VL_OK);
    EXPECT_EQ(points->create_DTP("b", "int8"), CREATE_DATAPOINT_FAI);
}

TEST_F(Reload, TemplatesComeChangeAndGo)
{
    write("", "<templates><template name='old' type='int8'/>"
              "<template name='grows' type='text' max-size='1'/></templates>");
    start({"--realm", "r"});
    EXPECT_EQ(points->create_DTP("new", "new"), ABSTRACT_DATA_TYPE_NULL);
    write("", "<templates><template name='new' type='int8'/>"
              "<template name='grows' type='text' max-size='2'/></templates>");
    EXPECT_FALSE(contains(reload(), "needs-restart"));
    EXPECT_EQ(points->create_DTP("new", "new"), VL_OK);
    EXPECT_EQ(points->create_DTP("old", "old"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(points->create_DTP("grown", "grows"), VL_OK);
    EXPECT_EQ(points->set_DTP("grown", buffer("12")), VL_OK);
}

TEST_F(Reload, ATemplateWithPointsStaysAsItWas)
{
    write("", "<templates><template name='a' type='text' max-size='1'/>"
              "<template name='b' type='int8'/></templates>");
    start();
    ASSERT_EQ(points->create_DTP("of a", "a"), VL_OK);
    ASSERT_EQ(points->create_DTP("of b", "b"), VL_OK);
    write("", "<templates><template name='a' type='text' max-size='2'/></templates>");
    const std::string told = reload();
    EXPECT_TRUE(contains(told, "event=needs-restart template=a")) << told;
    EXPECT_TRUE(contains(told, "event=needs-restart template=b")) << told;
    EXPECT_EQ(points->set_DTP("of a", buffer("12")), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(points->create_DTP("another of b", "b"), VL_OK);
    // Once nothing is made from them any more, they change.
    for (const char* point : {"of a", "of b", "another of b"})
        ASSERT_EQ(points->remove_DTP(point), VL_OK);
    EXPECT_FALSE(contains(reload(), "needs-restart"));
    EXPECT_EQ(points->create_DTP("of b", "b"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(points->create_DTP("of a", "a"), VL_OK);
    EXPECT_EQ(points->set_DTP("of a", buffer("12")), VL_OK);
}

TEST_F(Reload, WhatNeedsARestartIsTold)
{
    write("server='a'");
    start();
    write("server='b' max-message='1'", "<realm name='r'/>");
    const std::string told = reload();
    for (const char* option : {"server", "realm", "max-message"})
        EXPECT_TRUE(contains(told, std::string("event=needs-restart option=") + option));
    EXPECT_EQ(points->create_DTP("p", "text"), VL_OK);
    EXPECT_EQ(points->set_DTP("p", buffer("12")), VL_OK) << "the old limit holds";
    EXPECT_FALSE(is_bound(velmod->naming_url(), std::string("r/") + keys::port_service));
}

TEST_F(Reload, AFaultyFileChangesNothing)
{
    write("max-points='1'");
    start();
    for (const char* faulty : {"max-points='many'", "max-points='9' typo='1'", "<"}) {
        write(faulty);
        const std::string told = reload();
        EXPECT_TRUE(contains(told, "event=reload-failed reason=\"" + file + ":2: "))
            << told;
    }
    std::filesystem::remove(file);
    EXPECT_TRUE(contains(reload(), "cannot be read"));
    EXPECT_EQ(points->create_DTP("a", "int8"), VL_OK);
    EXPECT_EQ(points->create_DTP("b", "int8"), CREATE_DATAPOINT_FAI);
    write("max-points='2'");
    reload();
    EXPECT_EQ(points->create_DTP("b", "int8"), VL_OK);
}

TEST_F(Reload, ATemplateThatIsTooLargeForTheServerChangesNothing)
{
    write("max-message='10' max-points='1'");
    start();
    write("max-message='10' max-points='2'",
          "<templates><template name='a' type='bytes' size='11'/></templates>");
    EXPECT_TRUE(contains(reload(), "event=reload-failed"));
    EXPECT_EQ(points->create_DTP("a", "int8"), VL_OK);
    EXPECT_EQ(points->create_DTP("b", "int8"), CREATE_DATAPOINT_FAI);
}

TEST(ReloadWithoutAFile, KeepsEverything)
{
    Velmod velmod;
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    velmod.process().signal(SIGHUP);
    EXPECT_TRUE(eventually([&] {
        return velmod.process().err().find("event=reloaded") != std::string::npos;
    }));
    EXPECT_EQ(ports->create_port("p", 1, 0), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(velmod.stop(), 0);
}

} // namespace
