// What a call of an export happens in, and what has to come of it.
#ifndef VELMO_TESTS_FUZZ_SCENE_H
#define VELMO_TESTS_FUZZ_SCENE_H

#include <cstddef>
#include <optional>
#include <string>

#include "tests/fuzz/input.h"
#include "tests/support/script.h"
#include "vl_result.h"

namespace velmo::tests {

// The documented results of an operation beside the server's own.
struct Codes {
    int failure;                    // also for arguments that are refused
    const char* log_text = nullptr; // how the line about an exception begins; null: none
    int no_server = NULL_SERVER_NAME;
    int no_reference = VL_NO_REFERENCE;
};

// Servers in this process for all inputs: "home" is reached directly, "far" over a
// connection; both have all services in the unnamed realm and in "alpha". Looking
// anything up for the server "broken" raises an exception.
void open_scene();

// Begins an input: nothing is cached, and the default server is one that it chooses.
void set_scene(Input& input);

// One call: to whom, and how the server will answer.
class Call {
public:
    // Where a call ends.
    enum class End { refused, no_server, look_up_raises, no_reference, fails, answers };

    explicit Call(Input& input);

    Input& input;
    const char* server;
    const char* realm;
    Script::Reply reply;
    // What the export gives for the answer, and how many remote calls it takes.
    int success;
    std::size_t remote_calls = 1;

    // The export has no realm.
    void ignore_realm() { realm = nullptr; }

    // Bad arguments that are found before the server is chosen, or after its reference
    // is there.
    void refuse_at_once_if(bool bad) { refused_at_once = bad; }
    void refuse_if(bool bad) { refused = refused || bad; }

    End end() const;
    bool answered() const { return end() == End::answers; }
    bool succeeded() const { return answered() && reply.result == VL_OK; }

    // The server that is chosen, none where there is no default.
    std::optional<std::string> chosen_server() const;

    // Makes the call and checks its result, the remote calls and the log.
    template <class Export>
    int check(const Codes& codes, Export call)
    {
        int result = 0;
        begin();
        const bool raised = raises([&] { result = call(); });
        finish(raised, codes.log_text);
        require(raised || result == expected(codes), "the result is the documented one");
        return result;
    }

    // The same for an export that gives the reply's text, or null.
    template <class Export>
    void check_text(const char* log_text, Export call)
    {
        char* text = nullptr;
        begin();
        const bool raised = raises([&] { text = call(); });
        finish(raised, log_text);
        take_text(text, answered());
    }

    // Checks that a string is the reply's, or null, and frees it.
    void take_text(char* text, bool there) const { take(text, there, reply.text); }
    void take_more_text(char* text, bool there) const
    {
        take(text, there, reply.more_text);
    }

private:
    template <class Export>
    static bool raises(Export call)
    {
        try {
            call();
            return false;
        } catch (const CORBA::INTERNAL&) {
            return true;
        }
    }
    static void take(char* text, bool there, const std::string& value);

    void begin() const;
    void finish(bool raised, const char* log_text) const;
    int expected(const Codes& codes) const;

    std::size_t exception; // which one the server raises, 0 for none
    bool refused = false;
    bool refused_at_once = false;
};

} // namespace velmo::tests

#endif
