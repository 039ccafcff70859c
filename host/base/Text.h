#ifndef KYR_HOST_BASE_TEXT_H
#define KYR_HOST_BASE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Texts for terminals, tables and messages. They come from hardware and files, so they may hold any bytes.

/// The text as one line that can do a terminal no harm: control characters, characters that reorder or hide text, and
/// bytes that are not UTF-8 are written as escapes.
std::string VisibleText(std::string_view text);
/// The text with only those bytes written as escapes that are not UTF-8.
std::string ValidText(std::string_view text);

bool IsPrintableAscii(std::string_view text);

/// Whether a character beyond ASCII is a control character, or one that reorders or hides text.
bool IsHiddenCharacter(unsigned int codePoint);
/// The escape that is written for a character, such as "\u202E".
std::string EscapedCharacter(unsigned int codePoint);

/// How many columns a visible text takes on a terminal.
size_t ColumnsOf(std::string_view visible);
/// A visible text in lines of at most that width, broken at blanks, which are dropped, or inside a word that is longer
/// than a line. At least one line.
std::vector<std::string> WrapText(std::string_view visible, size_t width);
/// The text if it has at most that many bytes. Otherwise as many whole characters of it as fit, and "..." behind them.
std::string CutText(const std::string& text, size_t size);

/// With the letters of ASCII as small ones.
std::string LowerCase(std::string text);

/// The texts with the separator between them.
std::string Join(const std::vector<std::string>& texts, const char* separator = ", ");

bool StartsWith(std::string_view text, std::string_view start);
bool EndsWith(std::string_view text, std::string_view end);

#endif
