#ifndef KYR_HOST_ISOLATION_CAPABILITIES_H
#define KYR_HOST_ISOLATION_CAPABILITIES_H

#include "model/Needs.h"

/// Gives up the capabilities of this process for good, but for CAP_DAC_READ_SEARCH, with which the superuser reads
/// every file, and those that the needs granted ask for; it gains none. Returns 0 or an errno.
int ReduceCapabilities(TNeeds granted);

#endif
