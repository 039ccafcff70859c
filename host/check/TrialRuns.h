#ifndef KYR_HOST_CHECK_TRIALRUNS_H
#define KYR_HOST_CHECK_TRIALRUNS_H

#include <string>
#include <vector>

#include "check/Check.h"

/// Collects from the plugins of the libraries in runs of kyr of their own in which each plugin has its sandbox,
/// and checks what they reported: rules R. Plugins of kyr's own folder take part, since superclasses and what
/// is referred to may be theirs.
void CheckRuns(const std::vector<std::string>& libraries, const TCheckContext& context, TFindings& findings);

#endif
