// What a realm was when its server ended it is when the next one starts.
#include <random>

#include <gtest/gtest.h>

#include "tests/server/journal/kept_realm.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Recovery : public ::testing::Test {
protected:
    TemporaryFolder folder;
};

TEST_F(Recovery, OfANewFolderIsEmpty)
{
    KeptRealm realm(folder.path() / "new");
    EXPECT_TRUE(realm.content() == Content());
    EXPECT_TRUE(std::filesystem::exists(journal::state_file(folder.path() / "new", "S")));
}

TEST_F(Recovery, KeepsEveryByte)
{
    const std::string name("n\xC3\xA4me/\xFF \n'", 10);
    Content before;
    {
        KeptRealm realm(folder.path());
        ASSERT_EQ(realm->points.create(name, "bytes"), VL_OK);
        ASSERT_EQ(realm->points.set(name, binary(100000)), VL_OK);
        ASSERT_EQ(realm->points.set_description(name, name), VL_OK);
        ASSERT_EQ(realm->points.create("empty", "bytes"), VL_OK);
        ASSERT_EQ(realm->points.set("empty", bytes_of("")), VL_OK);
        ASSERT_EQ(realm->points.create("none", "bytes"), VL_OK);
        ASSERT_EQ(realm->ports.create_port(name, 0xFFFFFFFF, 0), VL_OK);
        ASSERT_EQ(realm->ports.send_packet(0xFFFFFFFF, binary(70000), 0), VL_OK);
        ASSERT_EQ(realm->ports.send_packet(0xFFFFFFFF, bytes_of(""), 0), VL_OK);
        ASSERT_EQ(realm->events.declare_event(0xFFFFFFFF, binary(1000), 1), VL_OK);
        ASSERT_EQ(realm->events.add_event(name, 0xFFFFFFFF), VL_OK);
        ASSERT_EQ(realm->contention.regist_contender(name, name, binary(300), name, -5),
                  VL_OK);
        ASSERT_TRUE(realm.confirmed());
        before = realm.content();
    }
    KeptRealm again(folder.path());
    EXPECT_TRUE(again.content() == before);
}

TEST_F(Recovery, BeginsWithWhatItIsGivenOnceOnly)
{
    int begun = 0;
    const auto begin = [&](model::Realm& realm) {
        ++begun;
        std::string problem;
        EXPECT_EQ(realm.points.restore({{"p", "text", "", bytes_of("1")}}, problem), VL_OK);
    };
    {
        KeptRealm realm(folder.path(), begin);
        EXPECT_EQ(realm->points.set("p", bytes_of("2")), VL_OK);
    }
    KeptRealm again(folder.path(), begin);
    EXPECT_EQ(begun, 1);
    model::Data value;
    ASSERT_EQ(again->points.get("p", value), VL_OK);
    EXPECT_EQ(model::as_text(value), "2");
}

TEST_F(Recovery, BeginsAgainWhenTheBeginningFailed)
{
    const auto fail = [](model::Realm& realm) {
        EXPECT_EQ(realm.points.create("half", "text"), VL_OK);
        throw std::runtime_error("no snapshot");
    };
    EXPECT_THROW(KeptRealm(folder.path(), fail), std::runtime_error);
    int begun = 0;
    KeptRealm again(folder.path(), [&](model::Realm&) { ++begun; });
    EXPECT_EQ(begun, 1);
}

TEST_F(Recovery, KeepsTemplatesThatPointsAreMadeFrom)
{
    const model::TemplateDefinition tiny{"tiny", "text", {}, 4, "new", "description"};
    Content before;
    {
        KeptRealm realm(folder.path(), [](model::Realm&) {}, {tiny});
        ASSERT_EQ(realm->points.create("p", "tiny"), VL_OK);
        ASSERT_TRUE(realm.confirmed());
        before = realm.content();
    }
    KeptRealm without(folder.path());
    EXPECT_TRUE(without.content() == before);
    EXPECT_EQ(without->points.set("p", bytes_of("12345")), SIZE_IS_NOT_MATCH);
}

TEST_F(Recovery, KeepsTemplatesThatCameLater)
{
    const model::TemplateDefinition later{"later", "int32", {}, {}, "7", ""};
    {
        KeptRealm realm(folder.path());
        EXPECT_TRUE(realm->templates.reconfigure({later}).empty());
        EXPECT_TRUE(realm.kept().keep_templates());
    }
    KeptRealm again(folder.path());
    EXPECT_TRUE(again->templates.find("later"));
}

TEST_F(Recovery, OneServerAtATimeHasTheFile)
{
    const KeptRealm first(folder.path());
    try {
        const KeptRealm second(folder.path());
        FAIL() << "two servers";
    } catch (const store::StoreError& error) {
        EXPECT_NE(std::string(error.what()).find("another velmod"), std::string::npos)
            << error.what();
    }
}

TEST_F(Recovery, TheMasterStaysAndHasAHigherEpoch)
{
    std::uint64_t epoch = 0;
    {
        KeptRealm realm(folder.path());
        EXPECT_EQ(realm->contention.regist_contender("g", "a", bytes_of(""), "", 1), VL_OK);
        EXPECT_EQ(realm->contention.regist_contender("g", "b", bytes_of(""), "", 1), VL_OK);
        EXPECT_EQ(realm->contention.regist_contender("left", "c", bytes_of(""), "", 1),
                  VL_OK);
        EXPECT_EQ(realm->contention.out_contend("left", "c"), VL_OK);
        epoch = realm->contention.status("g")->epoch;
    }
    for (int restart = 0; restart < 3; ++restart) {
        KeptRealm again(folder.path());
        const auto group = again->contention.status("g");
        ASSERT_TRUE(group);
        ASSERT_EQ(group->contenders.size(), 2u);
        EXPECT_EQ(group->contenders.front().name, "a");
        EXPECT_GT(group->epoch, epoch);
        EXPECT_GT(group->contenders.front().lease_left.count(), 0);
        epoch = group->epoch;
        const auto left = again->contention.status("left");
        ASSERT_TRUE(left) << "a group that nobody stands in";
        EXPECT_TRUE(left->contenders.empty());
    }
}

// Random operations, most of which succeed, on few names; with restarts in between.
class RandomChanges {
public:
    explicit RandomChanges(unsigned start) : random(start) {}

    void step(model::Realm& realm)
    {
        const std::string name = "n" + std::to_string(any(6));
        const std::string other = "n" + std::to_string(any(6));
        const model::Handle handle = any(6) + 1;
        const model::Data data = binary(any(3) == 0 ? 5000 : any(40), any(1000));
        model::Data got;
        switch (any(25)) {
        case 0:
            realm.points.create(name, "bytes");
            break;
        case 1:
            realm.points.create_set(name, "text", "a\nb\n");
            break;
        case 2:
            realm.points.remove(any(2) ? name : name + "/a");
            break;
        case 3:
        case 4:
            realm.points.set(name, data);
            break;
        case 5:
            realm.points.set_description(name, std::to_string(any(1000)));
            break;
        case 6:
            realm.ports.create_port(name, handle, any(5));
            break;
        case 7:
            realm.ports.connect_port(name, other, any(3) ? 30001 : 30004);
            break;
        case 8:
            realm.ports.disconnect_port(handle);
            break;
        case 9:
            realm.ports.register_port_host(name, other);
            break;
        case 10:
            realm.ports.enable_copy(name, any(2));
            break;
        case 11:
        case 12:
            realm.ports.send_packet(handle, data, 0);
            break;
        case 13:
            realm.ports.send_packet_to_front(handle, data, 0);
            break;
        case 14:
            realm.ports.receive_packet(handle, 0, got, 0);
            break;
        case 15:
            realm.ports.receive_packet(handle, any(6) + 1, got, 0);
            break;
        case 16:
            realm.ports.reply_packet(handle, data, 0);
            break;
        case 17:
            realm.ports.receive_reply(handle, got, 0);
            break;
        case 18:
            realm.events.declare_event(any(3), data, 1);
            break;
        case 19:
            realm.events.add_event(name, any(3));
            break;
        case 20:
            realm.events.send_event(name, data);
            break;
        case 21:
            realm.events.clear_event(name);
            break;
        case 22:
            realm.contention.regist_contender(name, other, data, name,
                                              static_cast<int>(any(5)));
            break;
        case 23:
            realm.contention.out_contend(name, other);
            break;
        default:
            replace(realm);
            break;
        }
    }

private:
    // As a loaded snapshot does; now and then.
    void replace(model::Realm& realm)
    {
        if (any(10) != 0)
            return;
        if (any(2) == 0)
            ports = realm.ports.image();
        for (model::PortImage& port : ports.ports)
            for (model::PacketImage& packet : port.packets)
                packet.number = 0; // snapshots do not know it
        EXPECT_EQ(realm.ports.restore(ports), VL_OK);
        if (any(2) == 0)
            events = realm.events.image();
        EXPECT_EQ(realm.events.restore(events), VL_OK);
        std::string problem;
        EXPECT_EQ(realm.points.restore({{"n1", "bytes", "d", binary(any(100))}}, problem),
                  VL_OK);
    }

    unsigned any(unsigned below) { return static_cast<unsigned>(random() % below); }

    std::mt19937 random;
    model::PortsImage ports;
    model::EventsImage events;
};

TEST_F(Recovery, IsExactWhateverHasHappened)
{
    RandomChanges changes(7);
    Content before;
    for (int restart = 0; restart < 40; ++restart) {
        KeptRealm realm(folder.path());
        ASSERT_TRUE(realm.content() == before) << "restart " << restart;
        for (int i = 0; i < 300; ++i)
            changes.step(*realm);
        ASSERT_TRUE(realm.confirmed());
        before = realm.content();
    }
    EXPECT_FALSE(before.points.empty());
    EXPECT_FALSE(before.ports.ports.empty());
    EXPECT_FALSE(before.contenders.empty());
}

} // namespace
