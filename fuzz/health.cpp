// What disks answer: a byte that says which kind of disk it is, and then each answer with a byte for its length in
// front.
#include <algorithm>
#include <cstdint>

#include "HealthFacts.h"
#include "NvmePages.h"
#include "ScsiPages.h"
#include "support/FuzzSupport.h"

namespace {

void CheckNvme(const std::string& page) {
    ParseNvmeIdentify(page);
    const std::optional<TNvmeHealth> health = ParseNvmeHealth(page);
    if (!health) return;
    Require(!health->bytesWritten || *health->bytesWritten % 512'000 == 0, "a disk counts units");
    Require(NvmeWarnings(health->criticalWarning).empty() == (health->criticalWarning == 0), "each bit has a text");
}

void CheckScsi(const std::string& page) {
    for (const uint8_t number : {0x0d, 0x11, 0x15, 0x2f})
        for (uint16_t code = 0; code < 3; ++code)
            Require(FindScsiParameter(page, number, code).size() <= page.size(), "a parameter stands in its page");
    ScsiTemperature(page);
    ScsiReferenceTemperature(page);
    ScsiPercentageUsed(page);
    ScsiPowerOnHours(page);
    ParseScsiExceptions(page);
    ParseAtaSense(page);
}

// Of nothing, registers, a part of a page, and a page.
constexpr size_t kLengths[] = {0, 7, 300, 512};

// A disk that gives one answer after the other, whatever it is asked for.
void CheckAta(TByteReader& input) {
    size_t asked = 0;
    const TAskDisk ask = [&](const std::string& disk, EDiskPage page) {
        ++asked;
        return TFact<std::string>::Of(input.Bytes(input.Pick(kLengths)), SourceOf(disk, page));
    };
    TDiskPages pages("sda", ask);
    TDiskHealth health{};
    ReadAtaHealth(pages, health);
    Require(asked <= 9, "each question is asked once");
    Require(health.attributes.size() <= 30, "a page has so many attributes");
    for (const TSmartAttribute& attribute : health.attributes) Require(attribute.id != 0, "an attribute has a number");
    Require(!health.isAsleep.ValueOr(false) || asked == 1, "a disk that sleeps is left alone");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TByteReader input(data, size);
    switch (input.Byte() % 3) {
        case 0:
            CheckNvme(input.Bytes(size));
            break;
        case 1:
            CheckScsi(input.Bytes(size));
            break;
        default:
            CheckAta(input);
    }
    return 0;
}
