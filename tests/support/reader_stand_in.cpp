#include "tests/support/reader_stand_in.h"

#include <cstring>
#include <utility>

namespace velmo::tests {

ReaderStandIn& ReaderStandIn::instance()
{
    static ReaderStandIn& only =
        *std::unique_ptr<ReaderStandIn>(new ReaderStandIn).release();
    return only;
}

void ReaderStandIn::reset()
{
    std::lock_guard<std::mutex> guard(mutex);
    servers.clear();
    interruption = nullptr;
    asked.clear();
    made = 0;
}

void ReaderStandIn::set_servers(const std::string& position, std::vector<std::string> names)
{
    std::lock_guard<std::mutex> guard(mutex);
    servers[position] = std::move(names);
}

void ReaderStandIn::interrupt_with(std::function<void(const std::string&)> new_interruption)
{
    std::lock_guard<std::mutex> guard(mutex);
    interruption = std::move(new_interruption);
}

std::vector<std::string> ReaderStandIn::queries() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return asked;
}

int ReaderStandIn::readers_made() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return made;
}

int ReaderStandIn::readers_alive() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return alive;
}

std::vector<_ServerInfoData> ReaderStandIn::answer(const std::string& position)
{
    std::function<void(const std::string&)> current;
    std::vector<_ServerInfoData> records;
    {
        std::lock_guard<std::mutex> guard(mutex);
        asked.push_back(position);
        current = interruption;
        for (const std::string& name : servers[position]) {
            _ServerInfoData record;
            // Nobody but the reader knows what these bytes are, nor that they end.
            std::memset(record.information, 'x', sizeof record.information);
            std::memset(record.name, 0, sizeof record.name);
            name.copy(record.name, sizeof record.name - 1);
            records.push_back(record);
        }
    }
    if (current)
        current(position);
    return records;
}

void ReaderStandIn::count(int more_made, int more_alive)
{
    std::lock_guard<std::mutex> guard(mutex);
    made += more_made;
    alive += more_alive;
}

} // namespace velmo::tests

using velmo::tests::ReaderStandIn;

vlServerInfoXmlImpl::vlServerInfoXmlImpl()
{
    ReaderStandIn::instance().count(1, 1);
}

vlServerInfoXmlImpl::~vlServerInfoXmlImpl()
{
    ReaderStandIn::instance().count(0, -1);
}

std::vector<_ServerInfoData> vlServerInfoXmlImpl::GetServerInfo(const char* position)
{
    return ReaderStandIn::instance().answer(position);
}
