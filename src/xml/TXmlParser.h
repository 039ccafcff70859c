#ifndef KYR_XML_TXMLPARSER_H
#define KYR_XML_TXMLPARSER_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A small non-validating XML parser: one forward pass over a text in memory, which it changes in place, with a virtual
/// callback for each event. It works on bytes and accepts what existing CIM-XML documents use; it is no general parser.
class TXmlParser {
public:
    using TAttributes = std::map<std::string, std::string>;

    TXmlParser();
    TXmlParser(const TXmlParser&) = delete;
    TXmlParser& operator=(const TXmlParser&) = delete;
    virtual ~TXmlParser();

    /// The attributes are keyed by their lower-cased names. The map is valid until the element ends and may be changed.
    virtual void StartElement(const char* name, TAttributes& attributes) = 0;
    virtual void EndElement(const char* name) = 0;
    virtual void processingInstruction(const char* target, const char* data) = 0;
    /// Called for each run of text and for each reference; the text ends with a NUL.
    virtual void characters(const char* text, unsigned int length) = 0;
    virtual void notationDecl(const char* name, const char* first, const char* second) = 0;
    /// Called for each syntax error. An override may raise an exception.
    virtual void FatalError(const char* message) = 0;

    /// Parses a text that ends with a NUL and has another readable NUL before its first byte. Attribute names in the
    /// text are lower-cased; after an exception the text is unusable. An attribute value without its closing quote
    /// makes this call loop forever.
    void Parse(char* text);
    /// The line number of the next character, counted in line feeds from 1.
    unsigned int GetCurLine();

    bool ParseProlog();
    bool ParseMisc();
    bool ParseXMLDecl();
    bool ParseDocTypeDecl();
    bool ParseProcessingInstruction();
    bool ParseNotationDecl();
    bool ParseElement();
    bool ParseCharData();
    bool ValidateName();
    bool SkipComment();
    bool SkipWhitespace();

    /// At the end of the text GetChar returns 0 and does not advance; UngetChar steps back even then.
    int GetChar() { return *fNext == '\0' ? 0 : *fNext++; }
    int PeekChar() const { return *fNext; }
    void UngetChar() { --fNext; }

protected:
    char* fNext = nullptr;
    char* fStart = nullptr;

    /// tolower, from a table.
    char ToLower(int c) const { return fLower[static_cast<unsigned char>(c)]; }

private:
    struct TAttribute {
        std::string_view name;
        std::string_view value;
    };

    bool Refuse(const char* message);
    void Unget(int count) { fNext -= count; }
    bool SkipBehind(const char* mark);

    bool ParseContent();
    void ParseReference();
    void ParseNumericReference();
    bool SkipName(std::string_view name);
    void InsertAttribute(TAttributes& attributes, TAttributes::iterator hint, const TAttribute& attribute);

    // Inline, because they are called for every element and the calls would show in the time of a document.
    inline TAttributes& AttributesOfLevel();
    inline bool ParseAttributes(TAttributes& attributes);
    inline bool ParseAttribute(TAttributes& attributes);
    inline bool ParseAttributeName();
    inline bool SkipToQuote(char quote);
    inline bool TakeAttribute(TAttributes& attributes, const TAttribute& attribute);
    inline void FillAttributes(TAttributes& attributes);
    inline bool ParseText();
    [[gnu::always_inline]] inline bool ParseElementEnd(const char* name, std::size_t length);
    inline char HideByte(char* position);
    inline void ShowByte(char* position, char byte);

    char fLower[256];
    char fLowerInName[256];      // NUL for what is not part of a name
    const char* fEnd = nullptr;  // the NUL at the end of the text
    // One map for each nesting level. The next element of a level reuses the map with its nodes.
    std::vector<std::unique_ptr<TAttributes>> fLevels;
    std::size_t fDepth = 0;
    // The attributes of the tag being read, sorted by name. If they are more than kFewAttributes, they go into the map,
    // and further ones are added there.
    static constexpr std::size_t kFewAttributes = 16;
    TAttribute fAttributes[kFewAttributes + 1];
    std::size_t fAttributeCount = 0;
    std::vector<TAttributes::node_type> fSpareNodes;

    // Line feeds between fStart and fCountedTo. A line feed that follows an element's name is replaced by a NUL while
    // the element is open, and is not counted then; see docs/oddities.md.
    const char* fCountedTo = nullptr;
    unsigned int fCountedLineEnds = 0;
    unsigned int fHiddenLineEnds = 0;     // replaced by a NUL at present
    unsigned int fHiddenWhenCounted = 0;  // those of them before fCountedTo
};

#endif
