#include "isolation/Landlock.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

// As the kernel has them: a C library of Debian 12 knows neither all of them nor the calls.
struct TRulesetAttributes {
    uint64_t files;
    uint64_t network;
    uint64_t scoped;
};

struct [[gnu::packed]] TPathRule {
    uint64_t allowed;
    int32_t parent;
};

constexpr unsigned kVersionFlag = 1;
constexpr int kPathRule = 1;

constexpr uint64_t kExecute = 1 << 0;
constexpr uint64_t kWriteFile = 1 << 1;
constexpr uint64_t kReadFile = 1 << 2;
constexpr uint64_t kReadFolder = 1 << 3;
constexpr uint64_t kDeviceCommands = 1 << 15;

// What a version added, and what it is not asked for if that was granted.
struct TRights {
    int version;
    TNeeds unlessGranted;
    uint64_t TRulesetAttributes::*kind;
    uint64_t bits;
};

constexpr TRights kRights[] = {
    {1, 0, &TRulesetAttributes::files, 0x1fff},   // reading, writing, executing, making and removing of every kind
    {2, 0, &TRulesetAttributes::files, 1 << 13},  // moving to another folder
    {TLandlock::kLimitsTruncating, 0, &TRulesetAttributes::files, 1 << 14},
    {4, eNeedsNetwork, &TRulesetAttributes::network, 3},  // TCP: taking a port, connecting
    {5, eNeedsRawIo, &TRulesetAttributes::files, kDeviceCommands},
    {TLandlock::kLimitsSignals, 0, &TRulesetAttributes::scoped, 3},  // abstract sockets, signals
};

TRulesetAttributes AttributesFor(int version, TNeeds granted) {
    TRulesetAttributes attributes{};
    for (const TRights& rights : kRights)
        if (rights.version <= version && (rights.unlessGranted & granted) == 0) attributes.*rights.kind |= rights.bits;
    return attributes;
}

int AskVersion() { return static_cast<int>(syscall(SYS_landlock_create_ruleset, nullptr, 0, kVersionFlag)); }

// Lowers the version until the kernel takes its rights: some distributions give a version without all that is in it.
int CreateRuleset(int& version, TNeeds granted) {
    for (; version > 0; --version) {
        const TRulesetAttributes attributes = AttributesFor(version, granted);
        const long ruleset = syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0);
        if (ruleset >= 0) return static_cast<int>(ruleset);
    }
    return -1;
}

bool Allow(int ruleset, const char* path, uint64_t rights) {
    const TDescriptor parent(open(path, O_PATH | O_CLOEXEC));
    const TPathRule rule{rights, parent.Number()};
    return syscall(SYS_landlock_add_rule, ruleset, kPathRule, &rule, 0) == 0;
}

// Opening a device can do something by itself: what was a terminal's becomes this process's, and is hung up for all
// when it ends. These do nothing. Shared memory is in files.
constexpr const char* kHarmless[] = {"/dev/zero", "/dev/full", "/dev/random", "/dev/urandom", "/dev/shm"};

// All folders in the root but that of devices: a rule for the root itself would hold for them too.
bool AllowFolders(int ruleset, uint64_t rights) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/", error)) {
        const std::string path = entry.path().string();
        if (path != "/dev" && !Allow(ruleset, path.c_str(), rights))
            Allow(ruleset, path.c_str(), rights & ~kReadFolder);
    }
    for (const char* path : kHarmless)
        if (!Allow(ruleset, path, rights)) Allow(ruleset, path, kReadFile);
    return !error && Allow(ruleset, "/", kReadFolder);
}

// Where there is no /dev/null, nobody writes to it.
bool AllowReading(int ruleset, TNeeds granted) {
    if (ruleset < 0) return false;
    const uint64_t rights = kReadFile | kReadFolder | ((granted & eNeedsExec) != 0 ? kExecute : 0);
    const bool hasDevices = (granted & eNeedsRawIo) != 0;
    Allow(ruleset, "/dev/null", kReadFile | kWriteFile);
    return hasDevices ? Allow(ruleset, "/", rights) : AllowFolders(ruleset, rights);
}

}  // namespace

TLandlock::TLandlock(TNeeds granted)
    : fVersion(AskVersion()),
      fRuleset(CreateRuleset(fVersion, granted)),
      fError(AllowReading(fRuleset.Number(), granted) ? 0 : errno) {
    if (fError != 0) fVersion = 0;
}

int TLandlock::Restrict() const {
    if (fError != 0) return fError;
    return syscall(SYS_landlock_restrict_self, fRuleset.Number(), 0) == 0 ? 0 : errno;
}
