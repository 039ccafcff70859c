#include "export/Fleet.h"

#include <malloc.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>

#include "base/ChildProcess.h"
#include "base/CoreLog.h"
#include "base/Descriptor.h"
#include "base/ExitStatus.h"
#include "base/Output.h"
#include "base/Signals.h"
#include "base/Text.h"
#include "export/ClassTable.h"
#include "export/RowStream.h"
#include "isolation/RecordStream.h"

namespace {

// What is read ahead of each process, so that it goes on while the files in front of its own are stored.
constexpr size_t kReadAhead = size_t{1} << 19;
constexpr size_t kChunk = size_t{1} << 16;

struct TSocketPair {
    TSocketPair() {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
            throw std::system_error(errno, std::generic_category(), "no socket can be made");
    }
    int ends[2];
};

/// The work of one process: every so many of the files.
struct TShare {
    const std::vector<TSource>& files;
    const TFleetOptions& options;
    size_t step;
};

void ReadOne(const TSource& file, const TFleetOptions& options, TClassTables& tables, TRowSender& sender) {
    try {
        ExportCollection(file, options.classes, tables, sender);
    } catch (const TRecordError&) {
        throw;
    } catch (const std::exception& e) {
        sender.Unreadable(e.what());
    }
}

void ReadShare(const TShare& share, size_t first, int socket, const IRunSink& wishes) {
    const TCoreLog log({});
    TRowSender sender(socket, wishes);
    TClassTables tables;
    for (size_t i = first; i < share.files.size(); i += share.step) {
        ReadOne(share.files[i], share.options, tables, sender);
        malloc_trim(0);
    }
}

/// A process that reads files, as the storing process sees it.
class TReader {
public:
    TReader(const TShare& share, size_t first, TTablePool& pool, const IRunSink& wishes)
        : TReader(share, first, pool, wishes, TSocketPair()) {}

    int Socket() const { return fSocket.Number(); }
    bool HasEnded() const { return fHasEnded; }
    TRowReceiver& Frames() { return fFrames; }
    /// The file of which frames come that were not looked at yet.
    size_t PeekedFile() const { return fPeekedFile; }
    void NextPeekedFile() { fPeekedFile += fStep; }

    void Receive() {
        char chunk[kChunk];
        const ssize_t count = recv(Socket(), chunk, sizeof chunk, MSG_DONTWAIT);
        if (count > 0) return fFrames.Add({chunk, static_cast<size_t>(count)});
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
        fHasEnded = true;
    }
    /// Ends the process, if it has not ended, and says how.
    std::string End() {
        if (!fHasEnded) fProcess.Kill();
        const TProcessEnd end = fProcess.Wait();
        if (!fHasEnded) return "the process that read it sent what it must not";
        return end.signal != 0 ? "the process that read it was ended by " + SignalName(end.signal)
                               : "the process that read it ended with status " + std::to_string(end.exitStatus);
    }

private:
    TReader(const TShare& share, size_t first, TTablePool& pool, const IRunSink& wishes, const TSocketPair& sockets)
        : fSocket(sockets.ends[0]),
          fStep(share.step),
          fProcess([&] { ReadShare(share, first, sockets.ends[1], wishes); }),
          fFrames(pool),
          fPeekedFile(first) {
        TDescriptor(sockets.ends[1]).Close();
    }

    TDescriptor fSocket;
    const size_t fStep;
    TChildProcess fProcess;
    TRowReceiver fFrames;
    size_t fPeekedFile;
    bool fHasEnded = false;
};

bool HaveCommonIdentifier(const TRun& a, const TRun& b) {
    const auto isSame = [](const std::string& x, const std::string& y) { return !x.empty() && x == y; };
    return isSame(a.name, b.name) || isSame(a.machineId, b.machineId) || isSame(a.uuid, b.uuid) ||
           isSame(a.serial, b.serial);
}

/// Has files read by several processes, and stores them one after the other.
class TFleet {
public:
    TFleet(const std::vector<TSource>& files, const TFleetOptions& options, IRunSink& sink)
        : fFiles(files), fSink(sink), fShare{files, options, CountOfReaders(files.size(), options)} {
        for (size_t i = 0; i < fShare.step; ++i) StartReader(i);
    }

    TFleetCounts Store() {
        fCounts.files = fFiles.size();
        fCounts.unknownClasses = fShare.options.classes;
        for (fTurn = 0; fTurn < fFiles.size(); ++fTurn) {
            fReader = fReaders[fTurn % fShare.step].get();
            StoreOne();
            fTold.erase(fTurn);
        }
        return fCounts;
    }

private:
    /// What is known of a file that is not stored yet.
    struct TTold {
        std::optional<TRun> run;  // nothing: it cannot be read
        std::optional<TVerdict> verdict;
    };

    static size_t CountOfReaders(size_t files, const TFleetOptions& options) {
        const size_t processors = std::max(1u, std::thread::hardware_concurrency());
        return std::max<size_t>(1, std::min(files, options.workers == 0 ? processors : options.workers));
    }

    void StartReader(size_t first) {
        fReaders.resize(fShare.step);
        fReaders[first % fShare.step] = std::make_unique<TReader>(fShare, first, fPool, fSink);
    }

    void StoreOne() {
        fHasBegun = false;
        try {
            while (StoreFrame()) continue;
        } catch (const TRecordError&) {
            GiveUp(fReader->End());
            StartReader(fTurn + fShare.step);
        }
    }

    // False at the end of the file.
    bool StoreFrame() {
        while (!fReader->Frames().TakeFrame()) {
            if (fReader->HasEnded()) throw TRecordError();
            Receive();
        }
        switch (fReader->Frames().Kind()) {
            case EFrame::eRun:
                return Begin();
            case EFrame::eUnreadable:
                return GiveUp(fReader->Frames().Text());
            case EFrame::eDocument:
                fSink.Document(fReader->Frames().Text());
                return true;
            case EFrame::eEnd:
                return End();
            default:
                fReader->Frames().PassOn(fSink);
                return true;
        }
    }

    bool Begin() {
        Decide();
        const TTold& told = fTold.at(fTurn);
        if (!told.verdict) throw TRecordError();
        fHasBegun = told.verdict->what == TVerdict::eStore;
        fCounts.alreadyStored += told.verdict->what == TVerdict::eAlreadyStored;
        fCounts.older += told.verdict->what == TVerdict::eOlder;
        if (!told.verdict->refusal.empty()) PrintDiagnostic(told.verdict->refusal);
        NoteKnownClasses(*told.run);
        if (fHasBegun) fSink.Begin(*told.run);
        return true;
    }

    void NoteKnownClasses(const TRun& run) {
        std::vector<std::string>& unknown = fCounts.unknownClasses;
        for (const std::string& name : run.knownClasses)
            unknown.erase(std::remove(unknown.begin(), unknown.end(), name), unknown.end());
    }

    bool End() {
        if (!fHasBegun) return false;
        fSink.End();
        ++fCounts.stored;
        return false;
    }

    bool GiveUp(const std::string& why) {
        if (fHasBegun) fSink.Abandon();
        const std::string& name = fFiles[fTurn].name;
        const bool isNamed = why.find(name) != std::string::npos;
        PrintDiagnostic(isNamed ? why : "cannot read the collection '" + VisibleText(name) + "': " + why);
        ++fCounts.unreadable;
        return false;
    }

    // Waits until one of the processes has sent something. Those that are not to be stored yet send only so much.
    void Receive() {
        std::vector<pollfd> polls;
        for (const auto& reader : fReaders) {
            const bool isWanted =
                !reader->HasEnded() && (reader.get() == fReader || reader->Frames().BytesHeld() < kReadAhead);
            polls.push_back({isWanted ? reader->Socket() : -1, POLLIN, 0});
        }
        if (poll(polls.data(), polls.size(), -1) < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot wait for processes");
        for (size_t i = 0; i < polls.size(); ++i)
            if (polls[i].revents != 0) {
                fReaders[i]->Receive();
                LookAhead(*fReaders[i]);
            }
        Decide();
    }

    // Notes of which runs the frames tell that are not stored yet. What must not be there is found when it is stored.
    void LookAhead(TReader& reader) {
        try {
            while (reader.Frames().PeekFrame()) {
                const EFrame kind = reader.Frames().Kind();
                const size_t file = reader.PeekedFile();
                if (kind == EFrame::eRun) fTold[file].run = reader.Frames().Run();
                if (kind == EFrame::eUnreadable) fTold[file];
                if (kind == EFrame::eUnreadable || kind == EFrame::eEnd) reader.NextPeekedFile();
            }
        } catch (const TRecordError&) {
        }
    }

    // Answers the processes that wait. A run that may be of the host of one in front of it has to wait for that.
    void Decide() {
        for (size_t file = fTurn; file < fFiles.size(); ++file) {
            const auto told = fTold.find(file);
            if (told == fTold.end()) return;
            if (!told->second.run || told->second.verdict || IsLikeOneBefore(file)) continue;
            TVerdict verdict = fSink.Decide(*told->second.run);
            SendVerdict(fReaders[file % fShare.step]->Socket(), verdict);
            verdict.neighbours.clear();
            told->second.verdict = std::move(verdict);
        }
    }

    bool IsLikeOneBefore(size_t file) const {
        const TRun& run = *fTold.at(file).run;
        for (size_t before = fTurn; before < file; ++before)
            if (const TTold& told = fTold.at(before); told.run && HaveCommonIdentifier(*told.run, run)) return true;
        return false;
    }

    const std::vector<TSource>& fFiles;
    IRunSink& fSink;
    const TShare fShare;
    TTablePool fPool;
    std::vector<std::unique_ptr<TReader>> fReaders;
    std::map<size_t, TTold> fTold;
    TFleetCounts fCounts;
    size_t fTurn = 0;  // the file that is being stored
    TReader* fReader = nullptr;
    bool fHasBegun = false;
};

std::string CountText(size_t count, const char* one, const char* several) {
    return std::to_string(count) + (count == 1 ? one : several);
}

}  // namespace

TFleetCounts ExportFiles(const std::vector<TSource>& files, const TFleetOptions& options, IRunSink& sink) {
    return files.empty() ? TFleetCounts() : TFleet(files, options, sink).Store();
}

std::string TextOf(const TFleetCounts& counts) {
    std::vector<std::string> texts{CountText(counts.stored, " run stored", " runs stored")};
    if (counts.alreadyStored > 0) texts.push_back(std::to_string(counts.alreadyStored) + " already there");
    if (counts.older > 0) texts.push_back(std::to_string(counts.older) + " older than the stored one");
    if (counts.unreadable > 0) texts.push_back(std::to_string(counts.unreadable) + " unreadable");
    return CountText(counts.files, " file: ", " files: ") + Join(texts);
}
