#include "isolation/Sandbox.h"

#include <sys/mman.h>
#include <sys/prctl.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <optional>
#include <system_error>

#include "base/Text.h"
#include "isolation/Capabilities.h"

namespace {

// The leak check of AddressSanitizer traces the process, and a count of coverage is written to files.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(KYR_COVERAGE)
constexpr bool kIsInstrumented = true;
#else
constexpr bool kIsInstrumented = false;
#endif

constexpr const char* kLayerNames[] = {"landlock", "seccomp", "capabilities"};

TSandboxResult* MapShared() {
    void* const memory =
        mmap(nullptr, sizeof(TSandboxResult), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "no memory for its sandbox");
    return new (memory) TSandboxResult;
}

// "landlock 7", "no landlock: ENOSYS", or "no landlock: processes" if it was left out for that need
std::string TextFor(const TSandboxResult& result, int layer) {
    const std::string name = kLayerNames[layer];
    if (const int error = result.errors[layer]) return "no " + name + ": " + strerrorname_np(error);
    if (layer != TSandboxResult::eLandlock) return name;
    return result.hasLandlock ? name + " " + std::to_string(result.landlockVersion) : "no " + name + ": processes";
}

int RefuseNewPrivileges() { return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 ? 0 : errno; }

}  // namespace

TSharedSandboxResult::TSharedSandboxResult() : fResult(MapShared()) {}
TSharedSandboxResult::~TSharedSandboxResult() { Unmap(); }
void TSharedSandboxResult::Unmap() const { munmap(fResult, sizeof *fResult); }
void TSharedSandboxResult::HideFromChildren() const { madvise(fResult, sizeof *fResult, MADV_DONTFORK); }

// Landlock keeps a process from looking into any that is not below it, whatever its capabilities are. So there is none
// for the need of that, and the filter refuses what it would have.
struct TSandbox::TLayers {
    explicit TLayers(TNeeds granted)
        : landlock((granted & eNeedsProcesses) == 0 ? std::optional<TLandlock>(granted) : std::nullopt),
          filter(granted, landlock ? landlock->Version() : 0) {}

    const std::optional<TLandlock> landlock;
    const TSystemCallFilter filter;
};

TSandbox::TSandbox(ESandbox mode) : fMode(mode), fDumpable(prctl(PR_GET_DUMPABLE)) {
    if (IsOn()) prctl(PR_SET_DUMPABLE, 0);
}

TSandbox::~TSandbox() { RestoreDumpable(); }

bool TSandbox::IsOn() const { return fMode != ESandbox::eOff && !kIsInstrumented; }

void TSandbox::Prepare(TNeeds granted) {
    if (IsOn() && granted == 0 && !fLayers) fLayers = std::make_unique<TLayers>(granted);
}

void TSandbox::RestoreDumpable() const {
    if (IsOn()) prctl(PR_SET_DUMPABLE, fDumpable);
}

void TSandbox::Enter(TNeeds granted, TSandboxResult& result) const {
    if (IsOn()) {
        const int error = RefuseNewPrivileges();
        if ((granted & eNeedsProcesses) == 0 || !EnterWithoutLandlock(granted, result)) EnterWhole(granted, result);
        if (error != 0) result.errors[TSandboxResult::eCapabilities] = error;
    }
    result.isEntered = true;
}

// False if there is no filter to take the place of Landlock: the process then does without what it needs.
bool TSandbox::EnterWithoutLandlock(TNeeds& granted, TSandboxResult& result) const {
    if (TLayers(granted).filter.Load() != 0) {
        granted &= ~TNeeds{eNeedsProcesses};
        return false;
    }
    result.hasLandlock = false;
    result.errors[TSandboxResult::eCapabilities] = ReduceCapabilities(granted);
    return true;
}

void TSandbox::EnterWhole(TNeeds granted, TSandboxResult& result) const {
    const bool isPrepared = granted == 0 && fLayers;
    const auto own = isPrepared ? nullptr : std::make_unique<const TLayers>(granted);
    const TLayers& layers = own ? *own : *fLayers;
    result.landlockVersion = layers.landlock->Version();
    result.errors[TSandboxResult::eLandlock] = layers.landlock->Restrict();
    result.errors[TSandboxResult::eCapabilities] = ReduceCapabilities(granted);
    result.errors[TSandboxResult::eFilter] = layers.filter.Load();
}

std::vector<std::string> TSandbox::Describe(const TSandboxResult& result) const {
    if (!result.isEntered) return {};
    if (fMode == ESandbox::eOff) return {"none: switched off"};
    if (kIsInstrumented) return {"none: not in an instrumented build"};
    return {TextFor(result, TSandboxResult::eLandlock), TextFor(result, TSandboxResult::eFilter),
            TextFor(result, TSandboxResult::eCapabilities)};
}

std::string TSandbox::Refusal(const TSandboxResult& result) const {
    if (fMode != ESandbox::eRequire || !result.isEntered) return "";
    if (kIsInstrumented) return Describe(result).front();
    std::vector<std::string> missing;
    for (int layer = 0; layer < TSandboxResult::kLayers; ++layer)
        if (result.errors[layer] != 0) missing.push_back(TextFor(result, layer));
    return Join(missing);
}
