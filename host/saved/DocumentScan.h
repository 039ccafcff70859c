#ifndef KYR_HOST_SAVED_DOCUMENTSCAN_H
#define KYR_HOST_SAVED_DOCUMENTSCAN_H

#include <cstddef>
#include <string>
#include <string_view>

/// Tells of a document in one pass, without building anything, that the core's reader gets to its end, soon and with
/// little memory: every value of an attribute is closed in its tag, elements are not nested deeply, and it does not
/// declare so much that instances and classes would multiply it. What is unusual is not harmless, though it may well
/// be: only trying it can tell.
class TDocumentScan {
public:
    /// Takes the next piece of the text.
    void Add(std::string_view piece);
    /// To be asked at the end of the text. An instance has all properties of its class, and a class may have all that
    /// any other one declares: so many of them in all, for each byte of the text, are no harm.
    bool IsHarmless(size_t mostForEachByte) const;

private:
    class TMarks;

    bool Pass(std::string_view text, size_t at, TMarks& marks);
    static bool PassTo(std::string_view end, std::string_view text, size_t from, TMarks& marks);
    bool PassTag(std::string_view text, size_t at, TMarks& marks);
    void StartElement(std::string_view tag, bool isEmpty);
    void CountDeclaration(std::string_view tag);
    void EndElement();

    std::string fRest;  // of the piece before: a tag or comment that was cut
    size_t fSize = 0;
    size_t fDepth = 0;
    size_t fDeepest = 0;
    size_t fInstanceDepth = 0;  // how deep the instance begins that is open; 0: none is
    size_t fClasses = 0;
    size_t fInstances = 0;
    size_t fProperties = 0;  // that classes declare
    size_t fQualifiers = 0;
    bool fIsUnusual = false;
};

/// Whether a document is harmless, as the core's reader gets it: uncompressed. False if the reader cannot get it.
bool IsHarmlessDocument(const std::string& path, size_t mostForEachByte);

#endif
