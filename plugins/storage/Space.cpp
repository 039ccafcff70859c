#include "Space.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>

#include "FileSystemTypes.h"
#include "Mounts.h"

namespace {

constexpr const char* kRecord = "/.kyr/statvfs";
constexpr int kDeepestMount = 64;

class TPathDescriptor {
public:
    // O_PATH triggers no automount and does not call the file system.
    explicit TPathDescriptor(const std::string& path) : fNumber(open(path.c_str(), O_PATH | O_CLOEXEC | O_NOFOLLOW)) {}
    TPathDescriptor(const TPathDescriptor&) = delete;
    TPathDescriptor& operator=(const TPathDescriptor&) = delete;
    ~TPathDescriptor() {
        if (fNumber >= 0) close(fNumber);
    }

    // False if the path leads to another mount, because one of its folders is mounted over or was replaced.
    bool IsOf(const TMount& mount) const {
        const std::string info = TSystemRoot("").ReadText("/proc/self/fdinfo/" + std::to_string(fNumber)).ValueOr("");
        for (const std::string_view line : Lines(info))
            if (line.substr(0, 7) == "mnt_id:") return Trim(line.substr(7)) == mount.id;
        return false;
    }

    const int fNumber;
};

std::string SourceOf(const TMount& mount) { return "statvfs of " + mount.point; }

TFact<TSpace> Refuse(const TMount& mount, const char* reason) {
    return TFact<TSpace>::Missing(EAbsence::eNotSupported, mount.point + " (not asked: " + reason + ")");
}

bool MayBlock(const TMount& mount) { return MayBlock(mount.type, StorageKindOf(mount.type, IsOnDevice(mount))); }

std::optional<TSpace> MakeSpace(uint64_t unit, uint64_t blocks, uint64_t free, uint64_t available) {
    TSpace space;
    if (free > blocks || __builtin_mul_overflow(unit, blocks, &space.size)) return std::nullopt;
    if (__builtin_mul_overflow(unit, available, &space.available)) return std::nullopt;
    space.used = (blocks - free) * unit;
    return space;
}

TFact<TSpace> AskKernel(const TMount& mount) {
    const TPathDescriptor descriptor(mount.point);
    struct statvfs status;
    if (descriptor.fNumber < 0) return TFact<TSpace>::Missing(AbsenceOf(errno), SourceOf(mount));
    if (!descriptor.IsOf(mount)) return Refuse(mount, "another mount stands over it");
    if (fstatvfs(descriptor.fNumber, &status) != 0) return TFact<TSpace>::Missing(AbsenceOf(errno), SourceOf(mount));
    std::optional<TSpace> space = MakeSpace(status.f_frsize, status.f_blocks, status.f_bfree, status.f_bavail);
    if (!space) return TFact<TSpace>::Missing(EAbsence::eNotSupported, SourceOf(mount));
    space->inodes = status.f_files;
    space->freeInodes = status.f_ffree;
    return TFact<TSpace>::Of(*space, SourceOf(mount));
}

std::optional<TSpace> ParseSpace(std::string_view text) {
    std::vector<uint64_t> numbers;
    for (const std::string_view word : Split(text, ' ')) numbers.push_back(ParseNumber<uint64_t>(word).value_or(0));
    if (numbers.size() != 7) return std::nullopt;
    std::optional<TSpace> space = MakeSpace(numbers[1], numbers[2], numbers[3], numbers[4]);
    if (!space) return space;
    space->inodes = numbers[5];
    space->freeInodes = numbers[6];
    return space;
}

}  // namespace

TSpaceReader::TSpaceReader(const TSystemRoot& root, const std::vector<TMount>& mounts) : fRoot(root) {
    for (const TMount& mount : mounts) fMounts.emplace(mount.id, &mount);
    if (!root.IsRunningMachine()) fRecorded = ParseRecordedSpace(root.ReadFile(kRecord).ValueOr(""));
}

TFact<TSpace> TSpaceReader::Ask(const TMount& mount) const {
    if (const char* const obstacle = FindObstacle(mount)) return Refuse(mount, obstacle);
    return fRoot.IsRunningMachine() ? AskKernel(mount) : FindRecorded(mount);
}

const char* TSpaceReader::FindObstacle(const TMount& mount) const {
    if (mount.covered) return "another mount stands over it";
    if (MayBlock(mount)) return "it may wait for a server or a program";
    // statvfs of an overlay without an upper layer is answered by its first lower layer, which may be any file system.
    if (mount.type == "overlay" && mount.options.find(",upperdir=") == std::string::npos)
        return "it passes the question on";
    auto above = fMounts.find(mount.parentId);
    for (int depth = 0; above != fMounts.end(); above = fMounts.find(above->second->parentId)) {
        if (MayBlock(*above->second)) return "the way to it may wait for a server or a program";
        if (above->second->parentId == above->first) return nullptr;
        if (++depth == kDeepestMount) return "it is mounted too deep";
    }
    return nullptr;
}

TFact<TSpace> TSpaceReader::FindRecorded(const TMount& mount) const {
    const auto found = fRecorded.find(mount.point);
    if (found == fRecorded.end()) return TFact<TSpace>::Missing(EAbsence::eNotPresent, kRecord);
    return TFact<TSpace>::Of(found->second, SourceOf(mount));
}

std::unordered_map<std::string, TSpace> ParseRecordedSpace(std::string_view text) {
    std::unordered_map<std::string, TSpace> recorded;
    for (const std::string_view line : Lines(text)) {
        const size_t tab = std::min(line.find('\t'), line.size());
        if (const std::optional<TSpace> space = ParseSpace(line.substr(tab)))
            recorded.emplace(UnescapeOctal(line.substr(0, tab)), *space);
    }
    return recorded;
}
