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

/// The same with date-times in the form of ISO 8601: "2026-11-21T10:55:53+00:00", and "P1DT2H3M4S" for an interval.
std::string RawText(const TCIMValue& value);
/// The same of the elements of an array.
std::vector<std::string> RawElements(const TCIMValue& array);
/// The value on one line: as by RawText, or as by DisplayText, with commas between the elements of an array.
std::string ValueText(const TCIMProperty& property, bool raw);

/// A name by which people recognise the instance, as one visible line: its caption or a name, or else its keys.
std::string DisplayName(const TCIMInstance& instance);

/// The object path of the instance as one visible line.
std::string VisiblePath(const TCIMInstance& instance);

#endif
