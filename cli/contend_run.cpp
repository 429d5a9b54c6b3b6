// velmo contend run: a command that runs only while its contender is master.
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>

#include <poll.h>
#include <unistd.h>

#include "cli/child.h"
#include "cli/forwarded_signals.h"
#include "cli/groups.h"
#include "cli/lease_keeper.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

using Clock = Standing::Clock;
using std::chrono::milliseconds;

// Shorter than a lease: a call that hangs must not cost it.
constexpr const char* call_timeout_ms = "2000";

struct Plan {
    Contender contender;
    std::vector<std::string> command;
    milliseconds grace{2000};
    bool once = false;
};

// One run, from registering to withdrawing.
class Guard {
public:
    Guard(Session& its_session, const Plan& its_plan, milliseconds interval)
        : session(its_session), plan(its_plan),
          keeper(its_session, its_plan.contender, interval)
    {
    }

    // The command's exit status. Throws Interrupted when there was none to get it from.
    int run()
    {
        const ForwardedSignals signals;
        tell("waiting");
        for (;;) {
            const Standing standing = keeper.standing();
            tell_trouble(standing);
            if (command)
                watch(standing);
            else if (is_safe(standing))
                start(standing);
            wait_for_news(signals, standing);
            while (const auto signal = signals.take())
                obey(*signal);
            if (command && has_ended())
                if (const auto status = finish())
                    return *status;
        }
    }

private:
    // The command is asked to end so long before the lease is over that it has its grace
    // until then; but a lease that is short anyway is not spent on that.
    milliseconds margin(const Standing& standing) const
    {
        return std::min(plan.grace, standing.lease / 3);
    }

    bool is_safe(const Standing& standing) const
    {
        return standing.is_master(Clock::now() + margin(standing));
    }

    void start(const Standing& standing)
    {
        epoch = *standing.epoch;
        command.emplace(
            plan.command, Child::Place::its_own,
            std::map<std::string, std::string>{{"VELMO_GROUP", plan.contender.group},
                                               {"VELMO_CONTENDER", plan.contender.name},
                                               {"VELMO_EPOCH", std::to_string(epoch)}});
        tell("master");
    }

    void watch(const Standing& standing)
    {
        const bool rightful = is_safe(standing) && standing.epoch == epoch;
        if (!rightful && !kill_time) {
            tell("lost");
            command->signal(SIGTERM);
            command->signal(SIGCONT); // one that is stopped could not obey
            kill_time = Clock::now() + plan.grace;
        }
        if (kill_time && Clock::now() >= *kill_time)
            command->signal(SIGKILL);
    }

    void wait_for_news(const ForwardedSignals& signals, const Standing& standing) const
    {
        std::array<pollfd, 3> sources{{{signals.descriptor(), POLLIN, 0},
                                       {keeper.descriptor(), POLLIN, 0},
                                       {command ? command->descriptor() : -1, POLLIN, 0}}};
        int timeout = -1;
        if (command) {
            const auto next = kill_time.value_or(standing.lease_end - margin(standing));
            const auto left = std::chrono::ceil<milliseconds>(next - Clock::now()).count();
            timeout = static_cast<int>(std::clamp<long long>(left, 1, 60000));
        }
        poll(sources.data(), sources.size(), timeout);
        keeper.seen();
    }

    void obey(int signal)
    {
        if (command && !kill_time)
            return command->signal(signal);
        if (!command)
            throw Interrupted();
        leaving = true; // as soon as it has ended
    }

    bool has_ended() const
    {
        pollfd ended{command->descriptor(), POLLIN, 0};
        return poll(&ended, 1, 0) == 1;
    }

    // None when it is to be started again.
    std::optional<int> finish()
    {
        const bool lost = kill_time.has_value();
        const int status = command->wait();
        command.reset();
        kill_time.reset();
        tell("ended", status);
        if (leaving)
            throw Interrupted();
        if (!lost || plan.once)
            return status;
        tell("waiting");
        return std::nullopt;
    }

    void tell(const std::string& state, std::optional<int> status = std::nullopt)
    {
        if (session.out.is_json())
            return session.out.item({{"group", json_text(plan.contender.group)},
                                     {"contender", json_text(plan.contender.name)},
                                     {"state", state},
                                     {"epoch", state == "waiting" ? Json() : Json(epoch)},
                                     {"status", status ? Json(*status) : Json()}},
                                    "");
        const std::string name = "contender " + in_quotes(plan.contender.name) +
                                 " of group " + in_quotes(plan.contender.group);
        const std::string text =
            state == "waiting"  ? name + " waits to be master"
            : state == "master" ? name + " is master, epoch " + std::to_string(epoch)
            : state == "lost"
                ? name + " is not master any more; ending the command"
                : "the command has ended with status " + std::to_string(status.value_or(0));
        session.out.message(text);
    }

    void tell_trouble(const Standing& standing)
    {
        if (standing.code != trouble && standing.code != VL_OK) {
            const Failure failure = call_failure(standing.code, "renew the lease",
                                                 session.server_name, session.realm_name);
            session.out.error(std::string(failure.what()) + "; trying on", "");
        }
        trouble = standing.code;
    }

    Session& session;
    const Plan& plan;
    LeaseKeeper keeper;
    std::optional<Child> command;
    Epoch epoch = 0;
    std::optional<Clock::time_point> kill_time; // once the command has been asked to end
    bool leaving = false;
    int trouble = VL_OK;
};

struct Run {
    void declare(CLI::App& app)
    {
        app.add_option("GROUP", plan.contender.group, "Name of the group")->required();
        app.add_option(
               "COMMAND", plan.command,
               "What to run while master, after \"--\": a program and its arguments")
            ->required();
        app.add_option("--as", plan.contender.name,
                       "Name of the contender (this host's and the process's number)")
            ->type_name("NAME");
        app.add_option("--priority", plan.contender.priority,
                       "The highest of a group is master")
            ->capture_default_str()
            ->type_name("N");
        app.add_option("--interval", interval_ms,
                       "Milliseconds between two looks at who is master")
            ->capture_default_str()
            ->check(CLI::Range(1, 86400000).description(""))
            ->type_name("MS");
        app.add_option("--grace", grace_ms,
                       "Milliseconds from asking the command to end to killing it")
            ->capture_default_str()
            ->check(CLI::Range(0, 86400000).description(""))
            ->type_name("MS");
        app.add_flag("--once", plan.once, "Ends when it is master no more");
    }

    void run(Session& session) const
    {
        // Read by the library at its first use; what a person has set stays.
        if (session.timeout_ms == 0)
            // NOLINTNEXTLINE(concurrency-mt-unsafe): the only thread
            setenv("VELMO_CALL_TIMEOUT_MS", call_timeout_ms, 0);
        Plan whole = plan;
        whole.grace = milliseconds(grace_ms);
        if (whole.contender.name.empty())
            whole.contender.name = usual_name();
        Guard guard(session, whole, milliseconds(interval_ms));
        session.exit_status = guard.run();
    }

private:
    static std::string usual_name()
    {
        char host[256] = "";
        gethostname(host, sizeof host - 1);
        return std::string(host) + ":" + std::to_string(getpid());
    }

    Plan plan;
    int interval_ms = 200;
    int grace_ms = 2000;
};

} // namespace

void add_contend_run(Group& contend)
{
    contend.verb<Run>("run", "Runs a command, but only while its contender is master");
}

} // namespace velmo::cli
