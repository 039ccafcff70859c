#include "xml/TXmlParser.h"

#include <ctype.h>
#include <emmintrin.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

enum EByteClass : unsigned char { eNameStart = 1, eName = 2, eBlank = 4, eValue = 8, eText = 16 };

struct TByteClasses {
    unsigned char table[256] = {};

    constexpr TByteClasses() {
        for (int c = 1; c < 256; ++c) table[c] = eValue | eText;
        for (const char c : {'<', '&'}) table[static_cast<unsigned char>(c)] = 0;
        for (const char c : {'"', '\''}) table[static_cast<unsigned char>(c)] = eText;
        Mark("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_:", eNameStart | eName);
        Mark("0123456789.-", eName);
        Mark(" \t\r\n", eBlank);
    }
    constexpr void Mark(std::string_view bytes, int kinds) {
        for (const char c : bytes) table[static_cast<unsigned char>(c)] |= static_cast<unsigned char>(kinds);
    }
    constexpr bool Is(char c, EByteClass kind) const { return (table[static_cast<unsigned char>(c)] & kind) != 0; }
};

constexpr TByteClasses kBytes;

char* SkipAll(char* next, EByteClass kind) {
    while (kBytes.Is(*next, kind)) ++next;
    return next;
}

/// std::string_view::compare with fast paths, since names mostly differ in their first character or are the same.
int Compare(std::string_view a, std::string_view b) {
    if (!a.empty() && a[0] != b[0]) return static_cast<unsigned char>(a[0]) - static_cast<unsigned char>(b[0]);
    return a == b ? 0 : a.compare(b);
}

__m128i Load(const char* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }

__m128i Equal(__m128i bytes, char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); }

/// Finds the next '<', '&', NUL or the given character, sixteen bytes at a time while the text is long enough. Near its
/// end it may find a character before that, which is of none of the given kind.
inline char* FindNext(char* next, const char* end, char wanted, EByteClass others) {
    for (; end - next >= 16; next += 16) {
        const __m128i bytes = Load(next);
        const __m128i found = _mm_or_si128(_mm_or_si128(Equal(bytes, '<'), Equal(bytes, '&')),
                                           _mm_or_si128(Equal(bytes, '\0'), Equal(bytes, wanted)));
        const int mask = _mm_movemask_epi8(found);
        if (mask != 0) return next + __builtin_ctz(static_cast<unsigned int>(mask));
    }
    return SkipAll(next, others);
}

char* FindMarkup(char* next, const char* end) { return FindNext(next, end, '<', eText); }

/// True if both texts begin with the same length bytes. They lie before the end; the first one holds no NUL.
inline bool IsSameName(const char* name, const char* other, std::size_t length, const char* end) {
    if (length > 16 || end - other < 16) return strncmp(other, name, length) == 0;
    const int same = _mm_movemask_epi8(_mm_cmpeq_epi8(Load(name), Load(other)));
    return (~same & ((1 << length) - 1)) == 0;
}

/// text = replacement, by a shorter way through the library.
void Replace(std::string& text, std::string_view replacement) {
    text.clear();
    text.append(replacement);
}

struct TEntity {
    std::string_view name;  // with the semicolon
    const char* text;
};

constexpr TEntity kEntities[] = {{"amp;", "&"}, {"lt;", "<"}, {"gt;", ">"}, {"apos;", "'"}, {"quot;", "\""}};

bool BeginsAnEntity(std::string_view read) {
    return std::any_of(std::begin(kEntities), std::end(kEntities),
                       [&](const TEntity& entity) { return entity.name.substr(0, read.size()) == read; });
}

int DigitOf(char c, int base) {
    if (c >= '0' && c <= '9') return c - '0';
    if (base == 16 && c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

TXmlParser::TXmlParser() {
    const int* const lower = *__ctype_tolower_loc();  // the table of tolower, by the host's locale
    for (int c = 0; c < 256; ++c) {
        fLower[c] = static_cast<char>(lower[c]);
        fLowerInName[c] = kBytes.Is(static_cast<char>(c), eName) ? fLower[c] : '\0';
    }
}

TXmlParser::~TXmlParser() = default;

void TXmlParser::Parse(char* text) {
    fStart = fNext = text;
    fEnd = text + strlen(text);
    fCountedTo = text;
    fCountedLineEnds = fHiddenLineEnds = fHiddenWhenCounted = 0;
    fDepth = 0;
    ParseProlog();
    ParseElement();
    while (ParseMisc()) {
    }
}

unsigned int TXmlParser::GetCurLine() {
    if (fCountedTo < fStart || fCountedTo > fNext) {
        fCountedTo = fStart;
        fCountedLineEnds = 0;
    }
    for (; fCountedTo < fNext; ++fCountedTo) fCountedLineEnds += *fCountedTo == '\n';
    fCountedTo = fNext;
    fHiddenWhenCounted = fHiddenLineEnds;
    return fCountedLineEnds + 1;
}

bool TXmlParser::Refuse(const char* message) {
    FatalError(message);
    return false;
}

bool TXmlParser::SkipBehind(const char* mark) {
    char* const found = strstr(fNext, mark);
    if (found == nullptr) return false;
    fNext = found + strlen(mark);
    return true;
}

bool TXmlParser::ParseProlog() {
    if (GetChar() != '<') return Refuse("Unexpected character before prolog");
    const int second = GetChar();
    Unget(2);
    if (second != '?') return false;
    ParseXMLDecl();
    while (ParseMisc()) {
    }
    int read = 1;
    bool isDocType = GetChar() == '<';
    if (isDocType) {
        ++read;
        isDocType = GetChar() == '!';
    }
    Unget(read);
    if (!isDocType) return true;
    ParseDocTypeDecl();
    while (ParseMisc()) {
    }
    return true;
}

bool TXmlParser::ParseMisc() {
    // Compatibility: any character but '<' is skipped here, and then blanks must follow; see docs/oddities.md.
    if (GetChar() != '<') return SkipWhitespace();
    const int second = GetChar();
    if (second == '?') {
        Unget(2);
        return ParseProcessingInstruction();
    }
    if (second != '!') {
        Unget(2);
        return false;
    }
    const int third = GetChar();
    Unget(3);
    return third == '-' && SkipComment();
}

bool TXmlParser::ParseXMLDecl() { return SkipBehind("?>"); }

bool TXmlParser::ParseDocTypeDecl() {
    for (const char* expected = "<!DOCTYPE"; *expected != '\0'; ++expected)
        if (GetChar() != *expected) return Refuse("Unexpected character in doctypedecl");
    if (!SkipBehind(">")) return false;
    SkipWhitespace();
    return true;
}

bool TXmlParser::ParseProcessingInstruction() {
    if (!SkipBehind("?>")) return false;
    processingInstruction("TBD", "TBD");
    return true;
}

bool TXmlParser::ParseNotationDecl() {
    if (!SkipBehind(">")) return false;
    notationDecl("TBD", "TBD", "TBD");
    return true;
}

bool TXmlParser::SkipComment() {
    for (const char* expected = "<!--"; *expected != '\0'; ++expected) {
        if (GetChar() == *expected) continue;
        Unget(4);  // four, even if fewer were read; see docs/oddities.md
        return false;
    }
    return SkipBehind("-->");
}

bool TXmlParser::SkipWhitespace() {
    char* const begin = fNext;
    fNext = SkipAll(begin, eBlank);
    return fNext != begin;
}

bool TXmlParser::ValidateName() {
    if (!kBytes.Is(static_cast<char>(GetChar()), eNameStart)) return Refuse("Invalid element/attribute name");
    fNext = SkipAll(fNext, eName);
    if (*fNext == '\0') UngetChar();  // at the end of the text a name loses its last character; see docs/oddities.md
    return true;
}

bool TXmlParser::ParseElement() {
    if (GetChar() != '<') return Refuse("Unexpected character before element");
    char* const name = fNext;
    if (!ValidateName()) return false;
    char* const nameEnd = fNext;
    TAttributes& attributes = AttributesOfLevel();
    if (!ParseAttributes(attributes)) return false;

    const bool isEmpty = *fNext == '/';
    if (isEmpty) ++fNext;
    if (GetChar() != '>') return Refuse("Unexpected character before end of element");

    const char hidden = HideByte(nameEnd);
    ++fDepth;
    StartElement(name, attributes);
    const bool isClosed =
        isEmpty || (ParseContent() && ParseElementEnd(name, static_cast<std::size_t>(nameEnd - name)));
    if (isClosed) EndElement(name);
    --fDepth;
    ShowByte(nameEnd, hidden);
    return isClosed;
}

bool TXmlParser::ParseContent() {
    for (;;) {
        if (*fNext != '<') ParseCharData();
        if (*fNext != '<') return Refuse("Unexpected character where element expected");
        const char kind = fNext[1];
        if (kind == '/') break;
        if (kind == '\0') UngetChar();  // one step back too many behind a last '<'; see docs/oddities.md
        const bool good = kind == '?' ? ParseProcessingInstruction() : kind == '!' ? SkipComment() : ParseElement();
        if (!good) return false;
    }
    fNext += 2;
    return true;
}

bool TXmlParser::ParseElementEnd(const char* name, std::size_t length) {
    const char* const endName = fNext;
    const bool isSame = IsSameName(name, endName, length, fEnd);
    if (isSame && endName[length] == '>') {
        fNext += length + 1;
        return true;
    }
    if (!ValidateName()) return false;
    if (!isSame) return Refuse("Start and end element names don't match");
    SkipWhitespace();
    return GetChar() == '>' || Refuse("Unexpected character before end of element");
}

TXmlParser::TAttributes& TXmlParser::AttributesOfLevel() {
    if (fDepth == fLevels.size()) fLevels.push_back(std::make_unique<TAttributes>());
    return *fLevels[fDepth];
}

bool TXmlParser::ParseAttributes(TAttributes& attributes) {
    fAttributeCount = 0;
    while (SkipWhitespace() && *fNext != '/' && *fNext != '>')
        if (!ParseAttribute(attributes)) return false;
    if (fAttributeCount <= kFewAttributes) FillAttributes(attributes);
    return true;
}

bool TXmlParser::ParseAttribute(TAttributes& attributes) {
    char* const name = fNext;
    if (!ParseAttributeName()) return false;
    char* const nameEnd = fNext;
    fNext = SkipAll(fNext, eBlank);
    if (GetChar() != '=') return Refuse("Unexpected character between attribute name and value");
    fNext = SkipAll(fNext, eBlank);
    const int quote = GetChar();
    if (quote != '"' && quote != '\'') return Refuse("Unexpected character after equals of attribute name");
    char* const value = fNext;
    if (!SkipToQuote(static_cast<char>(quote))) return false;
    char* const valueEnd = fNext - 1;

    const TAttribute attribute = {{name, static_cast<std::size_t>(nameEnd - name)},
                                  {value, static_cast<std::size_t>(valueEnd - value)}};
    if (TakeAttribute(attributes, attribute)) return true;
    *nameEnd = *valueEnd = '\0';  // the NUL hides a line feed from the line number of the message; see docs/oddities.md
    return Refuse("Attribute appears twice");
}

/// ValidateName, which also turns the name into lower case.
bool TXmlParser::ParseAttributeName() {
    if (!kBytes.Is(*fNext, eNameStart)) return ValidateName();
    char* next = fNext;
    while (const char lower = fLowerInName[static_cast<unsigned char>(*next)]) *next++ = lower;
    fNext = next;
    if (*fNext == '\0') UngetChar();
    return true;
}

bool TXmlParser::SkipToQuote(char quote) {
    for (;;) {
        fNext = FindNext(fNext, fEnd, quote, eValue);
        // Compatibility: without a closing quote this loops forever at the NUL; see docs/oddities.md. The read is
        // volatile, because a compiler may remove an endless loop that has no effect.
        const char end = *const_cast<const volatile char*>(fNext);
        if (end == '\0') continue;
        ++fNext;
        if (end == quote) return true;
        if (end == '<' || end == '&') return Refuse("Unexpected character in attribute value");
    }
}

/// Adds an attribute; false if the element has one of that name.
bool TXmlParser::TakeAttribute(TAttributes& attributes, const TAttribute& attribute) {
    if (fAttributeCount > kFewAttributes) return attributes.emplace(attribute.name, attribute.value).second;
    TAttribute* place = fAttributes + fAttributeCount;
    for (; place != fAttributes; --place) {
        const int order = Compare(place[-1].name, attribute.name);
        if (order == 0) return false;
        if (order < 0) break;
        *place = place[-1];
    }
    *place = attribute;
    if (++fAttributeCount > kFewAttributes) FillAttributes(attributes);
    return true;
}

/// Replaces the content of the map by fAttributes and reuses its nodes.
void TXmlParser::FillAttributes(TAttributes& attributes) {
    auto old = attributes.begin();
    for (const TAttribute* attribute = fAttributes; attribute != fAttributes + fAttributeCount; ++attribute) {
        int order = 1;
        while (old != attributes.end() && (order = Compare(old->first, attribute->name)) < 0)
            fSpareNodes.push_back(attributes.extract(old++));
        if (old == attributes.end() || order != 0)
            InsertAttribute(attributes, old, *attribute);
        else
            Replace((old++)->second, attribute->value);
    }
    while (old != attributes.end()) fSpareNodes.push_back(attributes.extract(old++));
}

void TXmlParser::InsertAttribute(TAttributes& attributes, TAttributes::iterator hint, const TAttribute& attribute) {
    if (fSpareNodes.empty()) {
        attributes.emplace_hint(hint, attribute.name, attribute.value);
        return;
    }
    TAttributes::node_type node = std::move(fSpareNodes.back());
    fSpareNodes.pop_back();
    node.key().assign(attribute.name);
    node.mapped().assign(attribute.value);
    attributes.insert(hint, std::move(node));
}

bool TXmlParser::ParseCharData() {
    const char* const begin = fNext;
    while (ParseText()) {
        ++fNext;
        ParseReference();
    }
    return fNext != begin;
}

/// Reports the text up to the next markup; true if a reference follows.
bool TXmlParser::ParseText() {
    char* const run = fNext;
    fNext = FindMarkup(run, fEnd);
    const char markup = *fNext;
    if (fNext == run) return markup == '&';
    *fNext = '\0';
    characters(run, static_cast<unsigned int>(fNext - run));
    *fNext = markup;
    return markup == '&';
}

void TXmlParser::ParseReference() {
    if (SkipName("#")) return ParseNumericReference();
    for (const TEntity& entity : kEntities)
        if (SkipName(entity.name)) return characters(entity.text, 1);
    char read[8];
    for (std::size_t length = 0; BeginsAnEntity({read, length});) read[length++] = ToLower(GetChar());
    FatalError("Unknown entity reference");
}

/// Moves behind the name if it stands here in any case.
bool TXmlParser::SkipName(std::string_view name) {
    for (std::size_t i = 0; i < name.size(); ++i)
        if (ToLower(fNext[i]) != name[i]) return false;
    fNext += name.size();
    return true;
}

void TXmlParser::ParseNumericReference() {
    char c = ToLower(GetChar());
    const int base = c == 'x' ? 16 : 10;
    if (base == 16) c = ToLower(GetChar());
    char text[2] = {};
    for (bool isFirst = true; isFirst || c != ';'; isFirst = false) {
        const int digit = DigitOf(c, base);
        // Compatibility: one byte, so the number is taken modulo 256; see docs/oddities.md.
        if (digit >= 0) text[0] = static_cast<char>(static_cast<unsigned char>(text[0]) * base + digit);
        if (digit < 0) FatalError(c == ';' ? "Invalid hex character" : "Unknown entity reference");
        if (c == '\0') return;
        c = ToLower(GetChar());
    }
    characters(text, 1);
}

/// Replaces the byte after an element's name by a NUL and returns it; ShowByte restores it.
char TXmlParser::HideByte(char* position) {
    if (*position == '\n') ++fHiddenLineEnds;
    return std::exchange(*position, '\0');
}

void TXmlParser::ShowByte(char* position, char byte) {
    *position = byte;
    if (byte != '\n') return;
    --fHiddenLineEnds;
    if (fHiddenLineEnds >= fHiddenWhenCounted) return;
    fHiddenWhenCounted = fHiddenLineEnds;
    ++fCountedLineEnds;
}
