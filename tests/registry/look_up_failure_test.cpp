// Look-ups that find nothing, and those that raise an exception.

#include <functional>
#include <future>
#include <stdexcept>

#include "registry/vlServerReference.h"
#include "tests/registry/registry_test.h"
#include "tests/support/eventually.h"
#include "tests/support/registry_locks.h"

namespace velmo::tests {

namespace {

// One kind of look-up: how it is made.
struct Service {
    const char* name;
    std::function<bool(vlReferenceContainer&)> get;
    const char* key;
};

void PrintTo(const Service& service, std::ostream* out)
{
    *out << service.name;
}

const Service services[] = {
    {"port",
     [](vlReferenceContainer& registry) {
         return got(registry.GetPortReferenceWithServerName("server", nullptr));
     },
     keys::port_service},
    {"point",
     [](vlReferenceContainer& registry) {
         return got(registry.GetDptReferenceWithServerName("server", nullptr));
     },
     keys::data_template_point_service},
    {"template",
     [](vlReferenceContainer& registry) {
         return got(registry.GetDtRefrenceWithServerName("server", nullptr));
     },
     keys::data_template_service},
    {"contention",
     [](vlReferenceContainer& registry) {
         return got(registry.GetContenerReferenceWithServerName("server", nullptr));
     },
     keys::contention_service},
    {"manager",
     [](vlReferenceContainer& registry) {
         return got(registry.GetServiceRefrence("server"));
     },
     keys::service_manager},
};

class LookUpFailureTest : public RegistryTest,
                          public ::testing::WithParamInterface<Service> {
protected:
    bool get() { return GetParam().get(registry); }

    // A later call, from another thread: whatever is locked still would stop it.
    bool get_from_another_thread()
    {
        auto later = std::async(std::launch::async, [this] { return get(); });
        return later.wait_for(patience) == std::future_status::ready && later.get();
    }
};

INSTANTIATE_TEST_SUITE_P(EveryService, LookUpFailureTest, ::testing::ValuesIn(services),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(LookUpFailureTest, a_name_that_is_not_bound_gives_null_and_is_asked_for_again)
{
    naming.reset();
    EXPECT_FALSE(get());
    EXPECT_FALSE(get());
    EXPECT_EQ(naming.lookups().size(), 2u);
    offer("server");
    EXPECT_TRUE(get());
}

TEST_P(LookUpFailureTest, an_unknown_server_gets_an_entry_all_the_same)
{
    naming.reset();
    EXPECT_FALSE(get());
    EXPECT_EQ(registry.serverMap.size(), 1u);
    EXPECT_TRUE(realms("server").empty());
}

TEST_P(LookUpFailureTest, an_object_of_another_type_gives_null_and_is_not_cached)
{
    const bool is_port = GetParam().key == std::string(keys::port_service);
    naming.bind("server", GetParam().key,
                is_port ? points.reference().in() : ports.reference().in());
    EXPECT_FALSE(get());
    offer("server");
    EXPECT_TRUE(get());
    EXPECT_EQ(naming.lookups().size(), 2u);
}

TEST_P(LookUpFailureTest, what_the_naming_client_raises_passes_with_the_locks_released)
{
    naming.resolve_with([](const std::string&, const std::string&) -> CORBA::Object_var {
        throw std::runtime_error("naming failed");
    });
    EXPECT_THROW(get(), std::runtime_error);
    expect_locks_free(registry);
    naming.resolve_with(nullptr);
    EXPECT_TRUE(get_from_another_thread());
}

TEST_P(LookUpFailureTest, a_brokers_exception_of_the_naming_client_passes_likewise)
{
    naming.resolve_with([](const std::string&, const std::string&) -> CORBA::Object_var {
        throw CORBA::TRANSIENT();
    });
    EXPECT_THROW(get(), CORBA::TRANSIENT);
    expect_locks_free(registry);
    naming.resolve_with(nullptr);
    EXPECT_TRUE(get_from_another_thread());
}

// Of an object of no known type, narrowing asks the object's server, which is not
// there.
TEST_P(LookUpFailureTest, what_narrowing_raises_passes_with_the_locks_released)
{
    naming.bind("server", GetParam().key, dead_reference().in());
    EXPECT_THROW(get(), CORBA::SystemException);
    expect_locks_free(registry);
    offer("server");
    EXPECT_TRUE(get_from_another_thread());
}

TEST_P(LookUpFailureTest, without_the_registrys_lock_there_is_no_reference_and_no_look_up)
{
    ASSERT_EQ(registry.lock.acquire_write(), 0);
    EXPECT_FALSE(get());
    registry.lock.release();
    EXPECT_TRUE(naming.lookups().empty());
    EXPECT_TRUE(registry.serverMap.empty());
    EXPECT_TRUE(get());
}

class LockFailureTest : public RegistryTest {};

TEST_F(LockFailureTest, without_the_registrys_lock_releases_do_nothing_and_lists_are_empty)
{
    EXPECT_TRUE(get_port("server", nullptr));
    EXPECT_TRUE(get_template("server", nullptr));
    ASSERT_EQ(registry.lock.acquire_write(), 0);
    registry.ReleasePortReference("server", nullptr);
    registry.ReleaseDtReference("server", nullptr);
    registry.releaseAllReference("server");
    EXPECT_TRUE(realms("server").empty());
    registry.lock.release();
    EXPECT_TRUE(get_port("server", nullptr));
    EXPECT_TRUE(get_template("server", nullptr));
    EXPECT_EQ(naming.lookups().size(), 2u);
}

TEST_F(LockFailureTest, without_a_servers_lock_there_is_no_reference_and_no_look_up)
{
    vlServerReference entry("server");
    ASSERT_EQ(entry.lock.acquire_write(), 0);
    EXPECT_FALSE(got(entry.GetPortReference(nullptr)));
    EXPECT_FALSE(got(entry.GetDptReference(nullptr)));
    EXPECT_FALSE(got(entry.GetDtReference(nullptr)));
    EXPECT_FALSE(got(entry.GetContenderReference(nullptr)));
    EXPECT_FALSE(got(entry.GetServiceReference()));
    entry.lock.release();
    EXPECT_TRUE(naming.lookups().empty());
}

TEST_F(LockFailureTest, without_a_servers_lock_releases_do_nothing)
{
    vlServerReference entry("server");
    EXPECT_TRUE(got(entry.GetPortReference(nullptr)));
    ASSERT_EQ(entry.lock.acquire_write(), 0);
    entry.ReleasePortReference(nullptr);
    entry.releaseAllReference();
    entry.lock.release();
    EXPECT_TRUE(got(entry.GetPortReference(nullptr)));
    EXPECT_EQ(naming.lookups().size(), 1u);
}

} // namespace

} // namespace velmo::tests
