#ifndef KYR_PLUGINS_GRAPHICS_EDID_H
#define KYR_PLUGINS_GRAPHICS_EDID_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Numbers of the ValueMap of EDIDState.
enum class EEdidState : uint16_t { eIntact = 1, eWrongChecksum = 2, eTruncated = 3, eNoEdid = 4 };

/// A mode that a monitor describes in full.
struct TEdidTiming {
    uint32_t width;   ///< in pixels
    uint32_t height;  ///< in lines, of both fields if interlaced
    double refresh;   ///< frames per second, fields if interlaced
    bool interlaced;
};

/// What a monitor tells of itself (VESA E-EDID). Of an EDID that is damaged, what its bytes say all the same.
struct TEdid {
    EEdidState state = EEdidState::eIntact;
    std::string version;         ///< "1.4"
    std::string manufacturerId;  ///< three letters; empty if there are none
    uint16_t productCode = 0;
    std::optional<uint32_t> idSerialNumber;  ///< without the numbers that stand for none
    std::string serialNumber;                ///< the text; empty if there is none or it is a placeholder
    std::string model;                       ///< empty if there is none
    std::vector<std::string> otherTexts;
    std::optional<uint8_t> week;  ///< 1 to 54
    std::optional<uint16_t> year;
    std::optional<uint16_t> modelYear;
    bool isDigital = false;
    std::optional<uint16_t> digitalInterface;  ///< as in EDID 1.4: 1 is DVI, 5 DisplayPort
    std::optional<uint16_t> bitsPerColor;
    std::optional<uint32_t> width;  ///< of the image, in millimetres; both are there or neither
    std::optional<uint32_t> height;
    std::optional<double> gamma;
    std::optional<TEdidTiming> timing;     ///< that the monitor prefers
    uint8_t extensions = 0;                ///< how many blocks should follow the first one
    std::vector<uint16_t> extensionKinds;  ///< of those that do
};

/// Nothing if the bytes do not begin as an EDID does.
std::optional<TEdid> ParseEdid(std::string_view bytes);

/// In inches, of an image of so many millimetres.
double DiagonalInches(uint32_t width, uint32_t height);

#endif
