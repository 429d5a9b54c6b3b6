// Names and URLs of the naming service: as the settings hold them, and as clients ask
// velmod's own naming service for them.

#include <algorithm>
#include <memory>

#include "orb/server.h"
#include "server/adapter.h"
#include "server/naming/naming_tree.h"
#include "tests/fuzz/require.h"
#include "util/naming_name.h"

using namespace velmo;
using CosNaming::NamingContext;
using tests::require;

namespace {

// A naming service in this process.
struct Service {
    Service() : broker(orb::make_server_orb({{{"127.0.0.1", 0}}, ""}))
    {
        std::vector<naming::Binding> bindings;
        for (const char* path : {"plain", "alpha/key", "alpha/beta/key", "a.b/c d"})
            bindings.push_back({path, CORBA::Object_var(broker->string_to_object(
                                          "corbaloc::127.0.0.1:1/bound"))});
        tree = std::make_unique<naming::NamingTree>(broker.in(), bindings);
        server::open_adapters(broker.in());
        CORBA::Object_var found = broker->string_to_object(tree->url().c_str());
        root = NamingContext::_narrow(found.in());
    }

    ~Service() { broker->destroy(); }

    CORBA::ORB_var broker;
    std::unique_ptr<naming::NamingTree> tree;
    CosNaming::NamingContext_var root;
};

Service& service()
{
    static Service only;
    return only;
}

void check_path(const std::string& path)
{
    const CosNaming::Name name = util::name_of_path(path);
    for (CORBA::ULong i = 0; i < name.length(); ++i) {
        const std::string id = name[i].id.in();
        require(!id.empty() && id.find('/') == std::string::npos &&
                    *name[i].kind.in() == '\0',
                "each part between slashes is a name");
    }
    const auto slashes = std::count(path.begin(), path.end(), '/');
    require(name.length() <= static_cast<CORBA::ULong>(slashes) + 1, "and nothing else");
}

// Whether the broker takes the place of the URL for one.
void check_url(const std::string& url)
{
    try {
        const util::NamingUrl place(url);
        require(url.rfind("corbaname:", 0) == 0 ||
                    (place.object_url == url && place.name.length() == 0),
                "other URLs stay as they are");
        CORBA::Object_var object =
            service().broker->string_to_object(place.object_url.c_str());
    } catch (const CORBA::SystemException&) {
        // Malformed, in its syntax or to the broker.
    }
}

void check_resolve(const CosNaming::Name& name)
{
    try {
        CORBA::Object_var found = service().root->resolve(name);
        require(!CORBA::is_nil(found.in()), "what is bound is there");
    } catch (const NamingContext::NotFound& error) {
        const CORBA::ULong rest = error.rest_of_name.length();
        require(rest > 0 && rest <= name.length(), "a part of the name is missing");
    } catch (const NamingContext::InvalidName&) {
        require(name.length() == 0, "only an empty name is invalid");
    }
}

void check_list(CORBA::ULong how_many, CORBA::ULong portion)
{
    CosNaming::BindingList_var bindings;
    CosNaming::BindingIterator_var iterator;
    service().root->list(how_many, bindings.out(), iterator.out());
    CORBA::ULong count = bindings->length();
    require(count <= how_many, "no more than was asked for");
    if (!CORBA::is_nil(iterator.in())) {
        while (portion > 0 && iterator->next_n(portion, bindings.out())) {
            require(bindings->length() > 0 && bindings->length() <= portion,
                    "some, but no more than was asked for");
            count += bindings->length();
        }
        iterator->destroy();
    }
    require(count == 3 || portion == 0, "all of them, in the end");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    // No NUL: strings of the broker end there.
    const std::string text(
        reinterpret_cast<const char*>(bytes),
        reinterpret_cast<const char*>(std::find(bytes, bytes + size, 0)));
    if (text.empty())
        return 0;
    check_path(text);
    check_url(text);
    check_resolve(util::name_of_path(text));
    try {
        check_resolve(util::NamingUrl("corbaname::127.0.0.1#" + text).name);
    } catch (const CORBA::BAD_PARAM&) {
        // A malformed escape.
    }
    check_list(bytes[0], static_cast<CORBA::ULong>(text.size() % 4));
    return 0;
}
