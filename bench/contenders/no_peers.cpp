// In place of the peers, where the build is without them.
#include <stdexcept>

#include "bench/contenders/contender.h"
#include "bench/contenders/thrift_server.h"

namespace velmo::bench {

std::unique_ptr<Contender> make_redis(Transport, bool)
{
    return nullptr;
}

std::unique_ptr<Contender> make_thrift(Transport)
{
    return nullptr;
}

std::unique_ptr<Contender> make_postgres()
{
    return nullptr;
}

void serve_thrift(const std::string&, const std::function<void(const std::string&)>&)
{
    throw std::runtime_error("this build is without peers");
}

} // namespace velmo::bench
