// The realms of a server.

#include <cstdlib>
#include <stdexcept>

#include "idl/service_keys.h"
#include "tests/support/library_test.h"
#include "tests/support/service_servants.h"
#include "tests/support/test_orb.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

using Names = std::vector<std::string>;

// The default server "home" has a service manager.
class RealmListTest : public LibraryTest {
protected:
    RealmListTest()
    {
        set_own_servers({"home"});
        naming.bind("home", keys::service_manager, manager.reference().in());
    }
    ~RealmListTest() override { give_back(); }

    void answer(Names names, CORBA::Long result = 0)
    {
        Script::Reply reply{result};
        reply.names = names;
        manager->script().answer("get_releam_seq", reply);
    }

    Names names() const { return Names(list.names, list.names + list.count); }

    void give_back()
    {
        for (unsigned int i = 0; i < list.count; ++i)
            CORBA::string_free(list.names[i]);
        vl_free_memory(reinterpret_cast<void**>(&list.names));
        list.count = 0;
    }

    // What a caller may have left in the record.
    void dirty()
    {
        list.count = 7;
        list.names = stale;
    }
    void expect_empty() const
    {
        EXPECT_EQ(list.count, 0u);
        EXPECT_EQ(list.names, nullptr);
    }

    Published<ServiceManagerServant> manager;
    NameList list{};
    char* stale[1] = {nullptr};
};

TEST_F(RealmListTest, lists_what_the_service_manager_says)
{
    answer({"ROOT", "alpha", "", "\xc3\xa4"});
    EXPECT_EQ(vl_releam_seq(&list, "home"), 0);
    EXPECT_EQ(names(), (Names{"ROOT", "alpha", "", "\xc3\xa4"}));
}

TEST_F(RealmListTest, without_a_service_manager_is_the_one_realm_ROOT)
{
    dirty();
    EXPECT_EQ(vl_releam_seq(&list, "has none"), 0);
    EXPECT_EQ(names(), Names{"ROOT"});
}

TEST_F(RealmListTest, with_a_service_manager_of_another_type_is_the_one_realm_ROOT)
{
    Published<TemplateServant> other;
    naming.bind("home", keys::service_manager, other.reference().in());
    EXPECT_EQ(vl_releam_seq(&list, "home"), 0);
    EXPECT_EQ(names(), Names{"ROOT"});
}

TEST_F(RealmListTest, of_a_server_without_realms_is_empty)
{
    answer({});
    dirty();
    EXPECT_EQ(vl_releam_seq(&list, "home"), 0);
    EXPECT_EQ(list.count, 0u);
    EXPECT_NE(list.names, stale);
}

TEST_F(RealmListTest, from_a_service_manager_that_delivers_no_list_is_empty)
{
    Script::Reply nothing;
    nothing.names.reset();
    manager->script().answer("get_releam_seq", nothing);
    dirty();
    EXPECT_EQ(vl_releam_seq(&list, "home"), 0);
    expect_empty();
}

TEST_F(RealmListTest, ignores_the_service_managers_own_result)
{
    answer({"alpha"}, 2007);
    EXPECT_EQ(vl_releam_seq(&list, "home"), 0);
    EXPECT_EQ(names(), Names{"alpha"});
}

TEST_F(RealmListTest, of_a_failed_call_is_empty_with_137_and_no_log_line)
{
    manager->script().answer("get_releam_seq", Script::raising(CORBA::COMM_FAILURE()));
    dirty();
    EXPECT_EQ(vl_releam_seq(&list, "home"), 137);
    expect_empty();
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(RealmListTest, looks_the_service_manager_up_at_every_call_outside_any_realm)
{
    answer({"alpha"});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(vl_releam_seq(&list, nullptr), 0);
        give_back();
    }
    EXPECT_EQ(naming.lookups_of("Velmo_service_manager_naming_service_ref"), 3u);
    EXPECT_EQ(naming.lookups().size(), 3u);
}

TEST_F(RealmListTest, without_any_server_is_empty_with_3000)
{
    set_own_servers({""});
    dirty();
    EXPECT_EQ(vl_releam_seq(&list, nullptr), 3000);
    expect_empty();
    EXPECT_TRUE(naming.lookups().empty());
}

TEST_F(RealmListTest, without_default_server_goes_on_with_an_empty_name)
{
    set_own_servers({""});
    EXPECT_EQ(vl_releam_seq(&list, ""), 0);
    EXPECT_EQ(names(), Names{"ROOT"});
    EXPECT_EQ(naming.lookups().at(0).first, "");
}

TEST_F(RealmListTest, of_no_name_and_of_an_empty_name_is_that_of_the_first_own_server)
{
    answer({"alpha"});
    for (const char* server : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(vl_releam_seq(&list, server), 0);
        EXPECT_EQ(names(), Names{"alpha"});
        give_back();
    }
}

TEST_F(RealmListTest, what_the_look_up_raises_passes_out)
{
    naming.resolve_with([](const std::string&, const std::string&) -> CORBA::Object_var {
        throw std::runtime_error("naming failed");
    });
    dirty();
    EXPECT_THROW(vl_releam_seq(&list, "home"), std::runtime_error);
    expect_empty();
}

TEST_F(RealmListTest, into_null_gives_137_without_asking_anybody)
{
    EXPECT_EQ(vl_releam_seq(nullptr, "home"), 137);
    EXPECT_EQ(vl_releam_seq(nullptr, nullptr), 137);
    EXPECT_TRUE(naming.lookups().empty());
}

} // namespace

} // namespace velmo::tests
