#ifndef KYR_HOST_STATES_COLLECTIONSUMMARY_H
#define KYR_HOST_STATES_COLLECTIONSUMMARY_H

#include "base/ExitStatus.h"

class TContainer;

/// Prints on standard error what of a collection is not complete, plugin by plugin, and gives the exit status that
/// follows. What does not say how complete it is counts as complete.
EExit ReportIncomplete(const TContainer& container);

#endif
