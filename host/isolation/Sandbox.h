#ifndef KYR_HOST_ISOLATION_SANDBOX_H
#define KYR_HOST_ISOLATION_SANDBOX_H

#include <memory>
#include <string>
#include <vector>

#include "isolation/Landlock.h"
#include "isolation/SystemCallFilter.h"

/// Whether plugins' processes get a sandbox.
enum class ESandbox {
    eAuto,     ///< what there is of it on this machine
    eRequire,  ///< all of it, or the plugin is not loaded
    eOff
};

/// What became of the sandbox of one process. It is in memory that the process shares with the host until the plugin is
/// loaded, and not after, so that a plugin cannot change it.
struct TSandboxResult {
    enum ELayer { eLandlock, eFilter, eCapabilities, kLayers };

    bool isEntered = false;
    bool hasLandlock = true;  ///< false: the process needs to do without it
    int landlockVersion = 0;
    int errors[kLayers] = {};  ///< an errno for each layer that does not hold
};

/// The same as shared memory. Raises std::system_error.
class TSharedSandboxResult {
public:
    TSharedSandboxResult();
    ~TSharedSandboxResult();
    TSharedSandboxResult(const TSharedSandboxResult&) = delete;
    TSharedSandboxResult& operator=(const TSharedSandboxResult&) = delete;

    TSandboxResult& operator*() const { return *fResult; }
    /// In the process itself: takes the memory out of it.
    void Unmap() const;
    /// Processes that are forked later do not have it.
    void HideFromChildren() const;

private:
    TSandboxResult* const fResult;
};

/// The sandbox of plugins' processes: Landlock, a filter of system calls, and few capabilities. While there is one,
/// this process is not dumpable, so that plugins cannot reach its memory and descriptors by /proc.
class TSandbox {
public:
    explicit TSandbox(ESandbox mode);
    ~TSandbox();
    TSandbox(const TSandbox&) = delete;
    TSandbox& operator=(const TSandbox&) = delete;

    bool IsOn() const;
    /// Makes, in the host, what all processes share to which nothing was granted. Others make their own, while the host
    /// starts the next.
    void Prepare(TNeeds granted);
    /// In a plugin's process: makes it dumpable again, as the host was.
    void RestoreDumpable() const;
    /// In a plugin's process, for good: enters the sandbox, as far as the kernel has it.
    void Enter(TNeeds granted, TSandboxResult& result) const;
    /// The lines of the property Sandbox for a process with that result: what holds, or why not.
    std::vector<std::string> Describe(const TSandboxResult& result) const;
    /// What is missing in a process for which all was required; empty if it may go on.
    std::string Refusal(const TSandboxResult& result) const;

private:
    struct TLayers;

    bool EnterWithoutLandlock(TNeeds& granted, TSandboxResult& result) const;
    void EnterWhole(TNeeds granted, TSandboxResult& result) const;

    const ESandbox fMode;
    const int fDumpable;
    std::unique_ptr<const TLayers> fLayers;
};

/// The line of the property Sandbox for plugins that run in the process of the host.
constexpr const char* kNoSandboxInProcess = "none: in the process of the host";

#endif
