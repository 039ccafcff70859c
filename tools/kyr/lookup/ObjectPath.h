#ifndef OBJECTPATH_H
#define OBJECTPATH_H

#include <string>

class TCIMInstance;
class TContainer;

/// The instance that the path names: Class.Key="value",Other="value". The class may be a superclass; names go in any
/// case, keys in any order, values with or without quotes. Keys may be left out where the rest is enough. Raises
/// TCommandError with eExitUsage that tells what there is instead.
TCIMInstance& GetInstanceNamed(const TContainer& container, const std::string& path);

#endif
