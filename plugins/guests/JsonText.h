#ifndef KYR_PLUGINS_GUESTS_JSONTEXT_H
#define KYR_PLUGINS_GUESTS_JSONTEXT_H

#include <rapidjson/document.h>

#include <initializer_list>
#include <optional>
#include <string>

#include "Fact.h"

/// A document, parsed without recursion, so that its depth costs no stack; null if it is none.
rapidjson::Document ParseJson(const std::string& text);

/// The value that the names lead to, from an object to its member each; null if there is none.
const rapidjson::Value* FindMember(const rapidjson::Value& value, std::initializer_list<const char*> names);
/// The same if it is a text, up to a NUL; otherwise empty.
std::string FindText(const rapidjson::Value& value, std::initializer_list<const char*> names);
/// The text as a fact of the source; not present if it is empty.
TFact<std::string> TextFact(const std::string& text, const std::string& source);

/// A time such as "2024-02-01T10:20:30.123Z" or with "+01:00" at its end, in seconds since 1970.
std::optional<int64_t> ParseTime(const std::string& text);

#endif
