#ifndef KYR_HOST_MODEL_VALUES_H
#define KYR_HOST_MODEL_VALUES_H

#include <string>
#include <vector>

class TCIMInstance;
class TCIMProperty;
class TCIMValue;

/// The value for people, by the qualifiers of its declaration, as one visible line. What cannot be displayed so is
/// given as by PlainText.
std::string DisplayText(const TCIMProperty& property);
/// The same for each element of an array.
std::vector<std::string> DisplayElements(const TCIMProperty& property);
/// The value as it is, as one visible line.
std::string PlainText(const TCIMValue& value);

/// What a person may recognise the instance by, as one visible line: its caption or a name, or else its keys.
std::string DisplayName(const TCIMInstance& instance);

/// Its object path as one visible line.
std::string VisiblePath(const TCIMInstance& instance);

#endif
