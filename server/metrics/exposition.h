// Metrics, for whoever asks over HTTP.
#ifndef VELMO_SERVER_METRICS_EXPOSITION_H
#define VELMO_SERVER_METRICS_EXPOSITION_H

#include <cstdint>
#include <memory>
#include <string>

#include "server/metrics/families.h"

namespace velmo::metrics {

using Labels = std::vector<prometheus::ClientMetric::Label>;

// Answers GET /metrics in Prometheus' text format, on threads of its own, from its
// construction to its destruction. What it shows must outlive it.
class Exposition {
public:
    // address: HOST:PORT; port 0 is any free one. info: the labels of velmod_info.
    // journal: null for none. Throws std::runtime_error when it cannot listen there.
    Exposition(const std::string& address, Labels info, const CallMetrics& calls,
               std::vector<const model::Realm*> realms,
               const journal::GroupCommit* journal = nullptr);
    ~Exposition();
    Exposition(const Exposition&) = delete;
    Exposition& operator=(const Exposition&) = delete;

    // Where it listens.
    std::uint16_t port() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace velmo::metrics

#endif
