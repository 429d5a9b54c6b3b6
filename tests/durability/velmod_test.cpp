// velmod --durable, as operators and clients see it.
#include <sys/resource.h>

#include <csignal>
#include <future>

#include <gtest/gtest.h>

#include "tests/durability/services.h"
#include "tests/support/http_get.h"
#include "tests/support/loopback.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

class DurableVelmod : public ::testing::Test {
protected:
    using Options = std::vector<std::string>;

    // On another port each time: a call on an old connection would fail for that alone.
    Services start(Options more = {})
    {
        more.insert(more.end(), {"--durable", "--data-dir", folder.path()});
        velmod.emplace(more);
        return Services(velmod->naming_url());
    }

    Services kill_and_start(const Options& more = {})
    {
        velmod->kill();
        return start(more);
    }

    static CORBA::Long set(const Services& services, const std::string& value)
    {
        return services.points->set_DTP("p", buffer(value));
    }

    // Sets the point to 1, 2 ... and gives the last one that was acknowledged.
    static int sets_until_refused(const Services& services)
    {
        int number = 0;
        while (set(services, std::to_string(number + 1) + std::string(1000, ' ')) == VL_OK)
            ++number;
        return number;
    }

    TemporaryFolder folder;
    std::optional<Velmod> velmod;
};

TEST_F(DurableVelmod, NeedsAFolder)
{
    Process process({velmod_path(), "--durable", "--listen", "127.0.0.1:0", "--no-unix"});
    EXPECT_EQ(process.wait(), 1);
    EXPECT_NE(process.err().find("--durable needs --data-dir"), std::string::npos)
        << process.err();
}

TEST_F(DurableVelmod, OneAtATimeHasTheFolder)
{
    start();
    Process second({velmod_path(), "--durable", "--data-dir", folder.path(), "--listen",
                    "127.0.0.1:0", "--no-unix"});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_NE(second.err().find("another velmod"), std::string::npos) << second.err();
    EXPECT_TRUE(velmod->process().running());
}

TEST_F(DurableVelmod, TellsHowItsJournalIs)
{
    const std::uint16_t metrics = free_port();
    const Services services = start({"--metrics", "127.0.0.1:" + std::to_string(metrics)});
    EXPECT_EQ(services.points->create_DTP("p", "text"), VL_OK);
    EXPECT_EQ(services.value("$SYS/journal/state"), "writing");
    const std::string page = http_get(metrics, "/metrics");
    EXPECT_NE(page.find("\nvelmod_journal_failing 0"), std::string::npos) << page;
    EXPECT_NE(page.find("\nvelmod_journal_groups_total "), std::string::npos) << page;
    EXPECT_EQ(services.value("$SYS/journal/reason"), "");
    EXPECT_GT(std::stoi(services.value("$SYS/journal/changes").value_or("0")), 1);
    EXPECT_EQ(services.value("$SYS/journal/failures"), "0");
    velmod.reset();
    velmod.emplace();
    EXPECT_FALSE(Services(velmod->naming_url()).value("$SYS/journal/state"));
}

TEST_F(DurableVelmod, LoadsSnapshotsTheFirstTimeOnly)
{
    velmod.emplace(Options{"--data-dir", folder.path()});
    {
        const Services services(velmod->naming_url());
        ASSERT_EQ(services.points->create_DTP("p", "text"), VL_OK);
        ASSERT_EQ(set(services, "saved"), VL_OK);
        ASSERT_EQ(services.points->make_DTP_snapshot(), VL_OK);
    }
    const Services first = kill_and_start({"--load"});
    EXPECT_EQ(first.value("p"), "saved");
    EXPECT_EQ(set(first, "later"), VL_OK);
    EXPECT_EQ(kill_and_start({"--load"}).value("p"), "later");
}

TEST_F(DurableVelmod, LoadingASnapshotIsAChangeAsWell)
{
    const Services services = start();
    ASSERT_EQ(services.points->create_DTP("p", "text"), VL_OK);
    ASSERT_EQ(services.ports->create_port("port", 1, 0), VL_OK);
    ASSERT_EQ(services.ports->send_packet(1, buffer("saved"), 0), VL_OK);
    ASSERT_EQ(set(services, "saved"), VL_OK);
    ASSERT_EQ(services.points->make_DTP_snapshot(), VL_OK);
    ASSERT_EQ(services.ports->make_port_snapshot(), VL_OK);
    ASSERT_EQ(set(services, "later"), VL_OK);
    ASSERT_EQ(services.ports->send_packet(1, buffer("later"), 0), VL_OK);
    ASSERT_EQ(services.points->load_DTP_snapshot(), VL_OK);
    ASSERT_EQ(services.ports->load_port_snapshot(), VL_OK);

    const Services again = kill_and_start();
    EXPECT_EQ(again.value("p"), "saved");
    Velmo::DATA_BUFFER_var data;
    ASSERT_EQ(again.ports->receive_packet(1, 0, data.out(), 0), VL_OK);
    EXPECT_EQ(text(data.in()), "saved");
    EXPECT_EQ(again.ports->receive_packet(1, 0, data.out(), 0), EMPTY_QUEUE);
}

TEST_F(DurableVelmod, APacketHandedToAWaitingReceiverIsNotThereAgain)
{
    const Services services = start();
    ASSERT_EQ(services.ports->create_port("port", 1, 0), VL_OK);
    auto received = std::async(std::launch::async, [&] {
        Velmo::DATA_BUFFER_var data;
        return services.ports->receive_packet(1, 0, data.out(), 60000) == VL_OK
                   ? text(data.in())
                   : "";
    });
    ASSERT_TRUE(
        eventually([&] { return services.value("$SYS/ports/port/waiting") == "1"; }));
    ASSERT_EQ(services.ports->send_packet(1, buffer("packet"), 0), VL_OK);
    EXPECT_EQ(received.get(), "packet");

    const Services again = kill_and_start();
    EXPECT_EQ(again.value("$SYS/ports/port/depth"), "0");
    EXPECT_EQ(again.ports->reply_packet(1, buffer("reply"), 0), VL_OK);
    EXPECT_EQ(again.ports->reply_packet(1, buffer("reply"), 0), NON_EXIST_DATA);
}

// Of the files that velmod writes.
void limit_file_size(Velmod& velmod, rlim_t bytes)
{
    rlimit limit{};
    ASSERT_EQ(prlimit(velmod.process().pid(), RLIMIT_FSIZE, nullptr, &limit), 0);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    ASSERT_EQ(prlimit(velmod.process().pid(), RLIMIT_FSIZE, &limit, nullptr), 0);
}

TEST_F(DurableVelmod, WithoutRoomItRefusesChangesAndResumesByItself)
{
    const Services services = start();
    ASSERT_EQ(services.points->create_DTP("p", "text"), VL_OK);
    limit_file_size(*velmod, 100000);
    const int acknowledged = sets_until_refused(services);
    EXPECT_GT(acknowledged, 0);
    EXPECT_EQ(set(services, "refused"), OBJECT_PATCH_FAI);
    EXPECT_EQ(services.ports->create_port("port", 1, 0), OBJECT_PATCH_FAI);
    EXPECT_EQ(services.value("$SYS/journal/state"), "failing");
    EXPECT_FALSE(services.value("$SYS/journal/reason")->empty());
    const int in_memory = std::stoi(services.value("p").value_or("0"));
    EXPECT_EQ(in_memory, acknowledged + 1) << "the one that could not be written";
    EXPECT_EQ(services.value("$SYS/ports/port/depth"), std::nullopt) << "refused at once";

    limit_file_size(*velmod, RLIM_INFINITY);
    EXPECT_TRUE(
        eventually([&] { return services.value("$SYS/journal/state") == "writing"; }));
    EXPECT_EQ(services.ports->create_port("port", 1, 0), VL_OK);
    EXPECT_EQ(std::stoi(services.value("p").value_or("0")), in_memory);

    const Services again = kill_and_start();
    EXPECT_EQ(std::stoi(again.value("p").value_or("0")), in_memory);
    EXPECT_EQ(again.value("$SYS/ports/port/depth"), "0");
}

TEST_F(DurableVelmod, KilledWithoutRoomItHasWhatWasAcknowledged)
{
    const Services services = start();
    ASSERT_EQ(services.points->create_DTP("p", "text"), VL_OK);
    limit_file_size(*velmod, 100000);
    const int acknowledged = sets_until_refused(services);
    const int found = std::stoi(kill_and_start().value("p").value_or("0"));
    EXPECT_TRUE(found == acknowledged || found == acknowledged + 1)
        << found << " for " << acknowledged;
}

} // namespace
