#ifndef KYR_HOST_SAVED_DOCUMENTTEXT_H
#define KYR_HOST_SAVED_DOCUMENTTEXT_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/// The ends of a document's text, as the core's reader gets it: uncompressed.
struct TDocumentEnds {
    std::string start;           ///< the first bytes
    std::string end;             ///< the last bytes
    unsigned long checksum = 0;  ///< the CRC-32 of all before the end
    bool hasNul = false;         ///< a NUL byte, at which the reader stops
    bool isHarmless = false;     ///< as TDocumentScan tells
};

/// Gives the text, piece by piece. Returns false if the reader cannot get it.
bool ForEachPiece(const std::string& path, const std::function<void(std::string_view)>& action);

/// Goes once through the text. All is empty if the reader cannot get it.
TDocumentEnds ReadDocumentEnds(const std::string& path);
/// The whole text; empty if the reader cannot get it.
std::string ReadDocumentText(const std::string& path);

/// Where the tag begins in which the core's reader would go on for ever, because an attribute value in it is not closed
/// before the document ends; npos if it gets to the end. Of no use for documents that it refuses.
size_t FindEndlessValue(std::string_view document);
/// The line of that tag, from 1; 0 if the reader gets to the end of the document. The ends are those of the same file.
size_t LineOfEndlessValue(const std::string& path, const TDocumentEnds& ends);

#endif
