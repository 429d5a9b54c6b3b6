#include "api/call_frame.h"

#include <exception>

#include "CQuilp.h"

namespace velmo::api {

void log_failure(const char* log_text, const CORBA::Exception& exception) noexcept
{
    if (!log_text)
        return;
    try {
        CQuilp::instance()->vl_log(log_text, orb::describe(exception).c_str());
    } catch (const std::exception&) {
        // No memory for the text: the result code has to do.
    }
}

} // namespace velmo::api
