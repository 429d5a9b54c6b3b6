#include "cli/library.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "cli/child.h"

namespace velmo::cli {

namespace {

constexpr unsigned int longest_naming_ms = 2000; // what the library takes by default

void set_variable(const char* name, const std::string& value, int overwrite = 1)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the only thread
    setenv(name, value.c_str(), overwrite);
}

} // namespace

void prepare_library(unsigned int timeout_ms)
{
    given_environment(); // before it is changed here
    // What it logs is in the way of our own messages; whoever wants it asks for it.
    set_variable("VELMO_LOG", "file:/dev/null", 0);
    if (timeout_ms == 0)
        return;
    // A command looks the server up and calls it: both have to fit.
    const unsigned int naming = std::clamp(timeout_ms / 2, 1u, longest_naming_ms);
    const unsigned int call = std::max(timeout_ms - naming, 1u);
    set_variable("VELMO_NAMING_TIMEOUT_MS", std::to_string(naming));
    set_variable("VELMO_CONNECT_TIMEOUT_MS", std::to_string(naming));
    set_variable("VELMO_CALL_TIMEOUT_MS", std::to_string(call));
}

} // namespace velmo::cli
