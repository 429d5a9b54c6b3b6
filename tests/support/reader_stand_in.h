// The settings' reader, for tests of what asks it. A program that contains
// reader_stand_in.cpp has that vlServerInfoXmlImpl instead of the library's.
#ifndef VELMO_TESTS_SUPPORT_READER_STAND_IN_H
#define VELMO_TESTS_SUPPORT_READER_STAND_IN_H

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "vlServerInfoXmlImpl.h"

namespace velmo::tests {

// Lists the servers that a test has set, and records the questions. Safe from any
// thread.
class ReaderStandIn {
public:
    static ReaderStandIn& instance();

    // Back to the beginning: no servers, nothing recorded, no interruption.
    void reset();

    // Names may be empty.
    void set_servers(const std::string& position, std::vector<std::string> names);

    // Runs at every question, before it is answered; may throw or wait.
    void interrupt_with(std::function<void(const std::string& position)> interruption);

    // The positions asked for, in order.
    std::vector<std::string> queries() const;

    // Readers made since the reset, and those that exist now.
    int readers_made() const;
    int readers_alive() const;

    // For the reader itself.
    std::vector<_ServerInfoData> answer(const std::string& position);
    void count(int made, int alive);

private:
    ReaderStandIn() = default;

    mutable std::mutex mutex;
    std::map<std::string, std::vector<std::string>> servers;
    std::function<void(const std::string&)> interruption;
    std::vector<std::string> asked;
    int made = 0;
    int alive = 0;
};

} // namespace velmo::tests

#endif
