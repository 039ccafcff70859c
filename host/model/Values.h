#ifndef KYR_HOST_MODEL_VALUES_H
#define KYR_HOST_MODEL_VALUES_H

#include <string>
#include <vector>

class TCIMInstance;
class TCIMProperty;
class TCIMValue;

/// The value as people read it, as one visible line: with units, and words for numbers, as the qualifiers of its
/// declaration say. A value that does not fit its qualifiers is given as by PlainText.
std::string DisplayText(const TCIMProperty& property);
/// The same for each element of an array.
std::vector<std::string> DisplayElements(const TCIMProperty& property);
/// The value without regard to qualifiers, as one visible line.
std::string PlainText(const TCIMValue& value);

/// A name by which people recognise the instance, as one visible line: its caption or a name, or else its keys.
std::string DisplayName(const TCIMInstance& instance);

/// The object path of the instance as one visible line.
std::string VisiblePath(const TCIMInstance& instance);

#endif
