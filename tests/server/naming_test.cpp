// The naming contexts that velmod shows.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "idl/service_keys.h"
#include "orb/server.h"
#include "server/adapter.h"
#include "server/naming/binding_iterator.h"
#include "server/naming/naming_tree.h"
#include "util/naming_name.h"

using namespace velmo;
using CosNaming::NamingContext;
using naming::Binding;

namespace {

std::string text_of(const CosNaming::Name& name)
{
    std::string text;
    for (CORBA::ULong i = 0; i < name.length(); ++i)
        text += (i ? "/" : "") + std::string(name[i].id.in());
    return text;
}

class NamingTreeTest : public ::testing::Test {
protected:
    NamingTreeTest() : orb(orb::make_server_orb({{{"127.0.0.1", 0}}, ""})) {}
    ~NamingTreeTest() override { orb->destroy(); }

    // Something to bind, told apart by its key.
    CORBA::Object_var object(const std::string& key)
    {
        return CORBA::Object_var(
            orb->string_to_object(("corbaloc::127.0.0.1:1/" + key).c_str()));
    }

    void show(const std::vector<std::string>& paths)
    {
        std::vector<Binding> bindings;
        for (const std::string& path : paths)
            bindings.push_back({path, object(path)});
        tree = std::make_unique<naming::NamingTree>(orb.in(), bindings);
        server::open_adapters(orb.in());
        CORBA::Object_var found = orb->string_to_object(tree->url().c_str());
        root = NamingContext::_narrow(found.in());
    }

    bool resolves(const std::string& path, const std::string& key)
    {
        CORBA::Object_var found = root->resolve(util::name_of_path(path));
        return found->_is_equivalent(object(key).in());
    }

    // Why a path does not resolve, and the rest of its name.
    std::string failure(const CosNaming::Name& name)
    {
        try {
            CORBA::Object_var found = root->resolve(name);
            return "found";
        } catch (const NamingContext::NotFound& error) {
            const char* const reasons[] = {"missing ", "not context ", "not object "};
            return reasons[error.why] + text_of(error.rest_of_name);
        } catch (const NamingContext::InvalidName&) {
            return "invalid";
        }
    }

    std::string listing(const CosNaming::BindingList& bindings)
    {
        std::string text;
        for (CORBA::ULong i = 0; i < bindings.length(); ++i)
            text += text_of(bindings[i].binding_name) +
                    (bindings[i].binding_type == CosNaming::ncontext ? "/ " : " ");
        return text;
    }

    std::unique_ptr<naming::NamingTree> tree;
    CORBA::ORB_var orb;
    CosNaming::NamingContext_var root;
};

TEST_F(NamingTreeTest, NamesResolveAtEveryDepth)
{
    show({"a", "b/c", "b/d/e"});
    EXPECT_TRUE(resolves("a", "a"));
    EXPECT_TRUE(resolves("b/c", "b/c"));
    EXPECT_TRUE(resolves("b/d/e", "b/d/e"));
    EXPECT_FALSE(resolves("b/c", "a"));
}

TEST_F(NamingTreeTest, AContextResolvesToAContextToGoOnFrom)
{
    show({"b/d/e"});
    CORBA::Object_var found = root->resolve(util::name_of_path("b"));
    CosNaming::NamingContext_var b = NamingContext::_narrow(found.in());
    ASSERT_FALSE(CORBA::is_nil(b.in()));
    CORBA::Object_var e = b->resolve(util::name_of_path("d/e"));
    EXPECT_TRUE(e->_is_equivalent(object("b/d/e").in()));
}

TEST_F(NamingTreeTest, AMissingNameIsReportedWithTheRestFromThere)
{
    show({"a", "b/c"});
    EXPECT_EQ(failure(util::name_of_path("x")), "missing x");
    EXPECT_EQ(failure(util::name_of_path("x/y")), "missing x/y");
    EXPECT_EQ(failure(util::name_of_path("b/x/y")), "missing x/y");
    EXPECT_EQ(failure(util::name_of_path("b/c")), "found");
}

TEST_F(NamingTreeTest, AnObjectOnTheWayIsNoContext)
{
    show({"a", "b/c"});
    EXPECT_EQ(failure(util::name_of_path("a/x")), "not context a/x");
    EXPECT_EQ(failure(util::name_of_path("b/c/x/y")), "not context c/x/y");
}

TEST_F(NamingTreeTest, TheKindIsPartOfTheName)
{
    show({"a"});
    CosNaming::Name name = util::name_of_path("a");
    name[0].kind = "kind";
    EXPECT_EQ(failure(name), "missing a");
}

TEST_F(NamingTreeTest, TheEmptyNameIsInvalid)
{
    show({"a"});
    EXPECT_EQ(failure(CosNaming::Name()), "invalid");
}

TEST_F(NamingTreeTest, NobodyMayChangeIt)
{
    show({"a"});
    const CosNaming::Name name = util::name_of_path("n");
    EXPECT_THROW(root->bind(name, root.in()), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->rebind(name, root.in()), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->bind_context(name, root.in()), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->rebind_context(name, root.in()), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->unbind(util::name_of_path("a")), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->new_context(), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->bind_new_context(name), CORBA::NO_PERMISSION);
    EXPECT_THROW(root->destroy(), CORBA::NO_PERMISSION);
    EXPECT_EQ(failure(name), "missing n");
    EXPECT_EQ(failure(util::name_of_path("a")), "found");
}

TEST_F(NamingTreeTest, AListHasEveryBindingAndNoIterator)
{
    show({"a", "b/c", "d"});
    CosNaming::BindingList_var bindings;
    CosNaming::BindingIterator_var iterator;
    root->list(100, bindings.out(), iterator.out());
    EXPECT_EQ(listing(bindings.in()), "a b/ d ");
    EXPECT_TRUE(CORBA::is_nil(iterator.in()));
}

TEST_F(NamingTreeTest, AListGoesOnWithItsIterator)
{
    show({"a", "b", "c", "d", "e"});
    CosNaming::BindingList_var bindings;
    CosNaming::BindingIterator_var iterator;
    root->list(1, bindings.out(), iterator.out());
    EXPECT_EQ(listing(bindings.in()), "a ");
    ASSERT_FALSE(CORBA::is_nil(iterator.in()));

    EXPECT_TRUE(iterator->next_n(2, bindings.out()));
    EXPECT_EQ(listing(bindings.in()), "b c ");
    CosNaming::Binding_var binding;
    EXPECT_TRUE(iterator->next_one(binding.out()));
    EXPECT_EQ(text_of(binding->binding_name), "d");
    EXPECT_TRUE(iterator->next_n(5, bindings.out()));
    EXPECT_EQ(listing(bindings.in()), "e ");
    EXPECT_FALSE(iterator->next_n(5, bindings.out()));
    EXPECT_EQ(bindings->length(), 0u);
    EXPECT_FALSE(iterator->next_one(binding.out()));
}

TEST_F(NamingTreeTest, AListOfNothingLeavesAllToItsIterator)
{
    show({"a", "b"});
    CosNaming::BindingList_var bindings;
    CosNaming::BindingIterator_var iterator;
    root->list(0, bindings.out(), iterator.out());
    EXPECT_EQ(bindings->length(), 0u);
    EXPECT_THROW(iterator->next_n(0, bindings.out()), CORBA::BAD_PARAM);
    EXPECT_TRUE(iterator->next_n(2, bindings.out()));
    EXPECT_EQ(listing(bindings.in()), "a b ");
}

TEST_F(NamingTreeTest, ADestroyedIteratorIsGone)
{
    show({"a", "b"});
    CosNaming::BindingList_var bindings;
    CosNaming::BindingIterator_var iterator;
    root->list(1, bindings.out(), iterator.out());
    iterator->destroy();
    EXPECT_THROW(iterator->next_n(1, bindings.out()), CORBA::OBJECT_NOT_EXIST);
}

TEST_F(NamingTreeTest, IteratorsThatNobodyDestroysDoNotPileUp)
{
    show({"a", "b"});
    CosNaming::BindingList_var bindings;
    std::vector<CosNaming::BindingIterator_var> iterators(naming::BindingIterators::limit +
                                                          1);
    for (CosNaming::BindingIterator_var& iterator : iterators)
        root->list(1, bindings.out(), iterator.out());
    EXPECT_THROW(iterators[0]->next_n(1, bindings.out()), CORBA::OBJECT_NOT_EXIST);
    EXPECT_TRUE(iterators[1]->next_n(1, bindings.out()));
    EXPECT_TRUE(iterators.back()->next_n(1, bindings.out()));
}

// Nobody has listed before: what the broker makes at its first use is not there yet.
TEST_F(NamingTreeTest, SeveralMayListAtOnce)
{
    show({"a", "b", "c"});
    std::atomic<int> complete{0};
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) {
        callers.emplace_back([&] {
            CosNaming::BindingList_var bindings;
            CosNaming::BindingIterator_var iterator;
            const bool nil_at_first = CORBA::is_nil(iterator.in());
            root->list(3, bindings.out(), iterator.out());
            complete += nil_at_first && listing(bindings.in()) == "a b c " &&
                        CORBA::is_nil(iterator.in());
        });
    }
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(complete, 4);
}

TEST(NamingLayout, ServicesStandBelowTheirRealmAndTheUnnamedOnesAlsoBelowRoot)
{
    const std::string port = keys::port_service;
    const std::string manager = keys::service_manager;
    const std::vector<services::Service> services = {
        {"", port, CORBA::Object_var()},
        {"plant/north", port, CORBA::Object_var()},
        {"", manager, CORBA::Object_var()}};
    std::vector<std::string> paths;
    for (const Binding& binding : naming::layout(services))
        paths.push_back(binding.path);
    EXPECT_EQ(paths, (std::vector<std::string>{port, "ROOT/" + port, "plant/north/" + port,
                                               manager}));
}

} // namespace
