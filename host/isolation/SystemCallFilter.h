#ifndef KYR_HOST_ISOLATION_SYSTEMCALLFILTER_H
#define KYR_HOST_ISOLATION_SYSTEMCALLFILTER_H

#include <linux/filter.h>

#include <vector>

#include "model/Needs.h"

/// A seccomp filter that refuses what a plugin that only reads has no use for: starting programs, sockets to others,
/// mounting, looking into other processes, changing the system. The refused call fails as for want of permission. What
/// the kernel's Landlock does not limit in its version, such as signals, is refused here. The host makes the filter
/// once; each plugin's process applies it to itself.
class TSystemCallFilter {
public:
    TSystemCallFilter(TNeeds granted, int landlockVersion);

    /// Applies the filter to this process, for good, which must have no new privileges. Returns 0 or an errno.
    int Load() const;

private:
    int Make(TNeeds granted, int landlockVersion);

    std::vector<sock_filter> fProgram;
    int fError;  // why there is no program
};

#endif
