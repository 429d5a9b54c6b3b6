// The commands of velmo: groups of verbs, and how a command line finds its verb.
#ifndef VELMO_CLI_COMMAND_H
#define VELMO_CLI_COMMAND_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/session.h"

namespace velmo::cli {

// Carries out a command line, given without the program's name, and gives the exit status.
// Writes everything that is to be said; throws nothing. The time-outs of the first call
// that reaches the library hold for the whole process.
int run(const std::vector<std::string>& arguments);

using Action = std::function<void(Session& session)>;

class Program;

// A word of the command line with verbs after it, or one that is a command itself.
//
// A verb is a class that can be made without arguments, with
//     void declare(CLI::App& app);             adds its options, bound to its members
//     void run(Session& session) const;        does it; throws Failure or Interrupted
class Group {
public:
    Group(Program& program, const char* name, const char* description);

    template <class Verb>
    void verb(const char* name, const char* description)
    {
        enter<Verb>(*add_verb(name, description));
    }

    // The verb that the group's name alone stands for.
    template <class Verb>
    void itself()
    {
        app->require_subcommand(0, 1);
        enter<Verb>(*app);
    }

    // Not shown by help and completions.
    void hide() { app->group(""); }

private:
    template <class Verb>
    void enter(CLI::App& to)
    {
        const auto verb = std::make_shared<Verb>();
        verb->declare(to);
        set_action(to, [verb](Session& session) { verb->run(session); });
    }

    CLI::App* add_verb(const char* name, const char* description);
    void set_action(const CLI::App& of, Action action);

    Program& program;
    CLI::App* app;
};

// All commands, to parse one command line. Also for those who describe them: help,
// completions and manual pages come from app().
class Program {
public:
    Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    CLI::App& app() { return root; }

    int run(std::vector<std::string> arguments);

private:
    friend class Group;

    void add_common_options();
    void check_words(const std::vector<std::string>& arguments) const;
    [[noreturn]] void refuse(const CLI::ParseError& error) const;
    const CLI::App& chosen() const;
    std::vector<std::string> common_options() const;
    void perform();

    CLI::App root{"Works with Velmo servers: their points, ports, events and contention.",
                  "velmo"};
    std::map<const CLI::App*, Action> actions;
    Session session;
    bool json = false;
    Colours colours = Colours::automatic;
};

} // namespace velmo::cli

#endif
