// A naming context for clients to read.
#ifndef VELMO_SERVER_NAMING_NAMING_CONTEXT_H
#define VELMO_SERVER_NAMING_NAMING_CONTEXT_H

#include <map>
#include <string>

#include "orb/server.h"
#include "orb/skeletons.h"
#include "server/naming/binding_iterator.h"

namespace velmo::naming {

// Complete before its first request comes, hence without a lock. Whatever would
// change it raises NO_PERMISSION.
class NamingContext : public virtual POA_CosNaming::NamingContext,
                      public virtual orb::ServantBase {
public:
    // The iterators must outlive the ORB.
    explicit NamingContext(BindingIterators& iterators);

    // To set it up. A context has, beside its reference, its servant.
    void add(const std::string& id, CORBA::Object_ptr object,
             NamingContext* context = nullptr);
    NamingContext* context(const std::string& id) const;

    CORBA::Object_ptr resolve(const CosNaming::Name& name) override;
    void list(CORBA::ULong how_many, CosNaming::BindingList_out bindings,
              CosNaming::BindingIterator_out iterator) override;

    void bind(const CosNaming::Name& name, CORBA::Object_ptr object) override;
    void rebind(const CosNaming::Name& name, CORBA::Object_ptr object) override;
    void bind_context(const CosNaming::Name& name,
                      CosNaming::NamingContext_ptr context) override;
    void rebind_context(const CosNaming::Name& name,
                        CosNaming::NamingContext_ptr context) override;
    void unbind(const CosNaming::Name& name) override;
    CosNaming::NamingContext_ptr new_context() override;
    CosNaming::NamingContext_ptr bind_new_context(const CosNaming::Name& name) override;
    void destroy() override;

private:
    struct Entry {
        CORBA::Object_var object;
        NamingContext* context; // null when it is none; its adapter keeps it
    };

    const Entry* find(const CosNaming::NameComponent& component) const;

    BindingIterators& iterators;
    std::map<std::string, Entry> entries;
};

} // namespace velmo::naming

#endif
