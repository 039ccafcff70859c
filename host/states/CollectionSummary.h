#ifndef KYR_HOST_STATES_COLLECTIONSUMMARY_H
#define KYR_HOST_STATES_COLLECTIONSUMMARY_H

#include "base/ExitStatus.h"

class TContainer;

/// Prints on standard error which plugins and classes of a collection are not complete, and why. Returns the exit
/// status that follows from the state of the collection; one without states, which another program wrote, counts as
/// complete.
EExit ReportIncomplete(const TContainer& container);
/// That status alone. Prints only that nothing was collected, if so.
EExit StatusOfCollection(const TContainer& container);

#endif
