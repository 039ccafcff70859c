#ifndef VALUES_H
#define VALUES_H

#include <string>
#include <vector>

class TCIMProperty;
class TCIMValue;

/// The value for people, by the qualifiers of its declaration, as one visible line. What cannot be displayed so is
/// given as by PlainText.
std::string DisplayText(const TCIMProperty& property);
/// The same for each element of an array.
std::vector<std::string> DisplayElements(const TCIMProperty& property);
/// The value as it is, as one visible line.
std::string PlainText(const TCIMValue& value);

#endif
