#ifndef XMLTEXT_H
#define XMLTEXT_H

#include <string>
#include <string_view>

/// Appends a text so that the core's reader, and any other that leaves bytes above 127 alone, gets each byte back. It
/// must hold no NUL, for which there is no form.
void AppendXmlText(std::string& target, std::string_view text);

#endif
