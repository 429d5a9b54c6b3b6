#include "server/metrics/exposition.h"

#include <stdexcept>

#include <prometheus/collectable.h>
#include <prometheus/exposer.h>

namespace velmo::metrics {

namespace {

using prometheus::ClientMetric;

class Collector : public prometheus::Collectable {
public:
    Collector(Labels its_info, const CallMetrics& its_calls,
              std::vector<const model::Realm*> its_realms,
              const journal::GroupCommit* its_journal)
        : info(std::move(its_info)), calls(its_calls), realms(std::move(its_realms)),
          journal(its_journal)
    {
    }

    Families Collect() const override
    {
        ClientMetric about;
        about.label = info;
        about.gauge.value = 1;
        Families families{{"velmod_info",
                           "The server's name and version.",
                           prometheus::MetricType::Gauge,
                           {about}}};
        add_call_families(families, calls);
        add_realm_families(families, realms);
        if (journal)
            add_journal_families(families, journal->status());
        return families;
    }

private:
    const Labels info;
    const CallMetrics& calls;
    const std::vector<const model::Realm*> realms;
    const journal::GroupCommit* const journal;
};

} // namespace

struct Exposition::State {
    State(const std::string& address, std::shared_ptr<Collector> its_collector)
        // A client that sends no request, or does not take its answer, holds a thread.
        : collector(std::move(its_collector)),
          exposer(std::vector<std::string>{"listening_ports", address, "num_threads", "4",
                                           "request_timeout_ms", "3000"})
    {
        exposer.RegisterCollectable(collector);
    }

    const std::shared_ptr<Collector> collector; // which the exposer does not keep
    prometheus::Exposer exposer;
};

Exposition::Exposition(const std::string& address, Labels info, const CallMetrics& calls,
                       std::vector<const model::Realm*> realms,
                       const journal::GroupCommit* journal)
{
    auto collector =
        std::make_shared<Collector>(std::move(info), calls, std::move(realms), journal);
    try {
        state = std::make_unique<State>(address, std::move(collector));
    } catch (const std::exception&) {
        // What it says does not tell why.
        throw std::runtime_error("cannot show metrics at " + address +
                                 ": most likely another program listens there, or the "
                                 "address is not one of this host");
    }
}

Exposition::~Exposition() = default;

std::uint16_t Exposition::port() const
{
    return static_cast<std::uint16_t>(state->exposer.GetListeningPorts().front());
}

} // namespace velmo::metrics
