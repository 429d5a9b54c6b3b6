#include "server/naming/binding_iterator.h"

#include <algorithm>

namespace velmo::naming {

namespace {

void deactivate(PortableServer::POA_ptr adapter, const PortableServer::ObjectId& id)
{
    try {
        adapter->deactivate_object(id);
    } catch (const PortableServer::POA::ObjectNotActive&) {
        // Destroyed already.
    }
}

} // namespace

CosNaming::BindingList* portion(const CosNaming::BindingList& listing,
                                CORBA::ULong position, CORBA::ULong how_many)
{
    CosNaming::BindingList_var result = new CosNaming::BindingList;
    result->length(std::min(how_many, listing.length() - position));
    for (CORBA::ULong i = 0; i < result->length(); ++i)
        result[i] = listing[position + i];
    return result._retn();
}

BindingIterators::BindingIterators(PortableServer::POA_ptr its_adapter)
    : adapter(PortableServer::POA::_duplicate(its_adapter))
{
}

CosNaming::BindingIterator_ptr BindingIterators::make(const CosNaming::BindingList& listing,
                                                      CORBA::ULong position)
{
    PortableServer::Servant_var<BindingIterator> servant =
        new BindingIterator(adapter.in(), listing, position);
    PortableServer::ObjectId_var id = adapter->activate_object(servant.in());
    CORBA::Object_var object = adapter->id_to_reference(id.in());

    std::unique_lock<std::mutex> lock(mutex);
    made.push_back(id.in());
    if (made.size() > limit) {
        const PortableServer::ObjectId oldest = made.front();
        made.pop_front();
        lock.unlock();
        deactivate(adapter.in(), oldest);
    }
    return CosNaming::BindingIterator::_narrow(object.in());
}

BindingIterator::BindingIterator(PortableServer::POA_ptr its_adapter,
                                 const CosNaming::BindingList& its_listing,
                                 CORBA::ULong first)
    : adapter(PortableServer::POA::_duplicate(its_adapter)), listing(its_listing),
      position(first)
{
}

CORBA::Boolean BindingIterator::next_one(CosNaming::Binding_out binding)
{
    binding = new CosNaming::Binding;
    const std::lock_guard<std::mutex> lock(mutex);
    if (position == listing.length())
        return false;
    *binding.ptr() = listing[position++];
    return true;
}

CORBA::Boolean BindingIterator::next_n(CORBA::ULong how_many,
                                       CosNaming::BindingList_out bindings)
{
    if (how_many == 0)
        throw CORBA::BAD_PARAM();
    const std::lock_guard<std::mutex> lock(mutex);
    CosNaming::BindingList_var next = portion(listing, position, how_many);
    position += next->length();
    bindings = next._retn();
    return bindings->length() > 0;
}

void BindingIterator::destroy()
{
    PortableServer::ObjectId_var id = adapter->servant_to_id(this);
    deactivate(adapter.in(), id.in());
}

} // namespace velmo::naming
