#include "cli/completer.h"

#include <algorithm>
#include <functional>
#include <map>

#include "cli/command.h"
#include "cli/memory.h"
#include "cli/servers.h"
#include "cli/system_points.h"
#include "cli/value.h"

namespace velmo::cli {

namespace {

using Words = std::vector<std::string>;

Words all_of(const Names& names, int code)
{
    return code == VL_OK ? names.all() : Words();
}

Words point_names(const Session& session)
{
    Names names;
    return all_of(names,
                  vl_get_all_point_name(names.out(), session.server(), session.realm()));
}

Words type_names(const Session& session)
{
    Names names;
    return all_of(names,
                  vl_get_query_data_type(names.out(), session.server(), session.realm()));
}

Words server_names(const Session&)
{
    Words names;
    const Servers servers;
    for (const vl_settings_server& server : servers.all())
        names.emplace_back(server.name);
    return names;
}

std::function<Words(const Session&)> system(const char* folder, const char* property)
{
    return [=](const Session& session) { return system_names(session, folder, property); };
}

// What stands for the value of an argument, or of an option, in help.
Words values_of(const Session& session, const std::string& placeholder)
{
    static const std::map<std::string, std::function<Words(const Session&)>> known = {
        {"POINT", point_names},
        {"TEMPLATE", type_names},
        {"PORT", system(port_points, "handle")},
        {"FROM", system(port_points, "handle")},
        {"TO", system(port_points, "handle")},
        {"EVENT", system(event_points, "count")},
        {"GROUP", system(contention_points, "state")},
        {"SERVER", server_names},
        {"KIND", [](const Session&) { return kind_names(); }},
    };
    const auto found = known.find(placeholder);
    if (found == known.end())
        return {};
    try {
        return found->second(session);
    } catch (const Failure&) {
        return {};
    }
}

// Where the last word of a command line stands.
class Position {
public:
    Position(const CLI::App& root, const Words& words) : at(&root)
    {
        for (std::size_t i = 0; i + 1 < words.size(); ++i)
            pass(words[i]);
    }

    // None when the word is one of a program that velmo runs.
    std::vector<Candidate> candidates(const Session& session,
                                      const std::string& begun) const
    {
        std::vector<Candidate> all;
        if (foreign)
            return all;
        if (awaited)
            add_values(all, session, *awaited, awaited->get_type_name());
        else if (!begun.empty() && begun.front() == '-')
            add_options(all);
        else {
            add_commands(all);
            if (const CLI::Option* argument = next_argument())
                add_values(all, session, *argument, argument->get_name());
        }
        return all;
    }

private:
    void pass(const std::string& word)
    {
        if (foreign)
            return;
        if (awaited) {
            awaited = nullptr;
        } else if (word == "--") {
            foreign = true;
        } else if (word.size() > 1 && word.front() == '-') {
            const CLI::Option* option = find_option(word);
            if (option && option->get_items_expected_max() > 0)
                awaited = option;
        } else if (const CLI::App* sub = find_command(word)) {
            at = sub;
        } else {
            ++arguments;
        }
    }

    const CLI::Option* find_option(const std::string& word) const
    {
        for (const CLI::App* app = at; app; app = app->get_parent())
            if (const CLI::Option* option = app->get_option_no_throw(word))
                return option;
        return nullptr;
    }

    const CLI::App* find_command(const std::string& word) const
    {
        for (const CLI::App* sub : at->get_subcommands(nullptr))
            if (sub->get_name() == word)
                return sub;
        return nullptr;
    }

    const CLI::Option* next_argument() const
    {
        std::size_t passed = arguments;
        for (const CLI::Option* option : at->get_options()) {
            if (!option->get_positional())
                continue;
            if (passed < static_cast<std::size_t>(option->get_items_expected_max()))
                return option;
            passed -= static_cast<std::size_t>(option->get_items_expected_max());
        }
        return nullptr;
    }

    void add_commands(std::vector<Candidate>& all) const
    {
        for (const CLI::App* sub : at->get_subcommands(nullptr))
            if (!sub->get_group().empty())
                all.push_back({sub->get_name(), sub->get_description()});
    }

    void add_options(std::vector<Candidate>& all) const
    {
        for (const CLI::App* app = at; app; app = app->get_parent())
            for (const CLI::Option* option : app->get_options())
                for (const std::string& name : option->get_lnames())
                    if (name != "help" || app == at)
                        all.push_back({"--" + name, option->get_description()});
    }

    static void add_values(std::vector<Candidate>& all, const Session& session,
                           const CLI::Option& option, const std::string& placeholder)
    {
        const bool server = option.check_lname("server");
        for (const std::string& word : values_of(session, server ? "SERVER" : placeholder))
            all.push_back({word, ""});
    }

    const CLI::App* at;
    const CLI::Option* awaited = nullptr; // whose value comes next
    std::size_t arguments = 0;
    bool foreign = false; // the words of another program
};

// The server and realm that the words name.
Session session_of(const Session& session, const Words& words)
{
    Session named = session;
    for (std::size_t i = 0; i + 2 < words.size(); ++i) {
        if (words[i] == "--server")
            named.server_name = words[i + 1];
        else if (words[i] == "--realm")
            named.realm_name = words[i + 1];
    }
    return named;
}

} // namespace

std::vector<Candidate> completions(const Session& session, const Words& words)
{
    Program program;
    const std::string begun = words.empty() ? "" : words.back();
    std::vector<Candidate> all =
        Position(program.app(), words).candidates(session_of(session, words), begun);
    const auto is_other = [&](const Candidate& candidate) {
        return candidate.word.compare(0, begun.size(), begun) != 0;
    };
    all.erase(std::remove_if(all.begin(), all.end(), is_other), all.end());
    return all;
}

} // namespace velmo::cli
