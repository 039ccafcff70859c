#ifndef KYR_HOST_STATES_MISSINGSOURCES_H
#define KYR_HOST_STATES_MISSINGSOURCES_H

#include <map>
#include <string>
#include <vector>

#include "model/Reason.h"

class TContainer;

/// The sources that plugins found missing, by the names of the classes that are found by them.
using TMissingSources = std::map<std::string, std::vector<TReason>>;

/// The instances of MOLTA_MissingSource that plugins reported. They are removed from the container: from then on the
/// states of the classes tell of them.
TMissingSources TakeMissingSources(const TContainer& container);

#endif
