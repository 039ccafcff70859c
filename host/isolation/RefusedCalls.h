#ifndef KYR_HOST_ISOLATION_REFUSEDCALLS_H
#define KYR_HOST_ISOLATION_REFUSEDCALLS_H

#include <seccomp.h>

#include <cerrno>
#include <vector>

#include "model/Needs.h"

/// A system call that a plugin's process is refused.
struct TRefusedCall {
    int number;
    TNeeds unlessGranted = 0;             ///< it is let pass if one of these was granted
    std::vector<scmp_arg_cmp> when = {};  ///< for which arguments: all of these comparisons hold
    int error = EPERM;
    int unlessLandlock = 0;  ///< it is let pass from this version of Landlock on; 0: from none
    TNeeds ifGranted = 0;    ///< it is refused only if one of these was granted; 0: whatever was
};

/// Stands for the process itself in comparisons. No process has such a number.
constexpr unsigned kOwnProcess = 0x7ffffff1;

const std::vector<TRefusedCall>& RefusedCalls();

#endif
