#ifndef KYR_PLUGINS_SOFTWARE_FIELDS_H
#define KYR_PLUGINS_SOFTWARE_FIELDS_H

#include <map>
#include <string>
#include <string_view>

#include "Fact.h"

/// The fields of a paragraph, which must outlive them.
using TFields = std::map<std::string_view, std::string_view>;

/// The fields "Name: value" of a paragraph. Only the first line of a field with several lines is kept, and the first of
/// several fields of one name.
TFields ParseFields(std::string_view paragraph);
/// The value of a field as a fact from the source; an empty one is not present.
TFact<std::string> FieldOf(const TFields& fields, std::string_view name, const std::string& source);
/// Takes the text up to the next empty line off the front.
std::string_view TakeParagraph(std::string_view& text);

#endif
