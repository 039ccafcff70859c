// The numbers that ARM processors identify themselves by, as their makers published them.
#include <algorithm>

#include "Models.h"

namespace {

struct TMaker {
    uint32_t implementer;
    const char* name;
};

constexpr TMaker kMakers[] = {
    {0x41, "ARM"},       {0x42, "Broadcom"},  {0x43, "Cavium"},   {0x44, "DEC"},
    {0x46, "FUJITSU"},   {0x48, "HiSilicon"}, {0x49, "Infineon"}, {0x4d, "Motorola/Freescale"},
    {0x4e, "NVIDIA"},    {0x50, "APM"},       {0x51, "Qualcomm"}, {0x53, "Samsung"},
    {0x56, "Marvell"},   {0x61, "Apple"},     {0x66, "Faraday"},  {0x69, "Intel"},
    {0x6d, "Microsoft"}, {0x70, "Phytium"},   {0xc0, "Ampere"},
};

struct TPart {
    uint32_t implementer, part;
    const char* name;
};

constexpr TPart kParts[] = {
    {0x41, 0x810, "ARM810"},
    {0x41, 0x920, "ARM920"},
    {0x41, 0x922, "ARM922"},
    {0x41, 0x926, "ARM926"},
    {0x41, 0x940, "ARM940"},
    {0x41, 0x946, "ARM946"},
    {0x41, 0x966, "ARM966"},
    {0x41, 0xb02, "ARM11 MPCore"},
    {0x41, 0xb36, "ARM1136"},
    {0x41, 0xb56, "ARM1156"},
    {0x41, 0xb76, "ARM1176"},
    {0x41, 0xc05, "Cortex-A5"},
    {0x41, 0xc07, "Cortex-A7"},
    {0x41, 0xc08, "Cortex-A8"},
    {0x41, 0xc09, "Cortex-A9"},
    {0x41, 0xc0d, "Cortex-A17"},
    {0x41, 0xc0e, "Cortex-A17"},
    {0x41, 0xc0f, "Cortex-A15"},
    {0x41, 0xc14, "Cortex-R4"},
    {0x41, 0xc15, "Cortex-R5"},
    {0x41, 0xc17, "Cortex-R7"},
    {0x41, 0xc18, "Cortex-R8"},
    {0x41, 0xd01, "Cortex-A32"},
    {0x41, 0xd02, "Cortex-A34"},
    {0x41, 0xd03, "Cortex-A53"},
    {0x41, 0xd04, "Cortex-A35"},
    {0x41, 0xd05, "Cortex-A55"},
    {0x41, 0xd06, "Cortex-A65"},
    {0x41, 0xd07, "Cortex-A57"},
    {0x41, 0xd08, "Cortex-A72"},
    {0x41, 0xd09, "Cortex-A73"},
    {0x41, 0xd0a, "Cortex-A75"},
    {0x41, 0xd0b, "Cortex-A76"},
    {0x41, 0xd0c, "Neoverse-N1"},
    {0x41, 0xd0d, "Cortex-A77"},
    {0x41, 0xd0e, "Cortex-A76AE"},
    {0x41, 0xd13, "Cortex-R52"},
    {0x41, 0xd40, "Neoverse-V1"},
    {0x41, 0xd41, "Cortex-A78"},
    {0x41, 0xd42, "Cortex-A78AE"},
    {0x41, 0xd43, "Cortex-A65AE"},
    {0x41, 0xd44, "Cortex-X1"},
    {0x41, 0xd46, "Cortex-A510"},
    {0x41, 0xd47, "Cortex-A710"},
    {0x41, 0xd48, "Cortex-X2"},
    {0x41, 0xd49, "Neoverse-N2"},
    {0x41, 0xd4a, "Neoverse-E1"},
    {0x41, 0xd4b, "Cortex-A78C"},
    {0x41, 0xd4c, "Cortex-X1C"},
    {0x41, 0xd4d, "Cortex-A715"},
    {0x41, 0xd4e, "Cortex-X3"},
    {0x41, 0xd4f, "Neoverse-V2"},
    {0x41, 0xd80, "Cortex-A520"},
    {0x41, 0xd81, "Cortex-A720"},
    {0x41, 0xd82, "Cortex-X4"},
    {0x41, 0xd84, "Neoverse-V3"},
    {0x41, 0xd85, "Cortex-X925"},
    {0x41, 0xd87, "Cortex-A725"},
    {0x41, 0xd8e, "Neoverse-N3"},
    {0x42, 0x00f, "Brahma-B15"},
    {0x42, 0x100, "Brahma-B53"},
    {0x42, 0x516, "ThunderX2"},
    {0x43, 0x0a0, "ThunderX"},
    {0x43, 0x0a1, "ThunderX-88XX"},
    {0x43, 0x0a2, "ThunderX-81XX"},
    {0x43, 0x0a3, "ThunderX-83XX"},
    {0x43, 0x0af, "ThunderX2-99xx"},
    {0x46, 0x001, "A64FX"},
    {0x48, 0xd01, "Kunpeng-920"},
    {0x48, 0xd40, "Cortex-A76"},
    {0x4e, 0x000, "Denver"},
    {0x4e, 0x003, "Denver 2"},
    {0x4e, 0x004, "Carmel"},
    {0x50, 0x000, "X-Gene"},
    {0x51, 0x00f, "Scorpion"},
    {0x51, 0x02d, "Scorpion"},
    {0x51, 0x04d, "Krait"},
    {0x51, 0x06f, "Krait"},
    {0x51, 0x201, "Kryo"},
    {0x51, 0x205, "Kryo"},
    {0x51, 0x211, "Kryo"},
    {0x51, 0x800, "Falkor-V1/Kryo"},
    {0x51, 0x801, "Kryo-V2"},
    {0x51, 0x802, "Kryo-3XX-Gold"},
    {0x51, 0x803, "Kryo-3XX-Silver"},
    {0x51, 0x804, "Kryo-4XX-Gold"},
    {0x51, 0x805, "Kryo-4XX-Silver"},
    {0x51, 0xc00, "Falkor"},
    {0x51, 0xc01, "Saphira"},
    {0x51, 0x001, "Oryon"},
    {0x53, 0x001, "exynos-m1"},
    {0x56, 0x131, "Feroceon-88FR131"},
    {0x56, 0x581, "PJ4/PJ4b"},
    {0x56, 0x584, "PJ4B-MP"},
    {0x61, 0x022, "Icestorm-M1"},
    {0x61, 0x023, "Firestorm-M1"},
    {0x61, 0x024, "Icestorm-M1-Pro"},
    {0x61, 0x025, "Firestorm-M1-Pro"},
    {0x61, 0x028, "Icestorm-M1-Max"},
    {0x61, 0x029, "Firestorm-M1-Max"},
    {0x61, 0x032, "Blizzard-M2"},
    {0x61, 0x033, "Avalanche-M2"},
    {0x66, 0x526, "FA526"},
    {0x66, 0x626, "FA626"},
    {0x6d, 0xd49, "Azure-Cobalt-100"},
    {0x70, 0x660, "FTC660"},
    {0x70, 0x661, "FTC661"},
    {0x70, 0x662, "FTC662"},
    {0x70, 0x663, "FTC663"},
    {0xc0, 0xac3, "Ampere-1"},
    {0xc0, 0xac4, "Ampere-1a"},
};

}  // namespace

const char* FindArmMaker(uint32_t implementer) {
    const auto isIt = [&](const TMaker& entry) { return entry.implementer == implementer; };
    const auto found = std::find_if(std::begin(kMakers), std::end(kMakers), isIt);
    return found == std::end(kMakers) ? nullptr : found->name;
}

const char* FindArmModel(uint32_t implementer, uint32_t part) {
    const auto isIt = [&](const TPart& entry) { return entry.implementer == implementer && entry.part == part; };
    const auto found = std::find_if(std::begin(kParts), std::end(kParts), isIt);
    return found == std::end(kParts) ? nullptr : found->name;
}
