#ifndef KYR_HOST_SAVED_DOCUMENTSCAN_H
#define KYR_HOST_SAVED_DOCUMENTSCAN_H

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// How much of what is multiplied in a container is no harm.
struct TScanLimits {
    size_t classes;         ///< also of one that derives from the next
    size_t products;        ///< classes times what they declare, and instances times properties
    size_t qualifierBytes;  ///< classes times the text of all qualifiers, since a class may inherit them
};

/// Tells of documents in one pass, without building anything, that the core's reader gets to their ends, soon and with
/// little memory: every value of an attribute is closed in its tag, there are only elements that a schema and its
/// instances need, each where it belongs, and they do not declare so much that instances and classes would multiply it.
/// What is unusual is not harmless, though it may well be: only trying it can tell.
class TDocumentScan {
public:
    /// Takes the next piece of a document.
    void Add(std::string_view piece);
    void EndDocument();
    /// Whether all documents together are harmless, which were ended.
    bool IsHarmless(const TScanLimits& limits) const;

private:
    class TMarks;
    enum EPlace : uint8_t;
    struct TChild;

    static const TChild* FindChild(EPlace place, std::string_view tag);
    bool Pass(std::string_view text, size_t at, TMarks& marks);
    static bool PassTo(std::string_view end, std::string_view text, size_t from, TMarks& marks);
    bool PassTag(std::string_view text, size_t at, TMarks& marks);
    void StartElement(std::string_view tag, size_t offset);
    void EndElement(size_t offset);
    void Count(EPlace place, std::string_view tag, size_t offset);
    void NoteReference(std::string_view tag);

    std::string fRest;  // of the piece before: a tag or comment that was cut
    size_t fSize = 0;
    std::vector<EPlace> fPlaces;  // the elements that are open
    size_t fClasses = 0;
    size_t fInstances = 0;
    size_t fProperties = 0;  // that classes declare
    size_t fQualifiers = 0;
    size_t fQualifierStart = 0;
    size_t fQualifierBytes = 0;
    std::set<std::string, std::less<>> fReferences;  // the names of reference properties
    bool fIsUnusual = false;
};

#endif
