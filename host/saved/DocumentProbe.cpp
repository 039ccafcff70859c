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
#include <new>
#include <numeric>
#include <sstream>
#include <system_error>

#include "base/ChildProcess.h"
#include "base/Descriptor.h"
#include "base/ExitStatus.h"
#include "base/Memory.h"
#include "base/Signals.h"
#include "kyr/TLogger.h"

namespace {

using TPaths = std::vector<std::string>;
using TReader = std::function<void(const std::string&)>;

// What the child reports of a document.
constexpr char kRead = 0, kTooLarge = 1;

constexpr size_t kPartOfMemory = 8;

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

void LimitMemory(size_t heap) {
    constexpr size_t kBesideTheHeap = size_t{8} << 20;
    rlimit limit{};
    if (!kIsMemoryLimitable || getrlimit(RLIMIT_DATA, &limit) != 0) return;
    limit.rlim_cur = std::min<rlim_t>(heap + kBesideTheHeap, limit.rlim_max);
    setrlimit(RLIMIT_DATA, &limit);
}

// False if it takes more memory than the limit, or is too large for the function.
bool ReadWithin(size_t limit, const std::string& path, const TReader& read) {
    const size_t before = HeapSize();
    LimitMemory(before + limit);
    try {
        read(path);
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const TTooLarge&) {
        return false;
    } catch (...) {
    }
    return HeapSize() <= before + limit;
}

// One byte for each document that is done with.
void ReadAll(const TPaths& paths, const TReader& read, size_t memory, int pipe) {
    PrepareProbe();
    const size_t most = HeapSize() + memory;
    for (const std::string& path : paths) {
        const size_t left = most - std::min(most, HeapSize());
        const char report = ReadWithin(left / kPartOfMemory, path, read) ? kRead : kTooLarge;
        if (write(pipe, &report, 1) != 1) return;
    }
}

TChildProcess StartProbe(const TPaths& paths, const TReader& read, size_t memory, int pipe) {
    try {
        return TChildProcess([&] { ReadAll(paths, read, memory, pipe); });
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
    TProbe(const TPaths& paths, const TReader& read, size_t memory)
        : fChild(StartProbe(paths, read, memory, fReport.fWriteEnd.Number())) {
        fReport.fWriteEnd.Close();
    }

    /// Gives what was reported before the child ended, or before one document took too long.
    std::string Reports(const TProbeLimits& limits) {
        std::string all;
        char reports[64];
        while (WaitForReport(std::min(After(TClock::now(), limits.secondsForEach), limits.latest))) {
            const ssize_t length = read(fReport.fReadEnd.Number(), reports, sizeof reports);
            if (length == 0) return all;
            if (length > 0) all.append(reports, static_cast<size_t>(length));
        }
        fLate = true;
        return all;
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

std::vector<TReason> ProbeDocuments(const TPaths& paths, const TReader& read, const TProbeLimits& limits) {
    std::vector<TReason> harms(paths.size());
    std::vector<size_t> places(paths.size());  // of what is left, in harms
    std::iota(places.begin(), places.end(), 0);
    TPaths rest = paths;
    while (!rest.empty()) {
        if (TClock::now() >= limits.latest) {
            const TReason late = ReasonFor(EReason::eDocumentHarmful, "not read before the deadline");
            for (const size_t place : places) harms[place] = late;
            break;
        }
        TProbe probe(rest, read, limits.memory);
        const std::string reports = probe.Reports(limits);
        const size_t count = std::min(reports.size(), rest.size());
        for (size_t i = 0; i < count; ++i)
            if (reports[i] == kTooLarge) harms[places[i]] = ReasonFor(EReason::eDocumentTooLarge);
        if (count == rest.size()) break;
        harms[places[count]] = ReasonFor(EReason::eDocumentHarmful, probe.Harm(limits.secondsForEach));
        rest.erase(rest.begin() + static_cast<long>(count));
        places.erase(places.begin() + static_cast<long>(count));
    }
    return harms;
}
