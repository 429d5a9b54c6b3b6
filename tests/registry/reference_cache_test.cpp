// What the registry asks the naming client for, and what it remembers.

#include <utility>

#include "tests/registry/registry_test.h"

namespace velmo::tests {

namespace {

using Lookup = NamingStandIn::Lookup;
using Lookups = std::vector<Lookup>;
using Names = std::vector<std::string>;

class ReferenceCacheTest : public RegistryTest {};

TEST_F(ReferenceCacheTest, nothing_is_looked_up_before_it_is_asked_for)
{
    EXPECT_EQ(naming.lookups(), Lookups{});
    EXPECT_TRUE(registry.serverMap.empty());
}

TEST_F(ReferenceCacheTest, without_a_realm_the_bare_key_is_looked_up)
{
    EXPECT_TRUE(get_port("server", nullptr));
    EXPECT_TRUE(get_point("server", nullptr));
    EXPECT_TRUE(get_template("server", nullptr));
    EXPECT_TRUE(get_contention("server", nullptr));
    EXPECT_EQ(naming.lookups(),
              (Lookups{{"server", "ref_key_data_port_naming_service"},
                       {"server", "ref_key_data_template_point_naming_service"},
                       {"server", "ref_key_data_template_naming_service"},
                       {"server", "ref_key_contender_server"}}));
}

TEST_F(ReferenceCacheTest, in_a_realm_the_key_is_looked_up_below_the_realm)
{
    EXPECT_TRUE(get_port("server", "alpha"));
    EXPECT_TRUE(get_point("server", "alpha"));
    EXPECT_TRUE(get_template("server", "alpha"));
    EXPECT_TRUE(get_contention("server", "alpha"));
    EXPECT_EQ(naming.lookups(),
              (Lookups{{"server", "/alpha/ref_key_data_port_naming_service"},
                       {"server", "/alpha/ref_key_data_template_point_naming_service"},
                       {"server", "/alpha/ref_key_data_template_naming_service"},
                       {"server", "/alpha/ref_key_contender_server"}}));
}

TEST_F(ReferenceCacheTest, a_realm_goes_into_the_name_unchanged)
{
    get_port("server", "/odd realm/ROOT//");
    EXPECT_EQ(naming.lookups(),
              (Lookups{{"server", "//odd realm/ROOT///ref_key_data_port_naming_service"}}));
}

TEST_F(ReferenceCacheTest, realm_null_and_the_empty_realm_share_one_entry_and_the_bare_key)
{
    EXPECT_TRUE(get_port("server", nullptr));
    EXPECT_TRUE(get_port("server", ""));
    EXPECT_TRUE(get_contention("server", ""));
    EXPECT_TRUE(get_contention("server", nullptr));
    EXPECT_EQ(naming.lookups(), (Lookups{{"server", "ref_key_data_port_naming_service"},
                                         {"server", "ref_key_contender_server"}}));
    EXPECT_EQ(realms("server"), Names{""});

    registry.ReleasePortReference("server", nullptr);
    EXPECT_EQ(realms("server"), Names{});
}

TEST_F(ReferenceCacheTest, server_null_and_the_empty_server_share_one_entry)
{
    offer("");
    EXPECT_TRUE(get_port(nullptr, nullptr));
    EXPECT_TRUE(get_port("", nullptr));
    EXPECT_EQ(naming.lookups(), (Lookups{{"", "ref_key_data_port_naming_service"}}));
    EXPECT_EQ(realms(nullptr), realms(""));
    EXPECT_EQ(registry.serverMap.size(), 1u);
}

TEST_F(ReferenceCacheTest, a_null_server_does_in_every_member)
{
    offer("");
    EXPECT_TRUE(get_point(nullptr, nullptr));
    EXPECT_TRUE(get_template(nullptr, nullptr));
    EXPECT_TRUE(get_contention(nullptr, nullptr));
    EXPECT_TRUE(get_manager(nullptr));
    registry.ReleasePortReference(nullptr, nullptr);
    registry.ReleaseDtpReference(nullptr, nullptr);
    registry.ReleaseDtReference(nullptr, nullptr);
    registry.ReleaseContenterReference(nullptr, nullptr);
    registry.releaseAllReference(nullptr);
    for (const Lookup& lookup : naming.lookups())
        EXPECT_EQ(lookup.first, "");
}

TEST_F(ReferenceCacheTest, a_second_request_makes_no_naming_call)
{
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(get_port("server", "alpha"));
        EXPECT_TRUE(get_point("server", "alpha"));
        EXPECT_TRUE(get_template("server", "alpha"));
        EXPECT_TRUE(get_contention("server", "alpha"));
    }
    EXPECT_EQ(naming.lookups().size(), 4u);
}

TEST_F(ReferenceCacheTest, the_cached_reference_is_the_object_that_was_found)
{
    for (int i = 0; i < 2; ++i) {
        Velmo::DT_PORT_SVC::Port_Factory_var reference =
            registry.GetPortReferenceWithServerName("server", nullptr);
        ASSERT_FALSE(CORBA::is_nil(reference.in()));
        EXPECT_TRUE(reference->_is_equivalent(ports.reference().in()));
    }
}

TEST_F(ReferenceCacheTest, servers_and_realms_have_references_of_their_own)
{
    offer("another");
    EXPECT_TRUE(get_port("server", nullptr));
    EXPECT_TRUE(get_port("server", "alpha"));
    EXPECT_TRUE(get_port("another", nullptr));
    EXPECT_TRUE(get_port("another", "alpha"));
    EXPECT_EQ(naming.lookups().size(), 4u);
}

TEST_F(ReferenceCacheTest, server_names_are_told_apart_by_case)
{
    offer("SERVER");
    EXPECT_TRUE(get_port("server", nullptr));
    EXPECT_TRUE(get_port("SERVER", nullptr));
    EXPECT_EQ(registry.serverMap.size(), 2u);
}

TEST_F(ReferenceCacheTest, more_than_twenty_servers_are_remembered)
{
    for (int i = 0; i < 57; ++i)
        offer("server " + std::to_string(i));
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 57; ++i)
            EXPECT_TRUE(get_port(("server " + std::to_string(i)).c_str(), "alpha")) << i;
    }
    EXPECT_EQ(naming.lookups().size(), 57u);
    EXPECT_EQ(registry.serverMap.size(), 57u);
}

TEST_F(ReferenceCacheTest,
       a_realm_is_listed_from_its_successful_look_up_until_it_is_dropped)
{
    EXPECT_EQ(realms("server"), Names{});
    EXPECT_FALSE(get_port("server", "no such realm"));
    EXPECT_EQ(realms("server"), Names{});
    EXPECT_TRUE(get_port("server", "alpha"));
    EXPECT_EQ(naming.lookups().back(),
              Lookup("server", "/alpha/ref_key_data_port_naming_service"));
    EXPECT_EQ(realms("server"), Names{"alpha"});
    registry.ReleasePortReference("server", "alpha");
    EXPECT_EQ(realms("server"), Names{});
}

TEST_F(ReferenceCacheTest, realms_are_listed_in_byte_order)
{
    for (const char* realm : {"b", "", "ab", "a", "B", "\xc3\xa4"}) {
        naming.bind("server", std::string("/") + realm + "/" + keys::port_service,
                    ports.reference().in());
        EXPECT_TRUE(get_port("server", realm));
    }
    EXPECT_EQ(realms("server"), (Names{"", "B", "a", "ab", "b", "\xc3\xa4"}));
}

TEST_F(ReferenceCacheTest, realms_of_the_other_services_are_not_listed)
{
    EXPECT_TRUE(get_point("server", "alpha"));
    EXPECT_TRUE(get_template("server", "alpha"));
    EXPECT_TRUE(get_contention("server", "alpha"));
    EXPECT_TRUE(get_manager("server"));
    EXPECT_EQ(realms("server"), Names{});
}

TEST_F(ReferenceCacheTest, listing_realms_creates_no_entry)
{
    EXPECT_EQ(realms("never looked up"), Names{});
    EXPECT_TRUE(registry.serverMap.empty());
}

TEST_F(ReferenceCacheTest, there_never_is_a_file_service)
{
    for (const char* server : {"server", "", static_cast<const char*>(nullptr)}) {
        for (const char* realm : {"alpha", "", static_cast<const char*>(nullptr)}) {
            EXPECT_EQ(registry.GetFileReferenceWithServerName(server, realm), nullptr);
            registry.ReleaseFileReference(server, realm);
        }
    }
    EXPECT_EQ(naming.lookups(), Lookups{});
    EXPECT_TRUE(registry.serverMap.empty());
}

TEST_F(ReferenceCacheTest, releasing_the_file_service_leaves_the_others_cached)
{
    EXPECT_TRUE(get_port("server", "alpha"));
    registry.ReleaseFileReference("server", "alpha");
    EXPECT_TRUE(get_port("server", "alpha"));
    EXPECT_EQ(naming.lookups().size(), 1u);
}

TEST_F(ReferenceCacheTest, the_service_manager_is_looked_up_every_time_and_never_in_a_realm)
{
    EXPECT_TRUE(get_manager("server"));
    EXPECT_TRUE(get_manager("server"));
    const Lookup lookup("server", "Velmo_service_manager_naming_service_ref");
    EXPECT_EQ(naming.lookups(), (Lookups{lookup, lookup}));
    EXPECT_EQ(registry.serverMap.size(), 1u);
}

class ReleaseTest : public ReferenceCacheTest {
protected:
    void fill()
    {
        for (const char* realm : {"", "alpha"})
            missing(realm);
    }

    // Asks for every service: those that were not in the cache.
    std::string missing(const char* realm)
    {
        std::string result;
        std::size_t known = naming.lookups().size();
        const auto asked = [&](bool there) {
            EXPECT_TRUE(there);
            const std::size_t before = std::exchange(known, naming.lookups().size());
            return known > before;
        };
        if (asked(get_port("server", realm)))
            result += "port ";
        if (asked(get_point("server", realm)))
            result += "point ";
        if (asked(get_template("server", realm)))
            result += "template ";
        if (asked(get_contention("server", realm)))
            result += "contention ";
        return result;
    }
};

TEST_F(ReleaseTest, a_released_port_is_looked_up_anew_and_nothing_else_is)
{
    fill();
    registry.ReleasePortReference("server", "alpha");
    EXPECT_EQ(missing("alpha"), "port ");
    EXPECT_EQ(missing(""), "");
}

TEST_F(ReleaseTest, a_released_point_factory_is_looked_up_anew_and_nothing_else_is)
{
    fill();
    registry.ReleaseDtpReference("server", "alpha");
    EXPECT_EQ(missing("alpha"), "point ");
    EXPECT_EQ(missing(""), "");
}

TEST_F(ReleaseTest, a_released_template_manager_is_looked_up_anew_and_nothing_else_is)
{
    fill();
    registry.ReleaseDtReference("server", "alpha");
    EXPECT_EQ(missing("alpha"), "template ");
    EXPECT_EQ(missing(""), "");
}

TEST_F(ReleaseTest, a_released_contention_server_is_looked_up_anew_and_nothing_else_is)
{
    fill();
    registry.ReleaseContenterReference("server", "alpha");
    EXPECT_EQ(missing("alpha"), "contention ");
    EXPECT_EQ(missing(""), "");
}

TEST_F(ReleaseTest, releasing_the_unnamed_realm_leaves_the_named_ones)
{
    fill();
    registry.ReleasePortReference("server", nullptr);
    registry.ReleaseContenterReference("server", nullptr);
    EXPECT_EQ(missing("alpha"), "");
    EXPECT_EQ(missing(""), "port contention ");
}

TEST_F(ReleaseTest,
       releasing_everything_of_a_server_empties_every_cache_and_keeps_the_entry)
{
    fill();
    offer("another");
    EXPECT_TRUE(get_port("another", nullptr));
    registry.releaseAllReference("server");
    EXPECT_EQ(registry.serverMap.size(), 2u);
    EXPECT_EQ(realms("server"), Names{});
    EXPECT_EQ(realms("another"), Names{""});
    EXPECT_EQ(missing("alpha"), "port point template contention ");
}

TEST_F(ReleaseTest, releases_for_a_server_never_looked_up_do_nothing_and_create_no_entry)
{
    registry.releaseAllReference("never looked up");
    registry.ReleasePortReference("never looked up", "alpha");
    registry.ReleaseDtpReference("never looked up", "alpha");
    registry.ReleaseDtReference("never looked up", "alpha");
    registry.ReleaseContenterReference("never looked up", "alpha");
    EXPECT_TRUE(registry.serverMap.empty());
    EXPECT_EQ(naming.lookups(), Lookups{});
}

TEST_F(ReleaseTest, releasing_what_is_not_cached_does_nothing)
{
    fill();
    for (int i = 0; i < 2; ++i)
        registry.ReleasePortReference("server", "no such realm");
    EXPECT_EQ(missing("alpha"), "");
    EXPECT_EQ(missing(""), "");
}

TEST_F(ReleaseTest, a_rebuild_forgets_every_server_and_every_reference)
{
    fill();
    registry.BuildSettingData();
    EXPECT_TRUE(registry.serverMap.empty());
    EXPECT_EQ(realms("server"), Names{});
    EXPECT_EQ(missing("alpha"), "port point template contention ");
}

} // namespace

} // namespace velmo::tests
