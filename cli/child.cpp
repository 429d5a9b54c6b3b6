#include "cli/child.h"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/failure.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

constexpr int cannot_execute = 127;

std::map<std::string, std::string> environment()
{
    std::map<std::string, std::string> variables;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos)
            variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return variables;
}

std::vector<char*> pointers(std::vector<std::string>& strings)
{
    std::vector<char*> result;
    result.reserve(strings.size() + 1);
    for (std::string& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

struct Plan {
    char** argv;
    char** envp;
    bool leads_group;
    bool reads_nothing;
    int report; // gets errno when the command cannot be executed
    pid_t parent;
};

// The child, between fork() and exec(): nothing here may allocate or lock, since another
// thread may have held any lock.
[[noreturn]] void become(const Plan& plan)
{
    for (const int ignored : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        ::signal(ignored, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    if (plan.leads_group) {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != plan.parent)
            _exit(cannot_execute);
    }
    if (plan.reads_nothing) {
        const int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, STDIN_FILENO);
        close(nothing);
    }
    execvpe(plan.argv[0], plan.argv, plan.envp);
    const int error = errno;
    static_cast<void>(!write(plan.report, &error, sizeof error));
    _exit(cannot_execute);
}

[[noreturn]] void refuse(int error, const std::string& what)
{
    throw Failure(failed, "cannot run " + in_quotes(what) + ": " +
                              std::generic_category().message(error));
}

} // namespace

const std::map<std::string, std::string>& given_environment()
{
    static const std::map<std::string, std::string> given = environment();
    return given;
}

Child::Child(const std::vector<std::string>& command, Place place,
             const std::map<std::string, std::string>& additions)
    : leads_group(place == Place::its_own)
{
    std::vector<std::string> arguments = command, variables;
    std::map<std::string, std::string> all = additions;
    all.insert(given_environment().begin(), given_environment().end());
    for (const auto& [name, value] : all)
        variables.push_back(name + "=" + value);
    const std::vector<char*> argv = pointers(arguments), envp = pointers(variables);
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0)
        refuse(errno, command.front());
    const Plan plan{const_cast<char**>(argv.data()),
                    const_cast<char**>(envp.data()),
                    leads_group,
                    leads_group && isatty(STDIN_FILENO) == 1,
                    report[1],
                    getpid()};
    pid = fork();
    const int fork_error = errno;
    if (pid == 0)
        become(plan);
    if (pid > 0 && leads_group)
        setpgid(pid, pid); // whoever of the two is first
    close(report[1]);
    int error = pid < 0 ? fork_error : 0;
    if (pid > 0 && read(report[0], &error, sizeof error) == sizeof error)
        waitpid(pid, nullptr, 0);
    close(report[0]);
    if (error == 0) {
        pidfd = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
        error = pidfd < 0 ? errno : 0;
    }
    if (error != 0)
        refuse(error, command.front());
}

Child::~Child()
{
    if (!status) {
        signal(SIGKILL);
        wait();
    }
    close(pidfd);
}

void Child::signal(int number) const
{
    if (!status)
        kill(leads_group ? -pid : pid, number);
}

int Child::wait()
{
    if (status)
        return *status;
    siginfo_t ignored;
    while (waitid(P_PID, static_cast<id_t>(pid), &ignored, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    if (leads_group)
        signal(SIGKILL); // while its number is still its own
    int raw = 0;
    while (waitpid(pid, &raw, 0) < 0 && errno == EINTR) {
    }
    status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    return *status;
}

} // namespace velmo::cli
