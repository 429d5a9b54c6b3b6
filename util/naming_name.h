// Names of the naming service, and URLs that hold one.
#ifndef VELMO_UTIL_NAMING_NAME_H
#define VELMO_UTIL_NAMING_NAME_H

#include <string>

#include "orb/corba.h"

namespace velmo::util {

// "A/B/C" as contexts A and B and the name C. Every other character belongs to the
// names; empty parts count for nothing.
CosNaming::Name name_of_path(const std::string& path);

// The place that a URL denotes: an object, and below it, where the URL is a
// corbaname with a fragment, a name to resolve. Taking the two apart, instead of
// having the broker resolve the URL, lets the second step have a time-out.
struct NamingUrl {
    std::string object_url;
    CosNaming::Name name; // empty for none

    // Throws CORBA::BAD_PARAM for a malformed corbaname.
    explicit NamingUrl(const std::string& url);
};

} // namespace velmo::util

#endif
