#include "cli/command.h"

#include <algorithm>
#include <cstdlib>

#include "cli/groups.h"
#include "cli/library.h"
#include "cli/suggestion.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

constexpr unsigned int max_timeout_ms = 2147483647;

// The command as a person would type it, such as "velmo point".
std::string typed(const CLI::App& app)
{
    return app.get_parent() ? typed(*app.get_parent()) + " " + app.get_name()
                            : app.get_name();
}

std::string see_help(const CLI::App& app)
{
    return "see: " + typed(app) + " --help";
}

std::vector<std::string> names_of_subcommands(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* sub : app.get_subcommands(nullptr))
        names.push_back(sub->get_name());
    return names;
}

// The options that may follow, those of the commands around included.
std::vector<std::string> option_names(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* at = &app; at; at = at->get_parent())
        for (const CLI::Option* option : at->get_options())
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
    return names;
}

Failure unknown(const std::string& what, const std::string& word,
                const std::vector<std::string>& known, const CLI::App& where)
{
    const std::string meant = nearest(word, known);
    return misuse("there is no " + what + " " + in_quotes(word) +
                      (meant.empty() ? "" : "; did you mean \"" + meant + "\"?"),
                  see_help(where));
}

bool takes_value(const CLI::App& app, const std::string& word)
{
    const CLI::Option* option = app.get_option_no_throw(word);
    return option && option->get_items_expected_max() > 0;
}

} // namespace

Group::Group(Program& its_program, const char* name, const char* description)
    : program(its_program),
      app(program.root.add_subcommand(name, description)->fallthrough())
{
    app->require_subcommand(1);
}

CLI::App* Group::add_verb(const char* name, const char* description)
{
    return app->add_subcommand(name, description)->fallthrough();
}

void Group::set_action(const CLI::App& of, Action action)
{
    program.actions[&of] = std::move(action);
}

Program::Program()
{
    root.require_subcommand(1);
    root.set_version_flag("--version", std::string("velmo ") + VELMO_VERSION);
    root.footer(
        "Common options may stand anywhere. Exit status: 0 done, 1 a result code or "
        "another failure, 2 misuse, 130 interrupted.");
    add_common_options();
    add_groups(*this);
}

void Program::add_common_options()
{
    root.add_option("--server", session.server_name,
                    "Name of the server in the settings (this host's own one)")
        ->take_last()
        ->type_name("NAME");
    root.add_option("--realm", session.realm_name, "Realm of the server (the unnamed one)")
        ->take_last()
        ->type_name("NAME");
    root.add_flag("--json", json, "Results as JSON");
    root.add_option("--timeout", session.timeout_ms,
                    "Longest time in milliseconds until a server has answered (as the "
                    "settings say)")
        ->check(CLI::Range(1u, max_timeout_ms))
        ->take_last()
        ->type_name("MS");
    const std::map<std::string, Colours> words = {{"auto", Colours::automatic},
                                                  {"always", Colours::always},
                                                  {"never", Colours::never}};
    root.add_option("--color", colours, "Colours: auto, always or never (auto)")
        ->transform(CLI::CheckedTransformer(words).description(""))
        ->take_last()
        ->type_name("WHEN");
}

// Finds unknown words before CLI11 does, which would only call them unexpected.
void Program::check_words(const std::vector<std::string>& arguments) const
{
    const CLI::App* at = &root;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        const std::vector<std::string> known = names_of_subcommands(*at);
        if (word == "--" || known.empty())
            return;
        if (word.size() > 1 && word.front() == '-') {
            if (takes_value(root, word))
                ++i;
            continue;
        }
        if (std::find(known.begin(), known.end(), word) != known.end())
            at = at->get_subcommand(word);
        else if (actions.count(at) != 0)
            return; // an argument
        else
            throw unknown(at == &root ? "command" : at->get_name() + " command", word,
                          known, *at);
    }
}

const CLI::App& Program::chosen() const
{
    const CLI::App* at = &root;
    while (!at->get_subcommands().empty())
        at = at->get_subcommands().front();
    return *at;
}

void Program::refuse(const CLI::ParseError& error) const
{
    const CLI::App& at = chosen();
    if (dynamic_cast<const CLI::ExtrasError*>(&error)) {
        const std::vector<std::string> extras = root.remaining(true);
        for (const std::string& extra : extras)
            if (extra.size() > 1 && extra.front() == '-')
                throw unknown("option", extra.substr(0, extra.find('=')), option_names(at),
                              at);
        throw misuse("too many arguments: " +
                         in_quotes(extras.empty() ? "" : extras.front()),
                     see_help(at));
    }
    if (!names_of_subcommands(at).empty() && actions.count(&at) == 0) {
        std::string verbs;
        for (const std::string& name : names_of_subcommands(at))
            if (!at.get_subcommand(name)->get_group().empty()) // hidden
                verbs += (verbs.empty() ? "" : ", ") + name;
        if (dynamic_cast<const CLI::RequiredError*>(&error))
            throw misuse("a command is missing after \"" + typed(at) + "\": one of " +
                             verbs,
                         see_help(at));
    }
    throw misuse(error.what(), see_help(at));
}

int Program::run(std::vector<std::string> arguments)
{
    const bool wants_json =
        std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    session.out = Output(wants_json);
    try {
        check_words(arguments);
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
        try {
            root.parse(arguments);
        } catch (const CLI::ParseError& error) {
            if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
                return root.exit(error); // help or version
            refuse(error);
        }
        perform();
        return session.exit_status;
    } catch (const Failure& failure) {
        session.out.error(failure.what(), failure.advice());
        return failure.exit_status();
    } catch (const Interrupted&) {
        return interrupted;
    } catch (const std::exception& error) {
        session.out.error(error.what(), "");
        return failed;
    }
}

void Program::perform()
{
    session.out = Output(json, colours);
    session.options = common_options();
    prepare_library(session.timeout_ms);
    actions.at (&chosen())(session);
    session.out.finish();
}

std::vector<std::string> Program::common_options() const
{
    std::vector<std::string> words;
    for (const CLI::Option* option : root.get_options()) {
        if (option->empty())
            continue;
        const bool has_value = option->get_items_expected_max() > 0;
        words.push_back("--" + option->get_lnames().front() +
                        (has_value ? "=" + option->results().back() : ""));
    }
    return words;
}

int run(const std::vector<std::string>& arguments)
{
    return Program().run(arguments);
}

} // namespace velmo::cli
