#ifndef KYR_HOST_STATES_MISSINGSOURCES_H
#define KYR_HOST_STATES_MISSINGSOURCES_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "model/Reason.h"

class TCIMInstance;
class TContainer;

/// The sources that plugins found missing, by the names of the classes that are found by them.
using TMissingSources = std::map<std::string, std::vector<TReason>>;

/// The class whose instances plugins report.
constexpr const char* kMissingSourceClass = "MOLTA_MissingSource";

/// The sources that plugins reported. The instances are removed from the container: from then on the states of the
/// classes tell of them. One that its plugin may not report, as it is about a class of another, is dropped.
TMissingSources TakeMissingSources(
    const TContainer& container,
    const std::function<bool(const TCIMInstance& instance, const std::string& className)>& mayReport);

#endif
