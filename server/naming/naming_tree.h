// The server's own naming service.
#ifndef VELMO_SERVER_NAMING_NAMING_TREE_H
#define VELMO_SERVER_NAMING_NAMING_TREE_H

#include <memory>
#include <string>
#include <vector>

#include "server/naming/layout.h"

namespace velmo::naming {

class BindingIterators;

// Naming contexts that hold a server's bindings, the root one under the key
// NameService. References to them stay good over a restart.
class NamingTree {
public:
    // Throws CORBA::Exception. The tree must outlive the ORB.
    NamingTree(CORBA::ORB_ptr orb, const std::vector<Binding>& bindings);
    ~NamingTree();

    // What clients are to be given: corbaloc::1.2@HOST:PORT/NameService.
    const std::string& url() const { return root_url; }

private:
    std::unique_ptr<BindingIterators> iterators;
    std::string root_url;
};

} // namespace velmo::naming

#endif
