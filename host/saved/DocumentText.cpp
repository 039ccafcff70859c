#include "saved/DocumentText.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <vector>

#include "saved/CimXmlWriter.h"
#include "saved/DocumentScan.h"

namespace {

constexpr size_t kNone = std::string_view::npos;
constexpr size_t kPieceSize = 1 << 16;
constexpr size_t kEndSize = 4096;
constexpr TScanLimits kScanLimits = {2000, SIZE_MAX, size_t{128} << 20};

using TGzipFile = std::unique_ptr<gzFile_s, int (*)(gzFile)>;

// The last four bytes of a compressed file tell, in little-endian order, how large it was. The core's reader believes
// them, and takes each path with ".gz" in it for that of a compressed file.
size_t SizeOfText(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (path.find(".gz") == std::string::npos) return static_cast<size_t>(file.tellg());
    unsigned char bytes[4] = {};
    file.seekg(-4, std::ios::end);
    file.read(reinterpret_cast<char*>(bytes), sizeof bytes);
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<size_t>(bytes[3]) << 24;
}

unsigned long ChecksumOf(std::string_view text, unsigned long before) {
    return crc32_z(before, reinterpret_cast<const Bytef*>(text.data()), text.size());
}

void AddPiece(TDocumentEnds& ends, std::string_view piece) {
    if (ends.start.empty()) ends.start = piece.substr(0, kEndSize);
    ends.hasNul |= piece.find('\0') != kNone;
    ends.end.append(piece);
    const size_t covered = ends.end.size() - std::min(ends.end.size(), kEndSize);
    ends.checksum = ChecksumOf(std::string_view(ends.end).substr(0, covered), ends.checksum);
    ends.end.erase(0, covered);
}

size_t FindBehind(std::string_view text, std::string_view mark, size_t from) {
    const size_t found = text.find(mark, from);
    return found == kNone ? kNone : found + mark.size();
}

struct TStartTag {
    size_t end = kNone;        // its '>'
    size_t openValue = kNone;  // the quote of a value that is not closed
};

TStartTag FindEndOfTag(std::string_view text, size_t at) {
    constexpr const char* kStops = "\"'>";
    at = text.find_first_of(kStops, at);
    while (at != kNone && text[at] != '>') {
        const size_t close = text.find(text[at], at + 1);
        if (close == kNone) return {kNone, at};
        at = text.find_first_of(kStops, close + 1);
    }
    return {at};
}

// Whether the last tag of the text has a value that nothing ends. A '&' would: the reader refuses it.
bool IsEndless(std::string_view text, size_t tag) {
    constexpr std::string_view kNoStartTag = "!?/";
    if (tag + 1 >= text.size() || kNoStartTag.find(text[tag + 1]) != kNone) return false;
    const size_t value = FindEndOfTag(text, tag).openValue;
    return value != kNone && text.find('&', value) == kNone;
}

/// Goes from tag to tag as the core's reader does, as far as it comes without an error.
class TTagWalk {
public:
    explicit TTagWalk(std::string_view text) : fText(text) {}

    bool Reaches(size_t tag) {
        size_t at = 0;
        while (at < tag && !fIsEnded) at = fText.find('<', Pass(at));
        return at == tag && !fIsEnded;
    }

private:
    // Gives where the text goes on behind the tag.
    size_t Pass(size_t at) {
        switch (fText[at + 1]) {
            case '?':
                return FindBehind(fText, "?>", at);
            case '!':
                return PassDeclaration(at);
            case '/':
                CloseElement();
                return at + 1;
            default:
                return PassStartTag(at);
        }
    }

    // In an element the reader takes nothing but comments, and ends at anything else.
    size_t PassDeclaration(size_t at) {
        constexpr std::string_view kComment = "<!--";
        if (fText.substr(at, kComment.size()) == kComment) return FindBehind(fText, "-->", at + kComment.size());
        return fDepth == 0 ? FindBehind(fText, ">", at) : kNone;
    }

    size_t PassStartTag(size_t at) {
        const size_t end = FindEndOfTag(fText, at).end;
        ++fDepth;
        if (end != kNone && fText[end - 1] == '/') CloseElement();
        return end;
    }

    void CloseElement() { fIsEnded = --fDepth == 0; }

    const std::string_view fText;
    int fDepth = 0;
    bool fIsEnded = false;  // with the end of the root element
};

// Whether FindEndlessValue could find one, as far as the ends tell.
bool MayBeEndless(const TDocumentEnds& ends) {
    const size_t tag = ends.end.rfind('<');
    return ends.hasNul || tag == kNone || IsEndless(ends.end, tag);
}

}  // namespace

bool ForEachPiece(const std::string& path, const std::function<void(std::string_view)>& action) {
    const TGzipFile file(gzopen(path.c_str(), "rb"), gzclose_r);
    size_t rest = SizeOfText(path);
    if (file == nullptr || rest > TCimXmlWriter::kLargestDocument) return false;
    std::vector<char> piece(kPieceSize);
    while (rest > 0) {
        const auto wanted = static_cast<unsigned int>(std::min(rest, piece.size()));
        if (gzread(file.get(), piece.data(), wanted) != static_cast<int>(wanted)) return false;
        action(std::string_view(piece.data(), wanted));
        rest -= wanted;
    }
    return true;
}

TDocumentEnds ReadDocumentEnds(const std::string& path) {
    TDocumentEnds ends;
    TDocumentScan scan;
    const bool isRead = ForEachPiece(path, [&](std::string_view piece) {
        AddPiece(ends, piece);
        scan.Add(piece);
    });
    scan.EndDocument();
    ends.isHarmless = scan.IsHarmless(kScanLimits);
    return isRead ? ends : TDocumentEnds();
}

std::string ReadDocumentText(const std::string& path) {
    std::string text;
    return ForEachPiece(path, [&](std::string_view piece) { text.append(piece); }) ? text : "";
}

size_t FindEndlessValue(std::string_view document) {
    const std::string_view text = document.substr(0, document.find('\0'));
    const size_t tag = text.rfind('<');  // a value that reaches another tag is refused there
    if (tag == kNone || !IsEndless(text, tag)) return kNone;
    return TTagWalk(text).Reaches(tag) ? tag : kNone;
}

size_t LineOfEndlessValue(const std::string& path, const TDocumentEnds& ends) {
    if (!MayBeEndless(ends)) return 0;
    const std::string text = ReadDocumentText(path);
    const size_t at = FindEndlessValue(text);
    if (at == std::string::npos) return 0;
    return 1 + static_cast<size_t>(std::count(text.begin(), text.begin() + static_cast<long>(at), '\n'));
}
