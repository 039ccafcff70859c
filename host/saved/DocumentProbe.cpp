#include "saved/DocumentProbe.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <numeric>
#include <sstream>
#include <system_error>

#include "base/ChildProcess.h"
#include "base/Descriptor.h"
#include "base/ExitStatus.h"
#include "base/Signals.h"
#include "kyr/TLogger.h"

namespace {

using TPaths = std::vector<std::string>;
using TReader = std::function<void(const std::string&)>;

TCommandError CannotProbe(int error) {
    return TCommandError(eExitNothing, std::string("cannot start a process to try documents in: ") + strerror(error));
}

// The host reads what the probe could read, on a stack that is in use deeper. A document that is nested just deep
// enough for the probe must not overflow that one, so the probe has an eighth less.
void NarrowStack() {
    rlimit stack{};
    if (getrlimit(RLIMIT_STACK, &stack) != 0 || stack.rlim_cur == RLIM_INFINITY) return;
    stack.rlim_cur -= stack.rlim_cur / 8;
    setrlimit(RLIMIT_STACK, &stack);
}

void PrepareProbe() {
    prctl(PR_SET_DUMPABLE, 0);
    signal(SIGINT, SIG_IGN);  // the parent decides what an interruption means
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) dup2(null, descriptor);
    NarrowStack();
    TLogger::Initialize();
}

// One byte for each document that is done with.
void ReadAll(const TPaths& paths, const TReader& read, int report) {
    PrepareProbe();
    for (const std::string& path : paths) {
        try {
            read(path);
        } catch (...) {
        }
        if (write(report, "", 1) != 1) return;
    }
}

TChildProcess StartProbe(const TPaths& paths, const TReader& read, int report) {
    try {
        return TChildProcess([&] { ReadAll(paths, read, report); });
    } catch (const std::system_error& e) {
        throw CannotProbe(e.code().value());
    }
}

class TPipe {
public:
    TPipe() : TPipe(Make()) {}

    TDescriptor fReadEnd, fWriteEnd;

private:
    explicit TPipe(std::array<int, 2> ends) : fReadEnd(ends[0]), fWriteEnd(ends[1]) {}

    static std::array<int, 2> Make() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw CannotProbe(errno);
        return ends;
    }
};

class TProbe {
public:
    TProbe(const TPaths& paths, const TReader& read) : fChild(StartProbe(paths, read, fReport.fWriteEnd.Number())) {
        fReport.fWriteEnd.Close();
    }

    /// Gives how many were read before the child ended, or before one of them took too long.
    size_t Count(double seconds, TTimePoint latest) {
        size_t count = 0;
        char bytes[64];
        while (WaitForReport(std::min(After(TClock::now(), seconds), latest))) {
            const ssize_t length = read(fReport.fReadEnd.Number(), bytes, sizeof bytes);
            if (length == 0) return count;
            if (length > 0) count += static_cast<size_t>(length);
        }
        fLate = true;
        return count;
    }

    std::string Harm(double seconds) {
        std::ostringstream text;
        if (fLate) fChild.Kill();
        const TProcessEnd end = fChild.Wait();
        if (fLate)
            text << "not read within " << seconds << " s";
        else if (end.signal != 0)
            text << "crashed the reader (" << SignalName(end.signal) << ")";
        else
            text << "ended the reader with status " << end.exitStatus;
        return text.str();
    }

private:
    bool WaitForReport(TTimePoint end) const {
        using namespace std::chrono;
        for (;;) {
            const auto rest = std::clamp<nanoseconds>(end - TClock::now(), nanoseconds(0), hours(1));
            pollfd report{fReport.fReadEnd.Number(), POLLIN, 0};
            if (poll(&report, 1, static_cast<int>(ceil<milliseconds>(rest).count())) > 0) return true;
            if (rest.count() == 0) return false;
        }
    }

    TPipe fReport;
    TChildProcess fChild;
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
