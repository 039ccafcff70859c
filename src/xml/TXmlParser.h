#ifndef KYR_XML_TXMLPARSER_H
#define KYR_XML_TXMLPARSER_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A small non-validating XML reader: one forward pass over a text that it changes in place, reported through the
/// virtual callbacks. It works on bytes and takes and refuses what CIM-XML documents in the field need; it is no
/// general XML parser.
class TXmlParser {
public:
    using TAttributes = std::map<std::string, std::string>;

    TXmlParser();
    TXmlParser(const TXmlParser&) = delete;
    TXmlParser& operator=(const TXmlParser&) = delete;
    virtual ~TXmlParser();

    /// The attributes by their lower-cased names. They stay until the element ends and may be changed freely.
    virtual void StartElement(const char* name, TAttributes& attributes) = 0;
    virtual void EndElement(const char* name) = 0;
    virtual void processingInstruction(const char* target, const char* data) = 0;
    /// Once for each run of text and for each reference; the text ends with a NUL.
    virtual void characters(const char* text, unsigned int length) = 0;
    virtual void notationDecl(const char* name, const char* first, const char* second) = 0;
    /// On each refused construct. It need not return.
    virtual void FatalError(const char* message) = 0;

    /// Reads a document: a text that ends with a NUL and has another readable NUL in front of it. Attribute names
    /// come out lower-cased; after an exception the whole text is spoiled. An attribute value that is not closed
    /// before the end of the text keeps the call from returning.
    void Parse(char* text);
    /// The line of the next character, from 1; only line feeds count.
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

    /// At the end of the text GetChar gives 0 and stands still, but UngetChar steps back from there, too.
    int GetChar() { return *fNext == '\0' ? 0 : *fNext++; }
    int PeekChar() const { return *fNext; }
    void UngetChar() { --fNext; }

protected:
    char* fNext = nullptr;
    char* fStart = nullptr;

    /// What tolower makes of each byte.
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
    void InsertAttribute(TAttributes& attributes, TAttributes::iterator hint, const TAttribute& attribute);

    // Called for every element, and from the source file alone: inline, so that the compiler melts them into one piece
    // of code there.
    inline TAttributes& AttributesOfLevel();
    inline bool ParseAttributes(TAttributes& attributes);
    inline bool ParseAttribute(TAttributes& attributes);
    inline bool SkipToQuote(char quote);
    inline bool TakeAttribute(TAttributes& attributes, const TAttribute& attribute);
    inline void FillAttributes(TAttributes& attributes);
    inline bool ParseText();
    inline bool ParseElementEnd(const char* name, std::size_t length);
    inline char HideByte(char* position);
    inline void ShowByte(char* position, char byte);

    char fLower[256];
    const char* fEnd = nullptr;  // of the text, at its NUL
    // Maps of the open elements; one is filled again, nodes and all, by the next element of its level.
    std::vector<std::unique_ptr<TAttributes>> fLevels;
    std::size_t fDepth = 0;
    // Those of the tag being read, in order of their names. With one more the map is filled, and takes and tests the
    // rest itself.
    static constexpr std::size_t kFewAttributes = 16;
    TAttribute fAttributes[kFewAttributes + 1];
    std::size_t fAttributeCount = 0;
    std::vector<TAttributes::node_type> fSpareNodes;

    // Line ends between fStart and fCountedTo, less those that a NUL behind the name of an open element hides.
    const char* fCountedTo = nullptr;
    unsigned int fCountedLineEnds = 0;
    unsigned int fHiddenLineEnds = 0;     // now
    unsigned int fHiddenWhenCounted = 0;  // of those, the ones in front of fCountedTo
};

#endif
