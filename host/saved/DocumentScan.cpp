#include "saved/DocumentScan.h"

#include <strings.h>

#include <algorithm>

#include "saved/DocumentText.h"

namespace {

constexpr size_t kNone = std::string_view::npos;
constexpr size_t kDeepest = 100;
constexpr size_t kMostClasses = 2000;
constexpr size_t kLongestTag = 1 << 16;

// The reader takes names of elements without regard to case.
bool IsTagOf(std::string_view tag, std::string_view name) {
    if (tag.size() < name.size() || (tag[0] | 0x20) != (name[0] | 0x20)) return false;
    if (strncasecmp(tag.data(), name.data(), name.size()) != 0) return false;
    return tag.size() == name.size() || std::string_view(" \t\r\n/.").find(tag[name.size()]) != kNone;
}

// Where the tag ends, with its '>'; kNone if that is not in the text, or behind a value that is not closed there.
size_t FindEndOfTag(std::string_view text, size_t at) {
    for (; at < text.size() && text[at] != '>'; ++at) {
        if (text[at] != '"' && text[at] != '\'') continue;
        at = text.find(text[at], at + 1);
        if (at == kNone) return kNone;
    }
    return at < text.size() ? at : kNone;
}

size_t FindBehind(std::string_view text, std::string_view mark, size_t from) {
    const size_t found = text.find(mark, from);
    return found == kNone ? kNone : found + mark.size();
}

}  // namespace

void TDocumentScan::Add(std::string_view piece) {
    fSize += piece.size();
    fIsUnusual |= piece.find('\0') != kNone;
    if (fIsUnusual) return;
    const std::string joined = fRest.empty() ? "" : fRest.append(piece);
    if (!joined.empty()) piece = joined;
    size_t at = piece.find('<');
    for (size_t end = 0; at != kNone && !fIsUnusual; at = piece.find('<', end))
        if (end = Pass(piece, at); end == kNone) break;
    fRest = at == kNone ? "" : piece.substr(at);
    fIsUnusual |= fRest.size() > kLongestTag;
}

bool TDocumentScan::IsHarmless(size_t mostForEachByte) const {
    const size_t most = mostForEachByte * fSize;
    return !fIsUnusual && fRest.empty() && fDepth == 0 && fClasses <= kMostClasses && fDeepest <= kDeepest &&
           fInstances * fProperties <= most && fClasses * (fProperties + fQualifiers) <= most;
}

// Gives where the text goes on behind the tag; kNone if its end is not in the text.
size_t TDocumentScan::Pass(std::string_view text, size_t at) {
    constexpr std::string_view kComment = "<!--";
    if (text.size() - at < kComment.size()) return kNone;
    if (text[at + 1] == '?') return FindBehind(text, "?>", at);
    if (text[at + 1] != '!') return PassTag(text, at);
    if (text.substr(at, kComment.size()) == kComment) return FindBehind(text, "-->", at + kComment.size());
    fIsUnusual = true;
    return kNone;
}

size_t TDocumentScan::PassTag(std::string_view text, size_t at) {
    const size_t end = FindEndOfTag(text, at);
    if (end == kNone) return kNone;
    const std::string_view tag = text.substr(at + 1, end - at - 1);
    if (tag.empty() || tag[0] == '/')
        EndElement();
    else
        StartElement(tag, tag.back() == '/');
    return end + 1;
}

void TDocumentScan::StartElement(std::string_view tag, bool isEmpty) {
    if (fInstanceDepth == 0) CountDeclaration(tag);
    if (IsTagOf(tag, "INSTANCE")) {
        ++fInstances;
        if (fInstanceDepth == 0 && !isEmpty) fInstanceDepth = fDepth + 1;
    }
    if (!isEmpty) fDeepest = std::max(fDeepest, ++fDepth);
}

void TDocumentScan::CountDeclaration(std::string_view tag) {
    fClasses += IsTagOf(tag, "CLASS");
    fProperties += IsTagOf(tag, "PROPERTY");
    fQualifiers += IsTagOf(tag, "QUALIFIER");
}

void TDocumentScan::EndElement() {
    if (fDepth == 0) {
        fIsUnusual = true;
        return;
    }
    if (fDepth-- == fInstanceDepth) fInstanceDepth = 0;
}

bool IsHarmlessDocument(const std::string& path, size_t mostForEachByte) {
    TDocumentScan scan;
    return ForEachPiece(path, [&scan](std::string_view piece) { scan.Add(piece); }) && scan.IsHarmless(mostForEachByte);
}
