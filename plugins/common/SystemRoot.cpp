#include "SystemRoot.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {

/// The size of a regular file; nothing for anything else.
std::optional<size_t> SizeOfRegular(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<size_t>(status.st_size);
}

bool IsFolder(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// Whether something else than the kernel's own file system is mounted over a folder of it. lxcfs, by which containers
// see their own share of /proc and /sys, is a FUSE file system.
bool IsCovered(const char* path) {
    struct statfs status;
    if (statfs(path, &status) != 0) return false;
    return status.f_type != SYSFS_MAGIC && status.f_type != PROC_SUPER_MAGIC && status.f_type != FUSE_SUPER_MAGIC;
}

constexpr size_t kPage = 4096;
constexpr size_t kLarge = 1 << 20;

// Returns 0 or an errno.
int ReadAll(int descriptor, size_t limit, bool isValue, std::string& content) {
    char buffer[16 * kPage];
    while (content.size() < limit) {
        const ssize_t count = read(descriptor, buffer, std::min(sizeof buffer, limit - content.size()));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        content.append(buffer, static_cast<size_t>(count));
        if (count == 0 || (isValue && size_t(count) < kPage)) return 0;
    }
    return 0;
}

}  // namespace

void TDescriptor::Reset(int number) {
    if (fNumber >= 0) close(fNumber);
    fNumber = number;
}

TSystemRoot TSystemRoot::FromEnvironment() {
    const char* const root = std::getenv("KYR_SYSTEM_ROOT");
    if (root == nullptr || *root == '\0') return TSystemRoot("");
    if (!IsFolder(root)) throw std::runtime_error(std::string("KYR_SYSTEM_ROOT names no folder: ") + root);
    return TSystemRoot(root);
}

int TSystemRoot::Open(const std::string& path) const {
    const size_t name = path.rfind('/') + 1;
    if (fFolder.Number() < 0 || path.compare(0, name, fFolderPath) != 0) {
        fFolderPath = path.substr(0, name);
        fFolder.Reset(open(Locate(fFolderPath).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    if (fFolder.Number() < 0) return -1;
    return openat(fFolder.Number(), path.c_str() + name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

TFact<std::string> TSystemRoot::Read(const std::string& path, size_t limit, bool isValue) const {
    const TDescriptor file(Open(path));
    if (file.Number() < 0) return TFact<std::string>::Missing(AbsenceOf(errno), path);
    const std::optional<size_t> size = SizeOfRegular(file.Number());
    if (!size) return TFact<std::string>::Missing(EAbsence::eNotSupported, path);
    std::string content;
    // Growing a large file piece by piece copies it several times. Small ones are mostly those of the kernel, whose
    // size says nothing.
    if (*size >= kLarge) content.reserve(std::min(*size, limit) + 1);
    const int error = ReadAll(file.Number(), limit, isValue, content);
    if (error != 0) return TFact<std::string>::Missing(AbsenceOf(error), path);
    return TFact<std::string>::Of(std::move(content), path);
}

TFact<std::string> TSystemRoot::ReadFile(const std::string& path, size_t limit) const {
    return Read(path, limit, false);
}

TFact<std::string> TSystemRoot::ReadText(const std::string& path) const {
    TFact<std::string> fact = Read(path, kReadLimit, true);
    if (!fact) return fact;
    fact.value = std::string(Trim(*fact));
    if (fact->empty()) fact.value.reset();
    return fact;
}

TFact<bool> TSystemRoot::ReadFlag(const std::string& path) const {
    return ReadNumber<int>(path).Map([](int number) { return std::optional(number != 0); });
}

TFact<std::string> TSystemRoot::ReadLink(const std::string& path) const {
    char target[4096];
    const ssize_t length = readlink(Locate(path).c_str(), target, sizeof target);
    if (length < 0) return TFact<std::string>::Missing(AbsenceOf(errno == EINVAL ? ENOENT : errno), path);
    return TFact<std::string>::Of(std::string(target, static_cast<size_t>(length)), path);
}

TFact<std::string> TSystemRoot::ReadLinkName(const std::string& path) const {
    TFact<std::string> fact = ReadLink(path);
    if (fact) fact.value->erase(0, fact->rfind('/') + 1);
    return fact;
}

TFact<std::vector<std::string>> TSystemRoot::List(const std::string& path) const {
    using TNames = std::vector<std::string>;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(Locate(path).c_str()), closedir);
    if (!folder) return TFact<TNames>::Missing(AbsenceOf(errno), path);
    TNames names;
    while (const dirent* const entry = readdir(folder.get()))
        if (const std::string_view name = entry->d_name; name != "." && name != "..") names.emplace_back(name);
    std::sort(names.begin(), names.end(), NaturalLess);
    return TFact<TNames>::Of(std::move(names), path);
}

TFact<std::vector<std::string>> TSystemRoot::ListKind(const std::string& path, const std::string& kind) const {
    TFact<std::vector<std::string>> names = List(path);
    if (!names && names.absence == EAbsence::eNotPresent && !kind.empty() && LacksKind(kind)) names.value.emplace();
    if (names && names->empty() && IsRunningMachine() && IsCovered(path.c_str())) names.value.reset();
    return names;
}

TListing TSystemRoot::CheckEntries(const std::string& path, const TFact<std::vector<std::string>>& names) const {
    for (const std::string& name : names.ValueOr({})) {
        const std::string entry = path + '/' + name;
        if (access(Locate(entry).c_str(), F_OK) == 0) continue;
        const EAbsence absence = AbsenceOf(errno);
        const std::filesystem::path target = std::filesystem::path(path) / ReadLink(entry).ValueOr(name);
        return TListing::Missing(absence, target.lexically_normal().string());
    }
    return ListingOf(names);
}

bool TSystemRoot::LacksKind(const std::string& kind) const {
    return !Exists(kind) && errno == ENOENT && !Names(kind.substr(0, kind.rfind('/'))).empty();
}

std::string TSystemRoot::FindObstacle(const std::string& path) const {
    for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        const TFact<std::vector<std::string>> names = List(folder);
        const bool isBarred = !names && access((Locate(folder) + "/.").c_str(), F_OK) != 0;
        if (isBarred || (names && names->empty())) return folder;
    }
    return path;
}

std::vector<std::string> TSystemRoot::Names(const std::string& path) const { return List(path).ValueOr({}); }

bool TSystemRoot::Exists(const std::string& path) const { return access(Locate(path).c_str(), F_OK) == 0; }
