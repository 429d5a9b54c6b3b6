// velmo shell: commands one after the other.
#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include <unistd.h>

#include "cli/child.h"
#include "cli/completer.h"
#include "cli/groups.h"
#include "cli/line_editor.h"
#include "cli/text.h"
#include "cli/words.h"

namespace velmo::cli {

namespace {

constexpr const char* ourselves = "/proc/self/exe";
constexpr const char* completion_timeout_ms = "500";

using Words = std::vector<std::string>;

// Where a person's programs keep such things; "" where there is no such place.
std::string history_file()
{
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    if ((!state || *state != '/') && (!home || *home != '/'))
        return "";
    const std::filesystem::path folder =
        (state && *state == '/' ? std::filesystem::path(state)
                                : std::filesystem::path(home) / ".local/state") /
        "velmo";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return error ? "" : (folder / "history").string();
}

// While a command runs, Ctrl-C is for it alone.
class Patience {
public:
    Patience() { sigaction(SIGINT, nullptr, &outer), std::signal(SIGINT, SIG_IGN); }
    ~Patience() { sigaction(SIGINT, &outer, nullptr); }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;

private:
    struct sigaction outer;
};

struct Shell {
    void declare(CLI::App& app)
    {
        app.add_flag("--stop", stop, "Ends at the first command that fails");
    }

    void run(Session& session) const
    {
        if (isatty(STDIN_FILENO) == 1 && session.out.is_terminal())
            talk(session);
        else
            follow_script(session);
    }

private:
    // Each command is a process of its own, so that Ctrl-C ends it and nothing else.
    void talk(Session& session) const
    {
        // NOLINTBEGIN(concurrency-mt-unsafe): no other thread yet
        std::setlocale(LC_CTYPE, ""); // the letters that are typed
        session.out.message("velmo " VELMO_VERSION
                            "; type help for the commands, exit or Ctrl-D to leave");
        // For completion alone: commands have an environment of their own.
        for (const char* time : {"NAMING", "CONNECT", "CALL"})
            setenv((std::string("VELMO_") + time + "_TIMEOUT_MS").c_str(),
                   completion_timeout_ms, 1);
        // NOLINTEND(concurrency-mt-unsafe)
        LineEditor editor(prompt(session), history_file(),
                          [&](const Words& words) { return completions(session, words); });
        while (const auto line = next(editor))
            if (!perform(session, *line, [](const Words& words) {
                    const Patience patience;
                    const int status = Child(words, Child::Place::ours).wait();
                    if (status == interrupted)
                        std::fputs("\n", stdout);
                    return status;
                }))
                break;
    }

    static std::string prompt(const Session& session)
    {
        const std::string place = harmless(session.server_name) +
                                  (session.realm_name.empty() ? "" : "/") +
                                  harmless(session.realm_name);
        return place.empty() ? "velmo> " : "velmo " + place + "> ";
    }

    static std::optional<std::string> next(LineEditor& editor)
    {
        for (;;) {
            try {
                return editor.read();
            } catch (const Interrupted&) { // the line is gone, the session is not
            }
        }
    }

    // In this process, which is much faster.
    void follow_script(Session& session) const
    {
        for (std::string line; std::getline(std::cin, line);)
            if (!perform(session, line, [](const Words& words) {
                    return cli::run(Words(words.begin() + 1, words.end()));
                }))
                break;
    }

    // Whether to go on.
    template <class Execute>
    bool perform(Session& session, const std::string& text, Execute execute) const
    {
        Line line = split(text);
        if (line.is_open)
            return refuse(session, "a quote is not closed");
        // As in every argument of a program: names are C strings further on.
        if (std::any_of(line.words.begin(), line.words.end(), has_nul))
            return refuse(session, "a NUL byte cannot be part of a command");
        if (line.words.empty())
            return true;
        const std::string first = line.words.front();
        if (first == "exit" || first == "quit")
            return false;
        if (first == "shell") {
            session.out.message("this is one already");
            return true;
        }
        if (first == "help") {
            line.words.erase(line.words.begin());
            line.words.emplace_back("--help");
        }
        Words words = {ourselves};
        words.insert(words.end(), session.options.begin(), session.options.end());
        words.insert(words.end(), line.words.begin(), line.words.end());
        session.exit_status = execute(words);
        return session.exit_status == succeeded || !stop;
    }

    // Whether to go on.
    bool refuse(Session& session, const std::string& why) const
    {
        session.out.error(why, "");
        session.exit_status = misused;
        return !stop;
    }

    bool stop = false;
};

} // namespace

void add_shell_command(Program& program)
{
    Group group(program, "shell", "An interactive session; or commands of standard input");
    group.itself<Shell>();
}

} // namespace velmo::cli
