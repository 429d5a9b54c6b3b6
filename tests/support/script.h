// What a scripted server answers, and what it was asked.
#ifndef VELMO_TESTS_SUPPORT_SCRIPT_H
#define VELMO_TESTS_SUPPORT_SCRIPT_H

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "VelmoC.h"

namespace velmo::tests {

// The servants of the five services ask a script, which knows their operations by
// name. Safe from any thread.
class Script {
public:
    using Names = std::vector<std::string>;
    using Pairs = std::vector<std::pair<std::string, std::string>>;

    // What an operation brings back: of these, those that it has. What is not there is
    // not delivered at all, which is allowed for callers in this process only, unless
    // they are kept away by a Relay.
    struct Reply {
        CORBA::Long result = 0;
        std::optional<std::string> data = "";
        std::optional<Names> names = Names();
        std::optional<Names> more_names = Names(); // of the second list
        std::optional<Pairs> connections = Pairs();
        std::string text = ""; // also what operations return that give no result
        std::string more_text = "";
        CORBA::Long count = 0;
    };
    // May throw, and may keep the caller waiting.
    using Answer = std::function<Reply()>;

    // How the operation of that name answers from now on. One without an answer raises
    // NO_IMPLEMENT.
    void answer(const std::string& operation, Answer answer);
    void answer(const std::string& operation, Reply reply);
    void answer(const std::string& operation, CORBA::Long result);

    // An answer that raises an exception.
    template <class Exception>
    static Answer raising(const Exception& exception)
    {
        return [exception]() -> Reply { throw exception; };
    }

    // The calls so far with their arguments, such as: send_packet(7, "hello", 0).
    // A NULL string shows as null.
    std::vector<std::string> calls() const;
    void forget_calls();

    // For the servants: records the call and gives the answer to it.
    template <class... Arguments>
    Reply reply_to(const char* operation, const Arguments&... arguments)
    {
        std::string all;
        ((all += (all.empty() ? "" : ", ") + shown(arguments)), ...);
        return reply_to_call(operation, std::string(operation) + "(" + all + ")");
    }

private:
    static std::string shown(const char* text);
    static std::string shown(const Velmo::DATA_BUFFER& data);
    template <class Number>
    static std::string shown(Number number)
    {
        return std::to_string(number);
    }

    Reply reply_to_call(const std::string& operation, const std::string& call);

    mutable std::mutex mutex;
    std::map<std::string, Answer> answers;
    std::vector<std::string> recorded;
};

// What the servants have in common.
class Scripted {
public:
    explicit Scripted(std::shared_ptr<Script> script = std::make_shared<Script>())
        : asked(std::move(script))
    {
    }
    Script& script() { return *asked; }

protected:
    const std::shared_ptr<Script> asked;
};

// The parts of a reply, as operations hand them out. The caller owns the results.
Velmo::DATA_BUFFER* sequence_of(const std::string& bytes);
Velmo::NAME_SEQ* sequence_of(const Script::Names& names);
Velmo::DT_PORT_SVC::CONNECTION_SEQ* sequence_of(const Script::Pairs& connections);

// Delivers a part where there is one.
template <class Out, class Part>
void deliver(Out out, const std::optional<Part>& part)
{
    if (part)
        out = sequence_of(*part);
}

} // namespace velmo::tests

#endif
