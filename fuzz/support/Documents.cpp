#include "support/Documents.h"

#include <algorithm>

namespace {

constexpr int kMaxDepth = 2000;
constexpr std::string_view kBlanks = " \t\r\n";

bool OpensValue(std::string_view text, std::size_t quote) {
    const std::size_t before = text.substr(0, quote).find_last_not_of(kBlanks);
    return before != text.npos && text[before] == '=';
}

/// Compatibility: the parser loops forever on an attribute value without a closing quote; see docs/oddities.md. Only
/// the last quote of its kind in a document can open such a value, and only if no markup follows, which would be an
/// error.
bool EndsInAttributeValue(std::string_view text) {
    const std::size_t markup = text.find_last_of("<&");
    const std::string_view tail = markup == text.npos ? text : text.substr(markup);
    for (const char quote : {'"', '\''}) {
        const std::size_t last = tail.rfind(quote);
        if (last != tail.npos && OpensValue(tail, last)) return true;
    }
    return false;
}

/// True if the tag that begins here is an empty-element tag.
bool IsEmptyTag(std::string_view text, std::size_t begin) {
    constexpr std::string_view marks = "<>\"'";
    for (std::size_t at = text.find_first_of(marks, begin + 1); at < text.size();) {
        if (text[at] == '<') return false;
        if (text[at] == '>') return text[at - 1] == '/';
        const std::size_t close = text.find(text[at], at + 1);
        if (close == text.npos) return false;
        at = text.find_first_of(marks, close + 1);
    }
    return false;
}

/// The parser recurses for each nesting level, limited by the stack only. The count may be wrong where comments or
/// processing instructions contain tags, but not by enough to matter for documents of this size.
int DepthOf(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    for (std::size_t at = text.find('<'); at < text.size() - 1; at = text.find('<', at + 1)) {
        const char next = text[at + 1];
        if (next == '/') --depth;
        if (next == '/' || next == '!' || next == '?' || IsEmptyTag(text, at)) continue;
        deepest = std::max(deepest, ++depth);
    }
    return deepest;
}

}  // namespace

bool IsReadable(std::string_view document) {
    const std::string_view text = document.substr(0, document.find('\0'));
    return text.empty() || (!EndsInAttributeValue(text) && DepthOf(text) <= kMaxDepth);
}

TDocumentText::TDocumentText(std::string_view document) : fBuffer(document.size() + 2) {
    std::copy(document.begin(), document.end(), fBuffer.begin() + 1);
}
