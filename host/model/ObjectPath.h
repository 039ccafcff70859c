#ifndef KYR_HOST_MODEL_OBJECTPATH_H
#define KYR_HOST_MODEL_OBJECTPATH_H

#include <string>

class TCIMInstance;
class TContainer;

/// The instance that an object path names: Class.Key="value",Other="value", or a spoken name (SpokenNames.h). The class
/// may be a superclass of its own. Names are compared without regard to case, keys may stand in any order, values with
/// or without quotes. Keys may be left out as long as only one instance matches. Raises TCommandError with eExitUsage
/// and a text that says which instances or keys there are instead.
TCIMInstance& GetInstanceNamed(const TContainer& container, const std::string& path);

#endif
