#include "check/Markup.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "base/Text.h"

namespace {

constexpr size_t kNone = std::string_view::npos;
constexpr size_t kLongestShown = 60;  // of a text that a message quotes

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool IsNameStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_' || c == ':'; }
bool IsNamePart(char c) {
    return IsNameStart(c) || std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '-';
}

char ToUpper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

bool EqualsUpper(std::string_view text, std::string_view upper) {
    return text.size() == upper.size() &&
           std::equal(text.begin(), text.end(), upper.begin(), [](char a, char b) { return ToUpper(a) == ToUpper(b); });
}

// Where the text stops to be UTF-8; npos if nowhere.
size_t FindNoUtf8(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    for (size_t at = 0; at < text.size();) {
        utf8proc_int32_t character = 0;
        const utf8proc_ssize_t length =
            utf8proc_iterate(bytes + at, static_cast<utf8proc_ssize_t>(text.size() - at), &character);
        if (length <= 0) return at;
        at += static_cast<size_t>(length);
    }
    return kNone;
}

struct TReference {
    std::string_view name;
    const char* text;
};
constexpr TReference kReferences[] = {{"AMP", "&"}, {"LT", "<"}, {"GT", ">"}, {"APOS", "'"}, {"QUOT", "\""}};

class TMarkupReader {
public:
    TMarkupReader(TMarkup& markup, std::string_view text, TFindings& findings)
        : fMarkup(markup), fText(text), fFindings(findings) {}

    void Read() {
        ReadProlog();
        if (fAt < fText.size()) ReadStartTag();
        while (!fOpen.empty() && fAt < fText.size()) ReadContent();
        if (!fOpen.empty()) ReportOpen();
        Close(fOpen.size());
        ReadBehindRoot();
    }

private:
    // Adds a finding about the place in the text, and the elements that are open there.
    void Add(const char* rule, size_t at, const std::string& text, const std::string& remedy) {
        if (++fMistakes > kMostMistakes) return Cut();
        TPlace place = fOpen.empty() ? TPlace{fMarkup.file} : fMarkup.PlaceOf(*fOpen.back());
        place.line = LineAt(at);
        fFindings.Add(rule, place, text, remedy);
    }

    // Gives up on the rest.
    void Cut() {
        fMarkup.isCut = true;
        Stop();
    }

    // Counts from where it was asked last, which is near.
    size_t LineAt(size_t at) {
        const auto count = [this](size_t from, size_t to) {
            return static_cast<size_t>(
                std::count(fText.begin() + static_cast<long>(from), fText.begin() + static_cast<long>(to), '\n'));
        };
        if (at < fLineAt)
            fLine -= count(at, fLineAt);
        else
            fLine += count(fLineAt, at);
        fLineAt = at;
        return fLine;
    }

    bool IsAt(std::string_view what) const { return fText.compare(fAt, what.size(), what) == 0; }

    size_t EndOf(std::string_view mark, size_t from) const {
        const size_t found = fText.find(mark, from);
        return found == kNone ? kNone : found + mark.size();
    }

    void SkipBlanks() {
        while (fAt < fText.size() && IsBlank(fText[fAt])) ++fAt;
    }

    std::string_view ReadName() {
        const size_t start = fAt;
        while (fAt < fText.size() && IsNamePart(fText[fAt])) ++fAt;
        return fText.substr(start, fAt - start);
    }

    void Stop() { fAt = fText.size(); }

    // Before the root element

    void ReadProlog() {
        if (!StartsAsText()) return Stop();
        CheckBytes();
        SkipBlanks();
        if (IsAt("<?"))
            ReadDeclaration();
        else if (IsAt("<!--"))
            Add("D03", fAt, "a comment stands in front of everything",
                "begin the document with <?xml version=\"1.0\"?>");
        while (fAt < fText.size() && IsBeforeRoot()) ReadBeforeRoot();
        SkipBlanks();
        if (fAt < fText.size() && fText[fAt] != '<') RefuseText();
    }

    // Returns whether a document may follow.
    bool StartsAsText() {
        constexpr std::string_view kMark = "\xEF\xBB\xBF";
        if (IsAt("\xFF\xFE") || IsAt("\xFE\xFF")) {
            Add("D06", 0, "the document is UTF-16", "save it as UTF-8 without a mark");
            return false;
        }
        if (IsAt(kMark)) {
            Add("D06", 0, "the document begins with a byte order mark", "save it as UTF-8 without a mark");
            fAt = kMark.size();
        }
        const size_t start = fText.find_first_not_of(" \t\r\n", fAt);
        if (start == kNone || fText[start] != '<') {
            RefuseText();
            return false;
        }
        if (start != fAt) Add("D17", fAt, "blanks stand in front of the first tag", "begin the document with the tag");
        return true;
    }

    void RefuseText() {
        Add("D17", fAt, "this is no document: it does not begin with a tag", "begin it with <?xml or with <CIM>");
        Stop();
    }

    void CheckBytes() {
        const size_t nul = fText.find('\0');
        if (nul != kNone) {
            Add("D17", nul, "a NUL byte ends the document", "remove it");
            fText = fText.substr(0, nul);
        }
        const size_t wrong = FindNoUtf8(fText);
        if (wrong != kNone) Add("D06", wrong, "a byte is not UTF-8", "save the document as UTF-8");
    }

    void ReadDeclaration() {
        const size_t end = EndOf("?>", fAt);
        if (end == kNone) {
            Add("D17", fAt, "the XML declaration is not closed", "close it with ?>");
            return Stop();
        }
        CheckEncoding(fText.substr(fAt, end - fAt));
        fAt = end;
    }

    void CheckEncoding(std::string_view declaration) {
        constexpr std::string_view kKey = "encoding";
        const size_t key = declaration.find(kKey);
        const size_t quote = key == kNone ? kNone : declaration.find_first_of("\"'", key + kKey.size());
        const size_t end = quote == kNone ? kNone : declaration.find(declaration[quote], quote + 1);
        if (end == kNone) return;
        const std::string_view encoding = declaration.substr(quote + 1, end - quote - 1);
        for (const char* const good : {"UTF-8", "UTF8", "US-ASCII", "ASCII"})
            if (EqualsUpper(encoding, good)) return;
        Add("D06", fAt, "the encoding " + Quoted(encoding) + " is declared, which nobody heeds",
            "save the document as UTF-8, and declare that");
    }

    // Whether what comes next still belongs in front of the root element.
    bool IsBeforeRoot() const {
        const size_t tag = fText.find('<', fAt);
        return tag == kNone || (tag + 1 < fText.size() && (fText[tag + 1] == '!' || fText[tag + 1] == '?'));
    }

    void ReadBeforeRoot() {
        const size_t from = fAt;
        fAt = std::min(fText.find('<', fAt), fText.size());
        if (fAt == fText.size()) return;
        if (!IsAt("<!DOCTYPE")) CheckGap(from);
        if (IsAt("<!--")) return ReadComment();
        const size_t end = EndOf(IsAt("<?") ? "?>" : ">", fAt);
        if (end == kNone) Add("D01", fAt, Quoted(fText.substr(fAt)) + " is not closed", "close it");
        fAt = std::min(end, fText.size());
    }

    // The reader passes over one character there and wants a blank behind it.
    void CheckGap(size_t from) {
        if (from == 0 || fAt - from != 1) return;
        Add("D03", fAt, "one line end or blank stands in front of a comment before the root element",
            "leave an empty line between them");
    }

    // In an element

    void ReadContent() {
        ReadText();
        if (fAt >= fText.size()) return;
        if (IsAt("</")) return ReadEndTag();
        if (IsAt("<!--")) return ReadComment();
        if (IsAt("<!")) return ReadDeclarationInContent();
        if (IsAt("<?")) return ReadInstruction();
        ReadStartTag();
    }

    void ReadInstruction() {
        const size_t end = EndOf("?>", fAt);
        if (end == kNone)
            Add("D01", fAt, "an instruction is not closed: the reader stops here without a word", "close it with ?>");
        fAt = std::min(end, fText.size());
    }

    void ReadComment() {
        constexpr std::string_view kStart = "<!--", kEnd = "-->";
        const size_t end = EndOf(kEnd, fAt + kStart.size());
        if (end == kNone) {
            Add("D01", fAt, "a comment is not closed: the reader stops here without a word", "close it with -->");
            return Stop();
        }
        NoteComment(fText.substr(fAt + kStart.size(), end - fAt - kStart.size() - kEnd.size()));
        fAt = end;
    }

    void NoteComment(std::string_view comment) {
        constexpr std::string_view kWord = "kyr-check";
        const size_t start = comment.find_first_not_of(" \t\r\n");
        if (start == kNone || comment.compare(start, kWord.size(), kWord) != 0) return;
        fMarkup.comments.push_back({LineAt(fAt), std::string(comment.substr(start + kWord.size())), nullptr});
        ++fWaiting;
    }

    // CDATA and others of its kind.
    void ReadDeclarationInContent() {
        constexpr std::string_view kData = "<![CDATA[";
        const bool isData = IsAt(kData);
        Add("D01", fAt,
            (isData ? "CDATA" : Quoted(fText.substr(fAt, fText.find('>', fAt) - fAt + 1))) +
                std::string(": the reader stops here without a word"),
            isData ? "write the text with &lt; and &amp; in place of < and &" : "remove it");
        const size_t end = EndOf(isData ? "]]>" : ">", fAt);
        if (isData && end != kNone) AddText(fText.substr(fAt + kData.size(), end - fAt - kData.size() - 3));
        fAt = std::min(end, fText.size());
    }

    void ReadText() {
        while (fAt < fText.size() && fText[fAt] != '<') {
            if (fText[fAt] == '&') {
                ReadReference();
                continue;
            }
            const size_t end = std::min(fText.find_first_of("<&", fAt), fText.size());
            AddText(fText.substr(fAt, end - fAt));
            fAt = end;
        }
    }

    void AddText(std::string_view text) { fOpen.back()->text += text; }

    void ReadReference() {
        constexpr size_t kLongest = 12;
        const size_t at = fAt;
        const size_t end = fText.substr(0, at + kLongest).find(';', at);
        const std::string_view name = end == kNone ? std::string_view() : fText.substr(at + 1, end - at - 1);
        if (name.size() > 1 && name[0] == '#' && ReadNumber(at, name.substr(1))) {
            fAt = end + 1;
            return;
        }
        for (const TReference& reference : kReferences) {
            if (!EqualsUpper(name, reference.name)) continue;
            fAt = end + 1;
            return AddText(reference.text);
        }
        Add("D17", at, "the reader refuses the reference " + Quoted(fText.substr(at, end == kNone ? 1 : end - at + 1)),
            "write &amp; for &; the others are &lt; &gt; &apos; &quot;");
        AddText("&");
        fAt = at + 1;
    }

    // Returns whether it is a number.
    bool ReadNumber(size_t at, std::string_view digits) {
        const bool isHex = ToUpper(digits[0]) == 'X';
        if (isHex) digits.remove_prefix(1);
        unsigned long number = 0;
        for (const char c : digits) {
            const bool isDigit = isHex ? std::isxdigit(static_cast<unsigned char>(c)) != 0 : c >= '0' && c <= '9';
            if (!isDigit) return false;
            const int digit = c <= '9' ? c - '0' : ToUpper(c) - 'A' + 10;
            number = number * (isHex ? 16 : 10) + static_cast<unsigned long>(digit);
        }
        if (digits.empty()) return false;
        if (number == 0 || number > 127)
            Add("D05", at,
                "the reference &#" + std::string(isHex ? "x" : "") + std::string(digits) + "; is read as the byte " +
                    std::to_string(number % 256),
                "write the character itself, in UTF-8");
        AddText(std::string(1, static_cast<char>(number % 256)));
        return true;
    }

    // Tags

    void ReadStartTag() {
        const size_t start = fAt++;
        const std::string_view name = fAt < fText.size() && IsNameStart(fText[fAt]) ? ReadName() : std::string_view();
        if (name.empty()) return RefuseTag(start);
        if (++fParts > TMarkup::kMostParts) return Cut();
        Open(name, start);
        while (ReadAttribute()) {
        }
        EndTag();
    }

    void RefuseTag(size_t start) {
        Add("D17", start, "a '<' begins no tag", "write &lt; for the character");
        if (!fOpen.empty()) AddText("<");
    }

    void Open(std::string_view name, size_t start) {
        TElement* const parent = fOpen.empty() ? nullptr : fOpen.back();
        TElement& element = fMarkup.elements.emplace_back();
        element.name = name;
        element.line = LineAt(start);
        element.parent = parent;
        if (parent != nullptr) parent->children.push_back(&element);
        fOpen.push_back(&element);
        for (; fWaiting > 0; --fWaiting) fMarkup.comments[fMarkup.comments.size() - fWaiting].element = &element;
    }

    // Returns whether there may be another one.
    bool ReadAttribute() {
        const size_t before = fAt;
        SkipBlanks();
        if (fAt >= fText.size() || fText[fAt] == '>' || fText[fAt] == '/') return false;
        const size_t start = fAt;
        const std::string_view name = IsNameStart(fText[fAt]) ? ReadName() : std::string_view();
        if (name.empty()) return RefuseAttribute(start, name);
        if (start == before)
            Add("D17", start, "there is no blank in front of the attribute " + Quoted(name), "put one there");
        SkipBlanks();
        if (!IsAt("=")) return RefuseValue(name);
        ++fAt;
        SkipBlanks();
        if (!IsAt("\"") && !IsAt("'")) return RefuseValue(name);
        return ReadValue(name);
    }

    bool RefuseAttribute(size_t at, std::string_view name) {
        const std::string what = name.empty() ? std::string(1, fText[at]) : std::string(name);
        Add("D17", at, Quoted(what) + " is where an attribute should be",
            "mend the tag: NAME=\"value\" NAME=\"value\"");
        SkipToEndOfTag();
        return false;
    }

    // Takes the word in its place.
    bool RefuseValue(std::string_view name) {
        const size_t end = std::min(fText.find_first_of(" \t\r\n<>/", fAt), fText.size());
        Add("D17", fAt, "the attribute " + Quoted(name) + " has no value in quotes",
            "write " + std::string(name) + "=\"...\"");
        AddAttribute(name, fText.substr(fAt, end - fAt));
        fAt = end;
        return !fMarkup.isCut;
    }

    bool ReadValue(std::string_view name) {
        const size_t start = fAt;
        const size_t end = fText.find(fText[fAt], fAt + 1);
        if (IsOpen(start, end)) return RefuseOpenValue(start, end, name);
        const std::string_view value = fText.substr(start + 1, end - start - 1);
        const size_t wrong = value.find_first_of("<&");
        if (wrong != kNone)
            Add("D04", start,
                "the value of " + std::string(name) + " has " +
                    (value[wrong] == '<'
                         ? "a '<'"
                         : "the reference " + Quoted(value.substr(wrong, value.find(';', wrong) - wrong + 1))) +
                    " in it",
                "the reader takes neither & nor < in a value of an attribute: use other words");
        AddAttribute(name, value);
        fAt = end + 1;
        return !fMarkup.isCut;
    }

    // A value runs on to the next quote, so one that is not closed reaches into the next tag or the next attribute.
    bool IsOpen(size_t start, size_t end) const {
        if (end == kNone) return true;
        const std::string_view value = fText.substr(start + 1, end - start - 1);
        const size_t tag = value.find('<');
        if (tag != kNone && value.substr(0, tag).find_first_of(">\n") != kNone) return true;
        const bool isFollowed = end + 1 < fText.size() && IsNamePart(fText[end + 1]);
        return isFollowed && !value.empty() && value.back() == '=';
    }

    bool RefuseOpenValue(size_t start, size_t end, std::string_view name) {
        const bool isEndless = end == kNone && fText.find_first_of("<&", start) == kNone;
        fIsEndless |= isEndless;
        Add("D02", start,
            "the value of " + std::string(name) + " is not closed" +
                (isEndless ? ": the reader would never come to an end" : ""),
            "close it with " + std::string(1, fText[start]));
        const size_t stop = std::min(fText.find_first_of(" \t\r\n>/", start), fText.size());
        AddAttribute(name, fText.substr(start + 1, stop - start - 1));
        fAt = stop;
        return true;
    }

    void AddAttribute(std::string_view name, std::string_view value) {
        std::vector<TAttribute>& attributes = fOpen.back()->attributes;
        const auto isSame = [name](const TAttribute& attribute) { return EqualsUpper(attribute.name, name); };
        if (attributes.size() < kMostCompared && std::any_of(attributes.begin(), attributes.end(), isSame))
            Add("D07", fAt,
                "the attribute " + Quoted(name) + " stands twice: names in upper and lower case are the same",
                "remove one of them");
        attributes.push_back({name, value});
        if (++fParts > TMarkup::kMostParts) Cut();
    }

    void SkipToEndOfTag() {
        const size_t end = fText.find_first_of("<>", fAt);
        fAt = end == kNone ? fText.size() : end - (end > fAt && fText[end] == '>' && fText[end - 1] == '/' ? 1 : 0);
    }

    // The '>' or "/>" of a start tag.
    void EndTag() {
        const size_t at = fAt;
        if (IsAt("/>")) {
            fAt += 2;
            return Close(1);
        }
        if (IsAt(">"))
            ++fAt;
        else if (!fMarkup.isCut && fAt < fText.size() && fText[fAt] != '<')
            RefuseEnd(at);
    }

    void RefuseEnd(size_t at) {
        Add("D17", at, "the tag of " + Quoted(fOpen.back()->name) + " does not end here as it should",
            "end it with > or />");
        SkipToEndOfTag();
        if (IsAt("/>"))
            EndTag();
        else if (IsAt(">"))
            ++fAt;
    }

    void ReadEndTag() {
        const size_t start = fAt;
        fAt += 2;
        const std::string_view name = ReadName();
        const size_t count = CountOpenUntil(name);
        // The reader compares as many characters as the start tag's name has.
        if (count != 1 && !StartsWith(name, fOpen.back()->name)) RefuseEndTag(start, name, count);
        SkipBlanks();
        if (IsAt(">"))
            ++fAt;
        else
            SkipPastEndTag(start);
        Close(std::max(count, size_t{1}));  // a misspelt one is meant for the innermost element
    }

    void RefuseEndTag(size_t at, std::string_view name, size_t count) {
        const std::string open(fOpen.back()->name);
        Add("D17", at,
            count == 0 ? "</" + CutText(VisibleText(name), kLongestShown) + "> ends no element that is open here"
                       : "<" + open + "> of line " + std::to_string(fOpen.back()->line) +
                             " is not closed in front of </" + std::string(name) + ">",
            "close it with </" + open + ">");
    }

    void SkipPastEndTag(size_t start) {
        Add("D17", start, "an end tag does not end with >", "write it as </NAME>");
        SkipToEndOfTag();
        if (IsAt(">")) ++fAt;
    }

    // How many elements the end tag closes; 0 if it belongs to none. It is looked for among the inner ones only.
    size_t CountOpenUntil(std::string_view name) const {
        for (size_t count = 1; count <= std::min(fOpen.size(), kMostCompared); ++count)
            if (fOpen[fOpen.size() - count]->name == name) return count;
        return 0;
    }

    void Close(size_t count) {
        for (; count > 0; --count) {
            fOpen.back()->endLine = LineAt(fAt);
            fOpen.pop_back();
        }
    }

    void ReportOpen() {
        const TElement& element = *fOpen.back();
        if (fMarkup.isCut || fIsEndless) return;
        TPlace place = fMarkup.PlaceOf(element);
        fFindings.Add("D17", place, "the element " + Quoted(element.name) + " is not closed before the document ends",
                      "close it with </" + std::string(element.name) + ">");
    }

    void ReadBehindRoot() {
        while (fAt < fText.size() && !fMarkup.elements.empty()) {
            SkipBlanks();
            if (IsAt("<!--"))
                ReadComment();
            else if (IsAt("<?"))
                ReadInstruction();
            else if (fAt < fText.size()) {
                Add("D09", fAt, "something stands behind the root element, where nobody reads it",
                    "move it into the root element, or remove it");
                Stop();
            }
        }
    }

    static constexpr size_t kMostCompared = 50;
    static constexpr size_t kMostMistakes = 10000;

    TMarkup& fMarkup;
    std::string_view fText;
    TFindings& fFindings;
    size_t fAt = 0;  // what is read next
    size_t fLine = 1;
    size_t fLineAt = 0;  // where fLine is the line
    size_t fParts = 0;
    size_t fMistakes = 0;
    bool fIsEndless = false;
    std::vector<TElement*> fOpen;
    size_t fWaiting = 0;  // that many of the comments, the last ones, wait for their element
};

}  // namespace

bool TElement::Is(std::string_view upperName) const { return EqualsUpper(name, upperName); }

std::string TElement::Get(std::string_view upperName) const {
    for (const TAttribute& attribute : attributes)
        if (EqualsUpper(attribute.name, upperName)) return std::string(attribute.value);
    return "";
}

bool TElement::Has(std::string_view upperName) const {
    return std::any_of(attributes.begin(), attributes.end(),
                       [&](const TAttribute& attribute) { return EqualsUpper(attribute.name, upperName); });
}

bool IsProperty(const TElement& element) {
    return element.Is("PROPERTY") || element.Is("PROPERTY.ARRAY") || element.Is("PROPERTY.REFERENCE");
}

TPlace TMarkup::PlaceOf(const TElement& element) const {
    constexpr size_t kDeepest = 20;
    TPlace place{file, element.line};
    size_t depth = 0;
    for (const TElement* at = &element; at != nullptr && depth < kDeepest; at = at->parent, ++depth) {
        if (IsProperty(*at) && place.property.empty()) place.property = at->Get("NAME");
        if (at->Is("CLASS")) place.cls = at->Get("NAME");
        if (at->Is("INSTANCE")) place.cls = at->Get("CLASSNAME");
    }
    return place;
}

TMarkup ReadMarkup(const std::string& file, std::string_view text, TFindings& findings) {
    TMarkup markup{file};
    TMarkupReader(markup, text, findings).Read();
    return markup;
}
