#include "SocketHolders.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <thread>
#include <utility>

namespace {

constexpr std::string_view kSocket = "socket:[";
constexpr size_t kMostHolders = 1000;  // of a socket
constexpr size_t kProcessesOfThread = 250;
constexpr unsigned kMostThreads = 8;

using TFolder = std::unique_ptr<DIR, int (*)(DIR*)>;

// The number of the socket that a descriptor is, by the target of its link; 0 for other files.
uint64_t InodeOf(std::string_view target) {
    if (target.substr(0, kSocket.size()) != kSocket || target.back() != ']') return 0;
    return ParseNumber<uint64_t>(target.substr(kSocket.size(), target.size() - kSocket.size() - 1)).value_or(0);
}

// A process that has ended meanwhile refuses nothing. In place of a folder that may not be read, a recorded machine has
// a file.
bool IsRefusal(int error) { return error == EACCES || error == EPERM || error == ENOTDIR; }

// The control group of the hierarchy that has no controllers of the first version: the only one, or systemd's.
std::string ControlGroupOf(std::string_view text) {
    std::string group;
    for (const std::string_view line : Lines(text)) {
        const size_t path = line.find(":/");
        if (path == std::string_view::npos) continue;
        const std::string_view hierarchy = line.substr(0, path);
        const bool isUnified = hierarchy == "0:";
        if ((isUnified && group.empty()) || EndsWith(hierarchy, ":name=systemd")) group = line.substr(path + 1);
    }
    return group;
}

// The kernel marks an executable that was replaced or removed since it was started.
std::string WithoutMark(std::string path) {
    constexpr std::string_view kMark = " (deleted)";
    if (EndsWith(path, kMark)) path.resize(path.size() - kMark.size());
    return path;
}

/// What one thread finds.
struct TFindings {
    std::vector<std::pair<uint32_t, uint64_t>> holders;  // each process with the number of a socket
    bool isRefused = false;
};

using TWanted = std::unordered_map<uint64_t, std::vector<uint32_t>>;

void Search(const TSystemRoot& root, uint32_t process, const TWanted& wanted, TFindings& findings) {
    const std::string path = root.Locate("/proc/" + std::to_string(process) + "/fd");
    const TFolder folder(opendir(path.c_str()), closedir);
    findings.isRefused |= !folder && IsRefusal(errno);
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] == '.') continue;
        char target[64];
        const ssize_t length = readlinkat(dirfd(folder.get()), entry->d_name, target, sizeof target);
        findings.isRefused |= length < 0 && IsRefusal(errno);
        if (length < 0 && IsRefusal(errno)) return;
        const uint64_t inode = InodeOf({target, static_cast<size_t>(std::max<ssize_t>(length, 0))});
        if (wanted.count(inode) != 0) findings.holders.emplace_back(process, inode);
    }
}

// One thread for a small machine. With thousands of processes the kernel takes seconds to tell of all that they have
// open.
TFindings SearchAll(const TSystemRoot& root, const std::vector<uint32_t>& processes, const TWanted& wanted) {
    const size_t count = std::clamp<size_t>(processes.size() / kProcessesOfThread, 1,
                                            std::clamp(std::thread::hardware_concurrency(), 1u, kMostThreads));
    std::vector<TFindings> findings(count);
    const auto search = [&](size_t first) {
        for (size_t i = first; i < processes.size(); i += count) Search(root, processes[i], wanted, findings[first]);
    };
    std::vector<std::thread> threads;
    for (size_t i = 1; i < count; ++i) threads.emplace_back(search, i);
    search(0);
    for (std::thread& thread : threads) thread.join();
    TFindings all;
    for (const TFindings& some : findings) {
        all.isRefused |= some.isRefused;
        all.holders.insert(all.holders.end(), some.holders.begin(), some.holders.end());
    }
    std::sort(all.holders.begin(), all.holders.end());
    return all;
}

std::vector<uint32_t> ProcessesIn(const std::vector<std::string>& names) {
    std::vector<uint32_t> processes;
    for (const std::string& name : names)
        if (const auto process = ParseNumber<uint32_t>(name)) processes.push_back(*process);
    return processes;
}

// In a container some processes are closed to the superuser too, and nobody inside of it can change that.
EAbsence AbsenceOfHolders(const TSystemRoot& root) {
    return root.IsRunningMachine() && geteuid() == 0 ? EAbsence::eNotReported : EAbsence::eNoPermission;
}

}  // namespace

TSocketHolders::TSocketHolders(const TSystemRoot& root, const std::vector<uint64_t>& inodes)
    : fListing(TListing::Of(true, kProcessFiles)) {
    for (const uint64_t inode : inodes)
        if (inode != 0) fHolders[inode];
    if (fHolders.empty()) return;
    const TFact<std::vector<std::string>> names = root.List("/proc");
    const TFindings found = SearchAll(root, ProcessesIn(names.ValueOr({})), fHolders);
    for (const auto& [process, inode] : found.holders) AddHolder(inode, process);
    for (auto& [number, process] : fProcesses) Describe(root, process);
    // Where other users' processes are hidden, nobody sees the first one.
    const bool isHidden = root.IsRunningMachine() && !root.Exists("/proc/1");
    if (found.isRefused || isHidden) fListing = TListing::Missing(AbsenceOfHolders(root), kProcessFiles);
    if (!names) fListing = TListing::Missing(names.absence, kProcessFiles);
}

void TSocketHolders::AddHolder(uint64_t inode, uint32_t process) {
    std::vector<uint32_t>& holders = fHolders.at(inode);
    if (holders.size() >= kMostHolders || (!holders.empty() && holders.back() == process)) return;
    holders.push_back(process);
    fProcesses[process].id = process;
}

void TSocketHolders::Describe(const TSystemRoot& root, TProcess& process) {
    const std::string folder = "/proc/" + std::to_string(process.id);
    process.name = root.ReadText(folder + "/comm").ValueOr("");
    process.executable = WithoutMark(root.ReadLink(folder + "/exe").ValueOr(""));
    process.controlGroup = ControlGroupOf(root.ReadFile(folder + "/cgroup").ValueOr(""));
}

std::vector<const TProcess*> TSocketHolders::Of(uint64_t inode) const {
    std::vector<const TProcess*> processes;
    const auto found = fHolders.find(inode);
    if (found == fHolders.end()) return processes;
    for (const uint32_t id : found->second) processes.push_back(&fProcesses.at(id));
    return processes;
}
