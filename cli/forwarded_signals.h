// Signals that are not for velmo itself.
#ifndef VELMO_CLI_FORWARDED_SIGNALS_H
#define VELMO_CLI_FORWARDED_SIGNALS_H

#include <optional>

namespace velmo::cli {

// While it lives, SIGINT, SIGTERM, SIGHUP and SIGQUIT wait here to be taken, and Ctrl-Z
// does nothing: a program that stands still would not renew its lease. One at a time, and
// not together with an Interruption.
class ForwardedSignals {
public:
    ForwardedSignals();
    ~ForwardedSignals();
    ForwardedSignals(const ForwardedSignals&) = delete;
    ForwardedSignals& operator=(const ForwardedSignals&) = delete;

    // The next one, oldest first; none when there is none.
    std::optional<int> take() const;

    // Readable while there is one, for poll().
    int descriptor() const;
};

} // namespace velmo::cli

#endif
