#include "server/naming/naming_context.h"

namespace velmo::naming {

namespace {

using NotFound = CosNaming::NamingContext::NotFound;

// The rest of the name begins with the component that was not found.
NotFound not_found(CosNaming::NamingContext::NotFoundReason why,
                   const CosNaming::Name& name, CORBA::ULong at)
{
    CosNaming::Name rest;
    rest.length(name.length() - at);
    for (CORBA::ULong i = 0; i < rest.length(); ++i)
        rest[i] = name[at + i];
    return NotFound(why, rest);
}

} // namespace

NamingContext::NamingContext(BindingIterators& its_iterators) : iterators(its_iterators) {}

void NamingContext::add(const std::string& id, CORBA::Object_ptr object,
                        NamingContext* context)
{
    entries[id] = {CORBA::Object::_duplicate(object), context};
}

NamingContext* NamingContext::context(const std::string& id) const
{
    const auto found = entries.find(id);
    return found == entries.end() ? nullptr : found->second.context;
}

const NamingContext::Entry*
NamingContext::find(const CosNaming::NameComponent& component) const
{
    const std::string kind = component.kind.in();
    const auto found = entries.find(component.id.in());
    return found == entries.end() || !kind.empty() ? nullptr : &found->second;
}

CORBA::Object_ptr NamingContext::resolve(const CosNaming::Name& name)
{
    if (name.length() == 0)
        throw CosNaming::NamingContext::InvalidName();
    const NamingContext* context = this;
    for (CORBA::ULong i = 0;; ++i) {
        const Entry* entry = context->find(name[i]);
        if (!entry)
            throw not_found(CosNaming::NamingContext::missing_node, name, i);
        if (i + 1 == name.length())
            return CORBA::Object::_duplicate(entry->object.in());
        if (!entry->context)
            throw not_found(CosNaming::NamingContext::not_context, name, i);
        context = entry->context;
    }
}

void NamingContext::list(CORBA::ULong how_many, CosNaming::BindingList_out bindings,
                         CosNaming::BindingIterator_out iterator)
{
    CosNaming::BindingList all;
    all.length(static_cast<CORBA::ULong>(entries.size()));
    CORBA::ULong i = 0;
    for (const auto& [id, entry] : entries) {
        all[i].binding_name.length(1);
        all[i].binding_name[0].id = id.c_str();
        all[i].binding_type = entry.context ? CosNaming::ncontext : CosNaming::nobject;
        ++i;
    }
    bindings = portion(all, 0, how_many);
    iterator = CosNaming::BindingIterator::_nil();
    if (bindings->length() < all.length())
        iterator = iterators.make(all, bindings->length());
}

void NamingContext::bind(const CosNaming::Name&, CORBA::Object_ptr)
{
    throw CORBA::NO_PERMISSION();
}

void NamingContext::rebind(const CosNaming::Name&, CORBA::Object_ptr)
{
    throw CORBA::NO_PERMISSION();
}

void NamingContext::bind_context(const CosNaming::Name&, CosNaming::NamingContext_ptr)
{
    throw CORBA::NO_PERMISSION();
}

void NamingContext::rebind_context(const CosNaming::Name&, CosNaming::NamingContext_ptr)
{
    throw CORBA::NO_PERMISSION();
}

void NamingContext::unbind(const CosNaming::Name&)
{
    throw CORBA::NO_PERMISSION();
}

CosNaming::NamingContext_ptr NamingContext::new_context()
{
    throw CORBA::NO_PERMISSION();
}

CosNaming::NamingContext_ptr NamingContext::bind_new_context(const CosNaming::Name&)
{
    throw CORBA::NO_PERMISSION();
}

void NamingContext::destroy()
{
    throw CORBA::NO_PERMISSION();
}

} // namespace velmo::naming
