#include "saved/DocumentProbe.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <numeric>
#include <sstream>

#include "base/ExitStatus.h"
#include "kyr/TLogger.h"

namespace {

using TPaths = std::vector<std::string>;
using TReader = std::function<void(const std::string&)>;

TCommandError CannotProbe() {
    return TCommandError(eExitNothing, std::string("cannot start a process to try documents in: ") + strerror(errno));
}

// A document that is nested just deep enough to be read there must not overflow our own, deeper stack.
void NarrowStack() {
    rlimit stack{};
    if (getrlimit(RLIMIT_STACK, &stack) != 0 || stack.rlim_cur == RLIM_INFINITY) return;
    stack.rlim_cur -= stack.rlim_cur / 8;
    setrlimit(RLIMIT_STACK, &stack);
}

void PrepareProbe() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_DUMPABLE, 0);
    signal(SIGINT, SIG_IGN);  // our parent decides
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) dup2(null, descriptor);
    NarrowStack();
    TLogger::Initialize();
}

// One byte for each document that is done with.
[[noreturn]] void ReadAll(const TPaths& paths, const TReader& read, int report) {
    PrepareProbe();
    for (const std::string& path : paths) {
        try {
            read(path);
        } catch (...) {
        }
        if (write(report, "", 1) != 1) break;
    }
    _exit(0);
}

class TProbe {
public:
    TProbe(const TPaths& paths, const TReader& read) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw CannotProbe();
        fReport = ends[0];
        fChild = fork();
        if (fChild == 0) ReadAll(paths, read, ends[1]);
        close(ends[1]);
        if (fChild > 0) return;
        close(fReport);
        throw CannotProbe();
    }
    ~TProbe() {
        if (fChild > 0) {
            kill(fChild, SIGKILL);
            WaitForEnd();
        }
        close(fReport);
    }
    TProbe(const TProbe&) = delete;
    TProbe& operator=(const TProbe&) = delete;

    /// Gives how many were read before the child ended, or before one of them took too long.
    size_t Count(double seconds, TTimePoint latest) {
        size_t count = 0;
        char bytes[64];
        while (WaitForReport(std::min(After(TClock::now(), seconds), latest))) {
            const ssize_t length = read(fReport, bytes, sizeof bytes);
            if (length == 0) return count;
            if (length > 0) count += static_cast<size_t>(length);
        }
        fLate = true;
        return count;
    }

    std::string Harm(double seconds) {
        std::ostringstream text;
        if (fLate) kill(fChild, SIGKILL);
        const int status = WaitForEnd();
        if (fLate)
            text << "not read within " << seconds << " s";
        else if (WIFSIGNALED(status))
            text << "crashed the reader (SIG" << sigabbrev_np(WTERMSIG(status)) << ")";
        else
            text << "ended the reader with status " << WEXITSTATUS(status);
        return text.str();
    }

private:
    bool WaitForReport(TTimePoint end) const {
        using namespace std::chrono;
        for (;;) {
            const auto rest = std::clamp<nanoseconds>(end - TClock::now(), nanoseconds(0), hours(1));
            pollfd report{fReport, POLLIN, 0};
            if (poll(&report, 1, static_cast<int>(ceil<milliseconds>(rest).count())) > 0) return true;
            if (rest.count() == 0) return false;
        }
    }

    int WaitForEnd() {
        int status = 0;
        while (waitpid(fChild, &status, 0) < 0 && errno == EINTR) {
        }
        fChild = -1;
        return status;
    }

    int fReport;
    pid_t fChild;
    bool fLate = false;
};

}  // namespace

std::vector<std::string> ProbeDocuments(const TPaths& paths, const TReader& read, double secondsForEach,
                                        TTimePoint latest) {
    std::vector<std::string> harms(paths.size());
    std::vector<size_t> places(paths.size());  // of what is left, in harms
    std::iota(places.begin(), places.end(), 0);
    TPaths rest = paths;
    while (!rest.empty()) {
        if (TClock::now() >= latest) {
            for (const size_t place : places) harms[place] = "not read before the deadline";
            break;
        }
        TProbe probe(rest, read);
        const size_t count = probe.Count(secondsForEach, latest);
        if (count == rest.size()) break;
        harms[places[count]] = probe.Harm(secondsForEach);
        rest.erase(rest.begin() + static_cast<long>(count));
        places.erase(places.begin() + static_cast<long>(count));
    }
    return harms;
}
