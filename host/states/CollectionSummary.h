#ifndef KYR_HOST_STATES_COLLECTIONSUMMARY_H
#define KYR_HOST_STATES_COLLECTIONSUMMARY_H

#include <string>
#include <vector>

#include "base/ExitStatus.h"

class TContainer;

/// Prints on standard error which plugins and classes of a collection are not complete, and why. Returns the exit
/// status that follows from the state of the collection; one without states, which another program wrote, counts as
/// complete.
EExit ReportIncomplete(const TContainer& container);
/// Prints on standard error which of the classes are optional and were left out. That is no part of what is missing,
/// and of interest only to who names them.
void ReportLeftOut(const TContainer& container, const std::vector<std::string>& classNames);
/// That status alone. Prints only that nothing was collected, if so.
EExit StatusOfCollection(const TContainer& container);

#endif
