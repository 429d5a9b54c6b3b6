#include "server/naming/naming_tree.h"

#include "idl/nil_references.h"
#include "orb/server.h"
#include "server/adapter.h"
#include "server/naming/naming_context.h"
#include "util/naming_name.h"

namespace velmo::naming {

NamingTree::NamingTree(CORBA::ORB_ptr orb, const std::vector<Binding>& bindings)
{
    idl::make_nil_references();
    PortableServer::POA_var adapter = server::persistent_adapter(orb, "naming");
    PortableServer::POA_var transient = server::root_adapter(orb);
    iterators = std::make_unique<BindingIterators>(transient.in());

    PortableServer::Servant_var<NamingContext> root = new NamingContext(*iterators);
    for (const Binding& binding : bindings) {
        const CosNaming::Name name = util::name_of_path(binding.path);
        NamingContext* context = root.in();
        std::string path;
        for (CORBA::ULong i = 0; i + 1 < name.length(); ++i) {
            const std::string id = name[i].id.in();
            path += "/" + id;
            NamingContext* next = context->context(id);
            if (!next) {
                PortableServer::Servant_var<NamingContext> made =
                    new NamingContext(*iterators);
                CORBA::Object_var reference =
                    server::activate(adapter.in(), path.c_str(), made.in());
                context->add(id, reference.in(), made.in());
                next = made.in();
            }
            context = next;
        }
        context->add(name[name.length() - 1].id.in(), binding.object.in());
    }

    CORBA::Object_var reference = orb::activate_under_key(orb, "NameService", root.in());
    const orb::Endpoint endpoint = orb::published_endpoint(orb, reference.in());
    root_url = "corbaloc::1.2@" + orb::url_host(endpoint.host) + ":" +
               std::to_string(endpoint.port) + "/NameService";
}

NamingTree::~NamingTree() = default;

} // namespace velmo::naming
