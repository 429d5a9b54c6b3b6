// velmo error: what result codes mean.
#include <charconv>

#include "cli/groups.h"
#include "cli/suggestion.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

struct Code {
    const char* name;
    int number;
};

const std::vector<Code>& codes()
{
    static const std::vector<Code> all = {
#define NAME_AND_CODE(name, code) {#name, code},
        VL_RESULT_CODES(NAME_AND_CODE)
#undef NAME_AND_CODE
            {VL_REMOTE_FAILURE_NAME, VL_REMOTE_FAILURE_FIRST},
    };
    return all;
}

Json document(int code)
{
    return {{"code", code},
            {"name", code_name(code)},
            {"text", code_text(code)},
            {"advice", code_advice(code)}};
}

// A number, or a name of vl_result.h.
int parse_code(const std::string& text)
{
    int number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec == std::errc() && parsed.ptr == text.data() + text.size())
        return number;
    std::vector<std::string> names = {"list"};
    for (const Code& code : codes()) {
        if (text == code.name)
            return code.number;
        names.emplace_back(code.name);
    }
    const std::string meant = nearest(text, names);
    throw misuse(in_quotes(text) + " is no result code" +
                     (meant.empty() ? "" : "; did you mean \"" + meant + "\"?"),
                 "list the codes with: velmo error list");
}

struct Explain {
    void declare(CLI::App& app)
    {
        app.add_option("CODE", text, "A result code, or its name");
    }

    void run(Session& session) const
    {
        if (text.empty())
            throw misuse("a result code is missing",
                         "list the codes with: velmo error list");
        const int code = parse_code(text);
        const std::string name = code_name(code);
        if (name.empty())
            throw misuse("there is no result code " + std::to_string(code),
                         "list the codes with: velmo error list");
        const std::string advice = code_advice(code);
        session.out.result(document(code), session.out.style(name, Style::bold) + " (" +
                                               std::to_string(code) +
                                               "): " + code_text(code) +
                                               (advice.empty() ? "" : "\n    " + advice));
    }

    std::string text;
};

struct List {
    void declare(CLI::App&) {}

    void run(Session& session) const
    {
        Table table({"CODE", "NAME", "TEXT"});
        Json documents = Json::array();
        for (const Code& code : codes()) {
            const bool block = code.number == VL_REMOTE_FAILURE_FIRST;
            const std::string number =
                std::to_string(code.number) +
                (block ? "-" + std::to_string(VL_REMOTE_FAILURE_LAST) : "");
            table.add({number, code.name, code_text(code.number)});
            documents.push_back(document(code.number));
        }
        session.out.result({{"codes", documents}}, table);
    }
};

} // namespace

void add_error_group(Program& program)
{
    Group group(program, "error", "What result codes mean: velmo error CODE");
    group.itself<Explain>();
    group.verb<List>("list", "Lists the result codes");
}

} // namespace velmo::cli
