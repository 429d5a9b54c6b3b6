#include "server/log.h"

#include <chrono>
#include <mutex>

#include "CQuilp.h"

namespace velmo::server {

namespace {

std::string quoted(const std::string& value)
{
    if (!value.empty() && value.find_first_of(" =\"\\") == std::string::npos)
        return value;
    std::string result = "\"";
    for (const char c : value) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

} // namespace

void log_event(const char* event, std::initializer_list<LogField> fields)
{
    std::string line = std::string("velmod event=") + event;
    for (const LogField& field : fields)
        line.append(" ").append(field.name).append("=").append(quoted(field.value));
    CQuilp::instance()->vl_log("%s", line.c_str());
}

void log_refused_connection()
{
    using Clock = std::chrono::steady_clock;
    static std::mutex mutex;
    static unsigned long untold = 0;
    static Clock::time_point next; // from the beginning of time
    const std::lock_guard<std::mutex> lock(mutex);
    ++untold;
    const Clock::time_point now = Clock::now();
    if (now < next)
        return;
    log_event("refused", {{"connections", std::to_string(untold)},
                          {"reason", "there are too many for the limit of descriptors"}});
    untold = 0;
    next = now + std::chrono::minutes(1);
}

} // namespace velmo::server
