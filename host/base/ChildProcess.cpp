#include "base/ChildProcess.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "base/TimePoint.h"

namespace {

constexpr std::chrono::milliseconds kKillGrace(1000);
constexpr std::chrono::milliseconds kPollInterval(1);

// The callers further up the stack belong to the parent, so no exception may reach them.
[[noreturn]] void RunInChild(const std::function<void()>& function, pid_t parent) noexcept {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);  // it had ended before it was watched
    function();
    _exit(0);
}

pid_t Fork(const std::function<void()>& function) {
    const pid_t parent = getpid();
    const pid_t id = fork();
    if (id == 0) RunInChild(function, parent);
    if (id < 0) throw std::system_error(errno, std::generic_category(), "no process can be started for it");
    return id;
}

std::vector<pid_t> Children() {
    std::ifstream file("/proc/thread-self/children");
    std::vector<pid_t> children;
    for (pid_t child; file >> child;) children.push_back(child);
    return children;
}

// False if the child has not ended by then: SIGKILL does not end a process that waits in the kernel.
bool WaitUntil(pid_t child, TTimePoint latest) {
    while (waitpid(child, nullptr, WNOHANG) == 0) {
        if (TClock::now() >= latest) return false;
        std::this_thread::sleep_for(kPollInterval);
    }
    return true;
}

}  // namespace

TChildProcess::TChildProcess(const std::function<void()>& function) : fId(Fork(function)) {}

TChildProcess::~TChildProcess() {
    if (fWasWaitedFor) return;
    Kill();
    WaitUntil(fId, TClock::now() + kKillGrace);
}

bool TChildProcess::HasEnded() const {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(fId), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

void TChildProcess::Terminate() const { kill(fId, SIGTERM); }

// The group exists only once the child has come so far that it leads one.
void TChildProcess::Kill() const {
    kill(-fId, SIGKILL);
    kill(fId, SIGKILL);
}

TProcessEnd TChildProcess::Wait() {
    int status = 0;
    while (waitpid(fId, &status, 0) < 0 && errno == EINTR) {
    }
    fWasWaitedFor = true;
    if (WIFSIGNALED(status)) return {WTERMSIG(status), 0};
    return {0, WEXITSTATUS(status)};
}

// The second field is the name of the program in parentheses, which may hold anything.
pid_t ParentOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(file, line, '\0');
    const size_t name = line.rfind(") ");
    if (process <= 0 || name == std::string::npos) return 0;
    return static_cast<pid_t>(std::strtol(line.c_str() + name + std::strlen(") S "), nullptr, 10));
}

TSubreaper::TSubreaper() : fExisting(Children()) { prctl(PR_SET_CHILD_SUBREAPER, 1); }

TSubreaper::~TSubreaper() {
    KillChildren();
    prctl(PR_SET_CHILD_SUBREAPER, 0);
}

bool TSubreaper::IsExisting(pid_t child) const {
    return std::find(fExisting.begin(), fExisting.end(), child) != fExisting.end();
}

bool TSubreaper::Includes(pid_t process) const {
    for (pid_t parent = ParentOf(process); parent != 0; process = std::exchange(parent, ParentOf(parent)))
        if (parent == getpid()) return !IsExisting(process);
    return false;
}

// The children of each that ends become children of this process, so the list is read again until it is empty. A
// process that has become another user's cannot be killed and is left.
void TSubreaper::KillChildren() const {
    const auto isLeft = [this](pid_t child) { return IsExisting(child) || kill(child, SIGKILL) != 0; };
    const TTimePoint latest = TClock::now() + kKillGrace;
    for (;;) {
        std::vector<pid_t> children = Children();
        children.erase(std::remove_if(children.begin(), children.end(), isLeft), children.end());
        if (children.empty()) return;
        for (const pid_t child : children)
            if (!WaitUntil(child, latest)) return;
    }
}
