#ifndef KYR_HOST_MODEL_OBJECTPATH_H
#define KYR_HOST_MODEL_OBJECTPATH_H

#include <string>

class TCIMInstance;
class TContainer;

/// The instance that the path names: Class.Key="value",Other="value". The class may be a superclass; names go in any
/// case, keys in any order, values with or without quotes. Keys may be left out where the rest is enough. Raises
/// TCommandError with eExitUsage that tells what there is instead.
TCIMInstance& GetInstanceNamed(const TContainer& container, const std::string& path);

/// How far the keys of an object path name an instance.
enum EKeyMatch { eNoMatch, eSomeKeys, eAllKeys };

/// Compares the instance with the text behind the dot of an object path. Nothing is escaped in object paths, so that
/// one cannot tell where a value ends; but whether a text can be read as the keys of a given instance is decidable.
EKeyMatch MatchKeys(const std::string& text, const TCIMInstance& instance);

#endif
