#include "isolation/Sandbox.h"

#include <sys/mman.h>
#include <sys/prctl.h>

#include <cerrno>
#include <cstring>
#include <new>
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

// "landlock 7", or "no landlock: ENOSYS"
std::string TextFor(const TSandboxResult& result, int layer) {
    const std::string name = kLayerNames[layer];
    if (const int error = result.errors[layer]) return "no " + name + ": " + strerrorname_np(error);
    return layer == TSandboxResult::eLandlock ? name + " " + std::to_string(result.landlockVersion) : name;
}

int RefuseNewPrivileges() { return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 ? 0 : errno; }

}  // namespace

TSharedSandboxResult::TSharedSandboxResult() : fResult(MapShared()) {}
TSharedSandboxResult::~TSharedSandboxResult() { Unmap(); }
void TSharedSandboxResult::Unmap() const { munmap(fResult, sizeof *fResult); }
void TSharedSandboxResult::HideFromChildren() const { madvise(fResult, sizeof *fResult, MADV_DONTFORK); }

struct TSandbox::TLayers {
    explicit TLayers(TNeeds granted) : landlock(granted), filter(granted, landlock.Version()) {}

    const TLandlock landlock;
    const TSystemCallFilter filter;
};

TSandbox::TSandbox(ESandbox mode) : fMode(mode), fDumpable(prctl(PR_GET_DUMPABLE)) {
    if (IsOn()) prctl(PR_SET_DUMPABLE, 0);
}

TSandbox::~TSandbox() { RestoreDumpable(); }

bool TSandbox::IsOn() const { return fMode != ESandbox::eOff && !kIsInstrumented; }

void TSandbox::Prepare(TNeeds granted) {
    std::unique_ptr<TLayers>& layers = fLayers[granted];
    if (IsOn() && !layers) layers = std::make_unique<TLayers>(granted);
}

void TSandbox::RestoreDumpable() const {
    if (IsOn()) prctl(PR_SET_DUMPABLE, fDumpable);
}

void TSandbox::Enter(TNeeds granted, TSandboxResult& result) const {
    if (IsOn()) {
        const TLayers& layers = *fLayers.at(granted);
        const int error = RefuseNewPrivileges();
        result.landlockVersion = layers.landlock.Version();
        result.errors[TSandboxResult::eLandlock] = layers.landlock.Restrict();
        result.errors[TSandboxResult::eCapabilities] = error != 0 ? error : ReduceCapabilities(granted);
        result.errors[TSandboxResult::eFilter] = layers.filter.Load();
    }
    result.isEntered = true;
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
