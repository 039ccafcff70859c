// The reader of EDIDs: of the bytes as they are, and with the beginning that every EDID has.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Edid.h"
#include "support/FuzzSupport.h"

namespace {

bool IsText(const std::string& text) { return !text.empty() && text.size() <= 13; }

void Check(const std::string& bytes) {
    const std::optional<TEdid> edid = ParseEdid(bytes);
    if (!edid) return;
    Require(bytes.size() >= 128, "an EDID has a whole block");
    Require(edid->manufacturerId.empty() || edid->manufacturerId.size() == 3, "a maker has three letters");
    Require(edid->width.has_value() == edid->height.has_value(), "a picture has both sizes or none");
    Require(!edid->width || DiagonalInches(*edid->width, *edid->height) > 0, "a picture has a diagonal");
    Require(edid->extensionKinds.size() <= std::min<size_t>(edid->extensions, bytes.size() / 128 - 1),
            "extensions are whole");
    Require((edid->state == EEdidState::eTruncated) == (edid->extensionKinds.size() < edid->extensions),
            "what is missing is told");
    Require(edid->model.empty() || IsText(edid->model), "a name fits its descriptor");
    Require(edid->otherTexts.size() <= 4 && std::all_of(edid->otherTexts.begin(), edid->otherTexts.end(), IsText),
            "texts fit their descriptors");
    if (!edid->timing) return;
    Require(edid->timing->width > 0 && edid->timing->height > 0, "a resolution has pixels");
    Require(std::isfinite(edid->timing->refresh) && edid->timing->refresh >= 0, "a refresh rate is a number");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TByteReader input(data, size);
    const std::string bytes = input.Bytes(size);
    Check(bytes);
    if (bytes.size() < 8) return 0;
    Check(std::string("\0\xff\xff\xff\xff\xff\xff\0", 8) + bytes.substr(8));
    return 0;
}
