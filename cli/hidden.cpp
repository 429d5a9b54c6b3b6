// Commands for programs: velmo complete and man; and completion, which a person needs once.
#include <cstdio>

#include "cli/completer.h"
#include "cli/completion_scripts.h"
#include "cli/groups.h"
#include "cli/manual.h"
#include "cli/payload.h"

namespace velmo::cli {

namespace {

struct Complete {
    void declare(CLI::App& app)
    {
        app.add_option("WORD", words, "Words of a command line, after \"--\"");
    }

    void run(Session& session) const
    {
        for (const Candidate& candidate : completions(session, words))
            session.out.item({{"word", json_text(candidate.word)},
                              {"description", json_text(candidate.description)}},
                             candidate.word + "\t" + candidate.description);
    }

    std::vector<std::string> words;
};

struct Completion {
    void declare(CLI::App& app)
    {
        app.add_option("SHELL", shell, "bash, zsh or fish")
            ->required()
            ->check(CLI::IsMember({"bash", "zsh", "fish"}).description(""));
    }

    void run(Session& session) const { session.out.raw(completion_script(shell)); }

    std::string shell;
};

struct Man {
    void declare(CLI::App& app)
    {
        app.add_option("--page", page,
                       "A page with a line @OPTIONS@ in it (the one of velmo)")
            ->type_name("FILE");
        app.add_option("--help-text", help,
                       "What stands for that line, as --help prints it")
            ->type_name("FILE");
    }

    void run(Session& session) const
    {
        session.out.raw(page.empty() ? manual_of(Program().app())
                                     : with_options(read_all(page), read_all(help)));
    }

    std::string page, help;
};

template <class Command>
Group add(Program& program, const char* name, const char* description)
{
    Group group(program, name, description);
    group.itself<Command>();
    return group;
}

} // namespace

void add_hidden_commands(Program& program)
{
    add<Complete>(program, "complete", "Tells what may come next on a command line").hide();
    add<Completion>(program, "completion",
                    "Writes what a shell needs to complete commands");
    add<Man>(program, "man", "Writes a manual page").hide();
}

} // namespace velmo::cli
