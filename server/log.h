// The log as operators and their tools read it: a line for each event, of fields.
#ifndef VELMO_SERVER_LOG_H
#define VELMO_SERVER_LOG_H

#include <initializer_list>
#include <string>

namespace velmo::server {

struct LogField {
    const char* name;
    std::string value;
};

// Logs "velmod event=EVENT NAME=VALUE ...". A value that is empty, or has a space, "="
// or a quotation mark in it, stands in quotation marks, with \" and \\ inside. From any
// thread; never throws but for lack of memory.
void log_event(const char* event, std::initializer_list<LogField> fields = {});

// For every connection that was refused: the first one is logged, and from then on how many
// there were since, once a minute at most.
void log_refused_connection();

} // namespace velmo::server

#endif
