#include "saved/DocumentScan.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>

namespace {

constexpr size_t kNone = std::string_view::npos;
constexpr size_t kDeepest = 100;
constexpr size_t kLongestTag = 1 << 16;
constexpr size_t kMostForEachByte = 6;  // of products; a saved collection of a real machine has about two
// The reader compares all classes that an association refers to with each other, and with what they derive from.
constexpr size_t kMostComparisons = 20'000'000;

bool HasName(std::string_view tag, std::string_view name) {
    constexpr std::string_view kNameEnds = " \t\r\n/";
    if (tag.substr(0, name.size()) != name) return false;
    return tag.size() == name.size() || kNameEnds.find(tag[name.size()]) != kNone;
}

}  // namespace

enum TDocumentScan::EPlace : uint8_t {
    eRoot,
    eCIM,
    eDeclaration,
    eDeclGroup,
    eQualifierDeclaration,
    eScope,
    eObject,
    eClass,
    eDeclaredProperty,
    eDeclaredArray,
    eDeclaredReference,
    eQualifier,
    eInstance,
    eProperty,
    eArray,
    eReference,
    eValue,
    eValueArray,
    eValueReference,
    eInstanceName,
    eKeyBinding,
    eKeyValue,
    kPlaces
};

struct TDocumentScan::TChild {
    std::string_view name;  // empty: there are no more
    EPlace place;
};

// Which elements belong into which, and with what a scan counts there.
const TDocumentScan::TChild* TDocumentScan::FindChild(EPlace place, std::string_view tag) {
    using TChildren = std::array<TChild, 5>;
    static constexpr std::array<TChildren, kPlaces> kChildren = [] {
        std::array<TChildren, kPlaces> all{};
        all[eRoot] = {{{"CIM", eCIM}}};
        all[eCIM] = {{{"DECLARATION", eDeclaration}}};
        all[eDeclaration] = {{{"DECLGROUP", eDeclGroup}}};
        all[eDeclGroup] = {{{"VALUE.OBJECT", eObject}, {"QUALIFIER.DECLARATION", eQualifierDeclaration}}};
        all[eQualifierDeclaration] = {{{"SCOPE", eScope}, {"VALUE", eValue}, {"VALUE.ARRAY", eValueArray}}};
        all[eObject] = {{{"INSTANCE", eInstance}, {"CLASS", eClass}}};
        all[eClass] = {{{"PROPERTY", eDeclaredProperty},
                        {"QUALIFIER", eQualifier},
                        {"PROPERTY.ARRAY", eDeclaredArray},
                        {"PROPERTY.REFERENCE", eDeclaredReference}}};
        all[eDeclaredProperty] = {{{"QUALIFIER", eQualifier}, {"VALUE", eValue}}};
        all[eDeclaredArray] = {{{"QUALIFIER", eQualifier}, {"VALUE.ARRAY", eValueArray}}};
        all[eDeclaredReference] = {{{"QUALIFIER", eQualifier}, {"VALUE.REFERENCE", eValueReference}}};
        all[eQualifier] = {{{"VALUE", eValue}, {"VALUE.ARRAY", eValueArray}}};
        all[eInstance] = {{{"PROPERTY", eProperty}, {"PROPERTY.ARRAY", eArray}, {"PROPERTY.REFERENCE", eReference}}};
        all[eProperty] = {{{"VALUE", eValue}}};
        all[eArray] = {{{"VALUE.ARRAY", eValueArray}}};
        all[eReference] = {{{"VALUE.REFERENCE", eValueReference}}};
        all[eValueArray] = {{{"VALUE", eValue}}};
        all[eValueReference] = {{{"INSTANCENAME", eInstanceName}}};
        all[eInstanceName] = {{{"KEYBINDING", eKeyBinding}}};
        all[eKeyBinding] = {{{"KEYVALUE", eKeyValue}, {"VALUE.REFERENCE", eValueReference}}};
        return all;
    }();
    for (const TChild& child : kChildren[place]) {
        if (child.name.empty()) break;
        if (HasName(tag, child.name)) return &child;
    }
    return nullptr;
}

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

void TDocumentScan::EndDocument() { fIsUnusual |= !fRest.empty() || !fPlaces.empty(); }

bool TDocumentScan::IsHarmless(const TScanLimits& limits) const {
    const size_t mostProducts = std::min(limits.products, kMostForEachByte * fSize);
    return !fIsUnusual && fClasses <= limits.classes && fInstances * fProperties <= mostProducts &&
           fClasses * (fProperties + fQualifiers) <= mostProducts &&
           fClasses * fQualifierBytes <= limits.qualifierBytes &&
           fClasses * fClasses * fReferences.size() * fReferences.size() <= kMostComparisons;
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
    const size_t offset = fSize - (text.size() - at);
    if (!tag.empty() && tag[0] == '/')
        EndElement(offset);
    else
        StartElement(tag, offset);
    return true;
}

void TDocumentScan::StartElement(std::string_view tag, size_t offset) {
    const TChild* const child = FindChild(fPlaces.empty() ? eRoot : fPlaces.back(), tag);
    fIsUnusual |= child == nullptr || fPlaces.size() >= kDeepest;
    if (fIsUnusual) return;
    Count(child->place, tag, offset);
    if (tag.back() != '/') fPlaces.push_back(child->place);
}

void TDocumentScan::EndElement(size_t offset) {
    fIsUnusual |= fPlaces.empty();
    if (fIsUnusual) return;
    if (fPlaces.back() == eQualifier) fQualifierBytes += offset - fQualifierStart;
    fPlaces.pop_back();
}

void TDocumentScan::Count(EPlace place, std::string_view tag, size_t offset) {
    switch (place) {
        case eClass:
            ++fClasses;
            break;
        case eInstance:
            ++fInstances;
            break;
        case eQualifier:
            ++fQualifiers;
            fQualifierStart = offset;
            break;
        case eDeclaredReference:
            NoteReference(tag);
            [[fallthrough]];
        case eDeclaredProperty:
        case eDeclaredArray:
            ++fProperties;
            break;
        default:
            break;
    }
}

// A class has no more of them than there are names.
void TDocumentScan::NoteReference(std::string_view tag) {
    constexpr std::string_view kStart = "PROPERTY.REFERENCE NAME=\"";
    const size_t end = tag.find('"', kStart.size());
    if (tag.substr(0, kStart.size()) != kStart || end == kNone)
        fIsUnusual = true;
    else if (const std::string_view name = tag.substr(kStart.size(), end - kStart.size());
             fReferences.find(name) == fReferences.end())
        fReferences.emplace(name);
}
