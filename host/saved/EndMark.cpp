#include "saved/EndMark.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "saved/DocumentText.h"

namespace {

constexpr const char* kMarkFormat = "<!-- classes: %zu, instances: %zu, CRC-32 of all before: ";
constexpr size_t kMarkEndSize = sizeof "01234567 -->\n" - 1;
constexpr size_t kLargestMark = 128;

std::string_view LastOf(std::string_view text) {
    return text.substr(text.size() - std::min(text.size(), kLargestMark));
}

// In both the announcement and the mark, so that damage to one of them leaves the other.
bool NamesChecksum(std::string_view line) { return line.find("CRC-32") != std::string_view::npos; }

bool IsAnnounced(const TDocumentEnds& ends) {
    return NamesChecksum(std::string_view(ends.start).substr(0, kLargestMark)) || NamesChecksum(LastOf(ends.end));
}

// Whether the text ends in a mark, up to its CRC-32.
bool ReadMarkStart(std::string_view text, TContents& contents) {
    const std::string_view end = LastOf(text);
    const size_t start = end.rfind("<!--");
    if (start == std::string_view::npos) return false;
    const std::string mark(end.substr(start));
    return std::sscanf(mark.c_str(), kMarkFormat, &contents.classes, &contents.instances) == 2 &&
           mark == EndMarkStart(contents);
}

}  // namespace

std::string EndMarkStart(const TContents& contents) {
    char text[kLargestMark];
    std::snprintf(text, sizeof text, kMarkFormat, contents.classes, contents.instances);
    return text;
}

std::string EndMarkEnd(unsigned long checksum) {
    char text[kLargestMark];
    std::snprintf(text, sizeof text, "%08lx -->\n", checksum);
    return text;
}

TEndMark FindEndMark(const TDocumentEnds& ends) {
    TContents contents;
    const std::string_view end = ends.end, covered = end.substr(0, end.size() - std::min(end.size(), kMarkEndSize));
    if (!ReadMarkStart(covered, contents)) return {IsAnnounced(ends) ? TEndMark::eDamaged : TEndMark::eNone};
    const unsigned long checksum =
        crc32_z(ends.checksum, reinterpret_cast<const Bytef*>(covered.data()), covered.size());
    const bool isSame = end.substr(covered.size()) == EndMarkEnd(checksum);
    return {isSame ? TEndMark::eIntact : TEndMark::eChanged, contents};
}
