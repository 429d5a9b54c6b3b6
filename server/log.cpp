#include "server/log.h"

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

} // namespace velmo::server
