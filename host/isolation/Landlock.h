#ifndef KYR_HOST_ISOLATION_LANDLOCK_H
#define KYR_HOST_ISOLATION_LANDLOCK_H

#include "base/Descriptor.h"
#include "model/Needs.h"

/// A ruleset of the kernel's Landlock: all files may be read, only /dev/null written, and no program started. As far as
/// the kernel's version of Landlock knows of it, there is no TCP either, no commands to devices, and no signals and no
/// abstract sockets to processes outside. The host makes it once; each plugin's process applies it to itself.
class TLandlock {
public:
    /// From which version on a plugin's process cannot cut files off by opening them, and not signal others.
    static constexpr int kLimitsTruncating = 3;
    static constexpr int kLimitsSignals = 6;

    /// What was granted is left out of the rules.
    explicit TLandlock(TNeeds granted);

    /// The version of the kernel's Landlock; 0 if there is none.
    int Version() const { return fVersion; }
    /// Applies the rules to this process, for good, which must have no new privileges. Returns 0 or an errno: ENOSYS,
    /// EOPNOTSUPP and EPERM mean that there is no Landlock, or that somebody keeps it from this process.
    int Restrict() const;

private:
    int fVersion;
    const TDescriptor fRuleset;
    const int fError;  // why there is no ruleset
};

#endif
