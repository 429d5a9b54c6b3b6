// A server's realms as its options want them.
#ifndef VELMO_SERVER_REALMS_H
#define VELMO_SERVER_REALMS_H

#include "server/options.h"
#include "server/services/services.h"

namespace velmo::server {

// The unnamed realm and the named ones, with the configured templates. Throws
// model::TemplateError.
services::Realms make_realms(const Options& options);

// Gives realms that are in use the limits and templates of new options. A template that
// points are made from stays as it was. Gives the names of such templates.
std::vector<std::string> reconfigure(const services::Realms& realms, const Options& wanted);

} // namespace velmo::server

#endif
