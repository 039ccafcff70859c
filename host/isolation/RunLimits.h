#ifndef KYR_HOST_ISOLATION_RUNLIMITS_H
#define KYR_HOST_ISOLATION_RUNLIMITS_H

#include "base/TimePoint.h"

/// How long plugins may take.
struct TRunLimits {
    double timeout = 30;  ///< seconds for each plugin
    double deadline = 0;  ///< seconds for all of them together; 0: none
    TTimePoint start = TClock::now();

    TTimePoint Latest() const { return deadline > 0 ? After(start, deadline) : TTimePoint::max(); }
};

#endif
