#include "tests/support/script.h"

#include <cstring>
#include <memory>

namespace velmo::tests {

void Script::answer(const std::string& operation, Answer answer)
{
    std::lock_guard<std::mutex> guard(mutex);
    answers[operation] = std::move(answer);
}

void Script::answer(const std::string& operation, Reply reply)
{
    answer(operation, [reply = std::move(reply)] { return reply; });
}

void Script::answer(const std::string& operation, CORBA::Long result)
{
    answer(operation, Reply{result});
}

std::vector<std::string> Script::calls() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return recorded;
}

void Script::forget_calls()
{
    std::lock_guard<std::mutex> guard(mutex);
    recorded.clear();
}

std::string Script::shown(const char* text)
{
    return text ? '"' + std::string(text) + '"' : "null";
}

std::string Script::shown(const Velmo::DATA_BUFFER& data)
{
    return '"' +
           std::string(reinterpret_cast<const char*>(data.get_buffer()), data.length()) +
           '"';
}

Script::Reply Script::reply_to_call(const std::string& operation, const std::string& call)
{
    Answer found;
    {
        std::lock_guard<std::mutex> guard(mutex);
        recorded.push_back(call);
        const auto answer = answers.find(operation);
        if (answer != answers.end())
            found = answer->second;
    }
    if (!found)
        throw CORBA::NO_IMPLEMENT();
    return found();
}

Velmo::DATA_BUFFER* sequence_of(const std::string& bytes)
{
    auto sequence = std::make_unique<Velmo::DATA_BUFFER>();
    sequence->length(static_cast<CORBA::ULong>(bytes.size()));
    if (!bytes.empty())
        std::memcpy(sequence->get_buffer(), bytes.data(), bytes.size());
    return sequence.release();
}

Velmo::NAME_SEQ* sequence_of(const Script::Names& names)
{
    auto sequence = std::make_unique<Velmo::NAME_SEQ>();
    sequence->length(static_cast<CORBA::ULong>(names.size()));
    for (CORBA::ULong i = 0; i < sequence->length(); ++i)
        (*sequence)[i] = names[i].c_str();
    return sequence.release();
}

Velmo::DT_PORT_SVC::CONNECTION_SEQ* sequence_of(const Script::Pairs& connections)
{
    auto sequence = std::make_unique<Velmo::DT_PORT_SVC::CONNECTION_SEQ>();
    sequence->length(static_cast<CORBA::ULong>(connections.size()));
    for (CORBA::ULong i = 0; i < sequence->length(); ++i) {
        (*sequence)[i].from_name = connections[i].first.c_str();
        (*sequence)[i].to_name = connections[i].second.c_str();
    }
    return sequence.release();
}

} // namespace velmo::tests
