#include "saved/DocumentScan.h"

#include <emmintrin.h>
#include <strings.h>

#include <algorithm>
#include <cstdint>

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

}  // namespace

/// Goes from one '<', '>' and quote of a text to the next, 64 bytes at a time: the rest of the text does not matter.
class TDocumentScan::TMarks {
public:
    explicit TMarks(std::string_view text) : fText(text) { Load(); }

    /// The place of the next one; kNone if there is none.
    size_t Next() {
        while (fFound == 0) {
            if (fText.size() - fBlock <= kBlock) return kNone;
            fBlock += kBlock;
            Load();
        }
        const size_t place = fBlock + static_cast<size_t>(__builtin_ctzll(fFound));
        fFound &= fFound - 1;
        return place;
    }
    size_t NextOf(char mark) {
        size_t place = Next();
        while (place != kNone && fText[place] != mark) place = Next();
        return place;
    }

private:
    static constexpr size_t kBlock = 64;

    void Load() {
        char last[kBlock] = {};
        const char* block = fText.data() + fBlock;
        if (fText.size() - fBlock < kBlock) {
            std::copy(block, fText.data() + fText.size(), last);
            block = last;
        }
        fFound = 0;
        for (size_t at = 0; at < kBlock; at += sizeof(__m128i)) fFound |= MarksIn(block + at) << at;
    }

    static uint64_t MarksIn(const char* bytes) {
        const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        const auto equals = [&text](char mark) { return _mm_cmpeq_epi8(text, _mm_set1_epi8(mark)); };
        const __m128i found =
            _mm_or_si128(_mm_or_si128(equals('<'), equals('>')), _mm_or_si128(equals('"'), equals('\'')));
        return static_cast<uint32_t>(_mm_movemask_epi8(found));
    }

    const std::string_view fText;
    size_t fBlock = 0;
    uint64_t fFound = 0;  // a bit for each byte of the block, without those that were given
};

void TDocumentScan::Add(std::string_view piece) {
    fSize += piece.size();
    fIsUnusual |= piece.find('\0') != kNone;
    if (fIsUnusual) return;
    const std::string joined = fRest.empty() ? "" : fRest.append(piece);
    if (!joined.empty()) piece = joined;
    TMarks marks(piece);
    size_t at = marks.NextOf('<');
    while (at != kNone && !fIsUnusual && Pass(piece, at, marks)) at = marks.NextOf('<');
    fRest = at == kNone ? "" : piece.substr(at);
    fIsUnusual |= fRest.size() > kLongestTag;
}

bool TDocumentScan::IsHarmless(size_t mostForEachByte) const {
    const size_t most = mostForEachByte * fSize;
    return !fIsUnusual && fRest.empty() && fDepth == 0 && fClasses <= kMostClasses && fDeepest <= kDeepest &&
           fInstances * fProperties <= most && fClasses * (fProperties + fQualifiers) <= most;
}

// Returns whether the end of the tag is in the text.
bool TDocumentScan::Pass(std::string_view text, size_t at, TMarks& marks) {
    constexpr std::string_view kComment = "<!--";
    if (text.size() - at < kComment.size()) return false;
    if (text[at + 1] == '?') return PassTo("?>", text, at + 1, marks);
    if (text[at + 1] != '!') return PassTag(text, at, marks);
    if (text.substr(at, kComment.size()) == kComment) return PassTo("-->", text, at + kComment.size(), marks);
    fIsUnusual = true;
    return false;
}

// Goes to the end of what ends so, which begins there at the earliest.
bool TDocumentScan::PassTo(std::string_view end, std::string_view text, size_t from, TMarks& marks) {
    for (size_t at = marks.NextOf('>'); at != kNone; at = marks.NextOf('>'))
        if (at + 1 >= from + end.size() && text.substr(at + 1 - end.size(), end.size()) == end) return true;
    return false;
}

bool TDocumentScan::PassTag(std::string_view text, size_t at, TMarks& marks) {
    size_t end = marks.Next();
    for (; end != kNone && text[end] != '>'; end = marks.Next())
        if (text[end] != '<' && marks.NextOf(text[end]) == kNone) return false;  // a value that is not closed here
    if (end == kNone) return false;
    const std::string_view tag = text.substr(at + 1, end - at - 1);
    if (tag.empty() || tag[0] == '/')
        EndElement();
    else
        StartElement(tag, tag.back() == '/');
    return true;
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
