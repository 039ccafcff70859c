#ifndef DESCRIPTIONS_H
#define DESCRIPTIONS_H

#include <string>
#include <vector>

class ICIMAllowQualifiers;

/// The text of a string qualifier as one visible line; empty if there is none.
std::string QualifierText(const ICIMAllowQualifiers& carrier, const char* name);
/// The texts of a qualifier that is an array of strings; empty if there is none.
std::vector<std::string> QualifierTexts(const ICIMAllowQualifiers& carrier, const char* name);

/// The description without the line ends and indents of its document, visible; empty if there is none.
std::string DescriptionOf(const ICIMAllowQualifiers& carrier);
/// Its first sentence; empty if it was inherited, and so speaks of something wider.
std::string OwnShortDescriptionOf(const ICIMAllowQualifiers& carrier);

#endif
