#ifndef VELMO_BENCH_CONTENDERS_THRIFT_SERVER_H
#define VELMO_BENCH_CONTENDERS_THRIFT_SERVER_H

#include <functional>
#include <string>

namespace velmo::bench {

// Serves store.thrift with a thread for each connection, on a unix socket (a path) or a
// free port of 127.0.0.1 (""); calls announce with where it listens. Throws
// std::exception, also where the build is without peers.
void serve_thrift(const std::string& address,
                  const std::function<void(const std::string&)>& announce);

} // namespace velmo::bench

#endif
