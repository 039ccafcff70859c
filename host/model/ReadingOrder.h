#ifndef KYR_HOST_MODEL_READINGORDER_H
#define KYR_HOST_MODEL_READINGORDER_H

#include <string>
#include <vector>

class TCIMClass;
class TCIMInstance;

// The order in which people read classes, properties and instances.

/// Ordinary classes before associations, and both by their qualifier Rank; those without one last, by name.
void SortForReading(std::vector<TCIMClass*>& classes);
/// The properties in the class's qualifier Columns, of those that it has.
std::vector<std::string> MainPropertiesOf(const TCIMClass& cls);
/// All properties: those in Columns first, or in a class without that the keys, and the others by name.
std::vector<std::string> PropertiesForReading(const TCIMClass& cls);
/// By their paths, as IsNaturallyLess says; those of some classes by the name that people know them by.
std::vector<TCIMInstance*> InNaturalOrder(const std::vector<TCIMInstance*>& instances);

/// What people call a class of which a machine has hundreds of instances that nobody asked for; null for other classes.
const char* FindNameOfMany(const TCIMClass& cls);

/// Whether a key of that name says only on which system an instance is, and of which class it is.
bool IsScopeKey(const std::string& name);

#endif
