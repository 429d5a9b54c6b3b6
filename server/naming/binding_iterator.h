// The rest of a listing, for clients that take it in portions.
#ifndef VELMO_SERVER_NAMING_BINDING_ITERATOR_H
#define VELMO_SERVER_NAMING_BINDING_ITERATOR_H

#include <deque>
#include <mutex>
#include <vector>

#include "orb/server.h"
#include "orb/skeletons.h"

namespace velmo::naming {

// Makes iterators and keeps them until their clients destroy them. Few at a time:
// when there are too many, the oldest goes, since its client may have gone too.
// Any function from any thread.
class BindingIterators {
public:
    static constexpr std::size_t limit = 64;

    explicit BindingIterators(PortableServer::POA_ptr adapter);

    // An iterator over what follows position in the listing.
    CosNaming::BindingIterator_ptr make(const CosNaming::BindingList& listing,
                                        CORBA::ULong position);

private:
    const PortableServer::POA_var adapter; // gives ids and keeps the servants
    std::mutex mutex;
    std::deque<PortableServer::ObjectId> made; // the last ones, destroyed or not
};

class BindingIterator : public virtual POA_CosNaming::BindingIterator,
                        public virtual orb::ServantBase {
public:
    BindingIterator(PortableServer::POA_ptr adapter, const CosNaming::BindingList& listing,
                    CORBA::ULong position);

    CORBA::Boolean next_one(CosNaming::Binding_out binding) override;
    CORBA::Boolean next_n(CORBA::ULong how_many,
                          CosNaming::BindingList_out bindings) override;
    void destroy() override;

private:
    const PortableServer::POA_var adapter;
    std::mutex mutex; // guards position
    const CosNaming::BindingList listing;
    CORBA::ULong position;
};

// Up to how_many bindings of a listing, from position on. The caller owns them.
CosNaming::BindingList* portion(const CosNaming::BindingList& listing,
                                CORBA::ULong position, CORBA::ULong how_many);

} // namespace velmo::naming

#endif
