#ifndef KYR_HOST_SAVED_ENDMARK_H
#define KYR_HOST_SAVED_ENDMARK_H

#include <cstddef>
#include <string>

struct TDocumentEnds;

// The last line of a saved document holds the CRC-32 of all before it, since the core's reader takes much damage for
// the end of the document and reports no error. The first line announces it, so that its loss is noticed too. Both are
// comments, which every reader passes over; see docs/saved-files.md.

/// Follows the XML declaration.
constexpr const char* kEndMarkAnnouncement = "<!-- The last line holds the CRC-32 of all before it. -->";

/// How much a document holds.
struct TContents {
    size_t classes = 0;
    size_t instances = 0;
};

/// The mark up to the CRC-32, which covers it.
std::string EndMarkStart(const TContents& contents);
/// The CRC-32 and the rest of the mark.
std::string EndMarkEnd(unsigned long checksum);

/// What the mark of a document says.
struct TEndMark {
    enum EState {
        eNone,     ///< there is none, and none is announced
        eIntact,   ///< the document is as it was written
        eChanged,  ///< the CRC-32 is that of another document
        eDamaged,  ///< the mark is cut off or cannot be read
    };
    EState state = eNone;
    TContents contents = {};  ///< of the document as it was written; only for eChanged
};

TEndMark FindEndMark(const TDocumentEnds& ends);

#endif
