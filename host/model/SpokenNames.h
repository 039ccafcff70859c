#ifndef KYR_HOST_MODEL_SPOKENNAMES_H
#define KYR_HOST_MODEL_SPOKENNAMES_H

#include <string>
#include <vector>

class TCIMClass;
class TCIMInstance;
class TContainer;

/// What people call a class: some classes, or those of their instances of which a property has a value.
struct TSpokenClass {
    std::vector<TCIMClass*> classes;  ///< their subclasses are meant too; empty: nothing is called so
    std::string property;             ///< empty: all instances
    std::string value;
};

/// The classes that have the name, or for which it is one of the usual words, such as "nic". Without regard to schema
/// prefix, case, hyphens, underscores and the ending of the plural: "disk-drives" is MOLTA_DiskDrive. Of a class and
/// its subclasses of one name, the uppermost is given. Raises TCommandError if classes that have nothing to do with
/// each other have the name.
TSpokenClass FindSpokenClass(const TContainer& schema, const std::string& name);

/// The one class that the name means; null if there is none. If a spoken name means an abstract class with one class
/// below it that can have instances, that one. Raises TCommandError if it means several classes.
TCIMClass* FindOneSpokenClass(const TContainer& schema, const std::string& name);

/// The instances of which a name, a caption, a key or, with or without "/dev/", the device file is the given one. If
/// several properties of different instances have it, those of the property that comes first in this order count:
/// Name, DeviceID, ElementName, Caption, other keys, the first of the class's Columns, SerialNumber.
std::vector<TCIMInstance*> FindSpokenInstances(const TContainer& container, const std::string& name);

/// The one instance of that name; null if there is none. Raises TCommandError with the candidates if there are more.
TCIMInstance* FindSpokenInstance(const TContainer& container, const std::string& name);

/// The names of all classes, with the prefix of their schema if the name has one, otherwise as people call them: for
/// comparison with a misspelt name.
std::vector<std::string> NamesLike(const TContainer& schema, const std::string& name);

/// Ends with a TCommandError that nothing has the name, and which names are like it.
[[noreturn]] void RefuseUnknownName(const TContainer& container, const std::string& name);

/// The name of a class as people say it, without the prefix of its schema: "DiskDrive".
std::string SpokenNameOf(const std::string& className);

/// The paths of the first of the instances, with " or " between them.
std::string ListOfPaths(const std::vector<TCIMInstance*>& instances);

#endif
