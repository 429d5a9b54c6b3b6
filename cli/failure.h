// Why a command ends early, in words that say what to do next.
#ifndef VELMO_CLI_FAILURE_H
#define VELMO_CLI_FAILURE_H

#include <stdexcept>
#include <string>

namespace velmo::cli {

// What velmo ends with.
enum ExitStatus { succeeded = 0, failed = 1, misused = 2, interrupted = 130 };

class Failure : public std::runtime_error {
public:
    // advice: what to do next, a sentence without its end; "" for none.
    Failure(ExitStatus its_status, const std::string& text, std::string its_advice = "")
        : std::runtime_error(text), status(its_status), next(std::move(its_advice))
    {
    }

    ExitStatus exit_status() const { return status; }
    const std::string& advice() const { return next; }

private:
    ExitStatus status;
    std::string next;
};

// The command line, or a file that it names, is wrong.
inline Failure misuse(const std::string& text, const std::string& advice = "")
{
    return Failure(misused, text, advice);
}

// A person has pressed Ctrl-C.
class Interrupted : public std::exception {};

// A function of the library has given a result code. action: what was tried, such as
// "read point \"level\""; server, realm: as the command line names
// them.
Failure call_failure(int code, const std::string& action, const std::string& server,
                     const std::string& realm);

// A code's name in vl_result.h, and what to do about it. Both are "" for a code that is
// not known, the advice also where there is nothing to say.
std::string code_name(int code);
std::string code_advice(int code);

// The text of a code in the user's language, in UTF-8.
std::string code_text(int code);

} // namespace velmo::cli

#endif
