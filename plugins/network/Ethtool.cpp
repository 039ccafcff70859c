#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "NetworkParts.h"
#include "Placeholder.h"

namespace {

// A socket that ioctl reaches the adapters by. Those of the Internet are not open to plugins.
class TEthtool {
public:
    explicit TEthtool(const std::string& name) : fSocket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        name.copy(fRequest.ifr_name, sizeof fRequest.ifr_name - 1);
    }

    // The structure begins with the number of the command. Returns 0 or an errno.
    template <typename T>
    int Ask(T& structure) {
        fRequest.ifr_data = reinterpret_cast<char*>(&structure);
        return ioctl(fSocket.Number(), SIOCETHTOOL, &fRequest) == 0 ? 0 : errno;
    }

private:
    const TDescriptor fSocket;
    ifreq fRequest = {};
};

/// ethtool_link_settings, which cannot be a member or a value because of the array at its end.
struct TLinkHeader {
    uint32_t cmd;
    uint32_t speed;
    uint8_t duplex, port, phyAddress, autoneg, mdioSupport, mdix, mdixControl;
    int8_t maskWords;
    uint8_t others[4];
    uint32_t reserved[7];
};
static_assert(sizeof(TLinkHeader) == sizeof(ethtool_link_settings));
static_assert(offsetof(TLinkHeader, autoneg) == offsetof(ethtool_link_settings, autoneg));
static_assert(offsetof(TLinkHeader, maskWords) == offsetof(ethtool_link_settings, link_mode_masks_nwords));

struct TLinkModes {
    TLinkHeader header;
    uint32_t masks[3 * SCHAR_MAX];  // what is supported, advertised, and advertised by the other end
};

template <typename T>
std::string BytesOf(const T& structure, size_t size) {
    return {reinterpret_cast<const char*>(&structure), size};
}

int AskInformation(TEthtool& ethtool, std::string& bytes) {
    ethtool_drvinfo information = {};
    information.cmd = ETHTOOL_GDRVINFO;
    const int error = ethtool.Ask(information);
    bytes = BytesOf(information, sizeof information);
    return error;
}

// The kernel answers the first request, in which the masks have no words, with the number of words, made negative.
int AskSettings(TEthtool& ethtool, std::string& bytes) {
    TLinkModes modes = {};
    modes.header.cmd = ETHTOOL_GLINKSETTINGS;
    if (const int error = ethtool.Ask(modes); error != 0) return error;
    const auto words = int8_t(-modes.header.maskWords);
    if (words <= 0) return EPROTO;
    modes = {};
    modes.header.cmd = ETHTOOL_GLINKSETTINGS;
    modes.header.maskWords = words;
    const int error = ethtool.Ask(modes);
    bytes = BytesOf(modes, sizeof modes.header + size_t(words) * 3 * sizeof(uint32_t));
    return error;
}

struct TQuestion {
    const char* name;
    int (*ask)(TEthtool&, std::string&);
};

constexpr TQuestion kInformation = {"drvinfo", AskInformation};
constexpr TQuestion kSettings = {"linksettings", AskSettings};

// A recorded machine has the kernel's structures in files.
TFact<std::string> Read(const TSystemRoot& root, const std::string& name, const TQuestion& question) {
    const std::string source = std::string("ethtool ") + question.name + ' ' + name;
    if (!root.IsRunningMachine()) {
        TFact<std::string> recorded = root.ReadFile("/.kyr/ethtool/" + name + '-' + question.name, sizeof(TLinkModes));
        recorded.source = source;
        return recorded;
    }
    TEthtool ethtool(name);
    std::string bytes;
    const int error = question.ask(ethtool, bytes);
    if (error != 0) return TFact<std::string>::Missing(AbsenceOf(error), source);
    return TFact<std::string>::Of(std::move(bytes), source);
}

template <typename T>
TFact<T> StructureOf(const TFact<std::string>& bytes) {
    return bytes.Map([](std::string_view text) { return TakeStruct<T>(text); });
}

// Drivers that have no such text leave the field empty, or write "N/A".
template <size_t size>
TFact<std::string> TextOf(const TFact<ethtool_drvinfo>& information, char (ethtool_drvinfo::*field)[size]) {
    if (!information) return TFact<std::string>::Missing(information.absence, information.source);
    const std::string_view whole((*information).*field, size);
    std::string text(Trim(whole.substr(0, whole.find('\0'))));
    if (text.empty() || IsPlaceholder(text))
        return TFact<std::string>::Missing(EAbsence::eNotPresent, information.source);
    return TFact<std::string>::Of(std::move(text), information.source);
}

/// Link modes with consecutive numbers, and their speed in Mbit/s; 0 for those that are no speeds.
struct TModes {
    unsigned first;
    unsigned last;
    uint64_t speed;
};

constexpr TModes kModes[] = {
    {0, 1, 10},        {2, 3, 100},         {4, 5, 1'000},       {6, 11, 0},          {12, 12, 10'000},
    {13, 14, 0},       {15, 15, 2'500},     {16, 16, 0},         {17, 17, 1'000},     {18, 20, 10'000},
    {21, 22, 20'000},  {23, 26, 40'000},    {27, 30, 56'000},    {31, 33, 25'000},    {34, 35, 50'000},
    {36, 39, 100'000}, {40, 40, 50'000},    {41, 41, 1'000},     {42, 46, 10'000},    {47, 47, 2'500},
    {48, 48, 5'000},   {49, 51, 0},         {52, 56, 50'000},    {57, 61, 100'000},   {62, 66, 200'000},
    {67, 67, 100},     {68, 68, 1'000},     {69, 73, 400'000},   {74, 74, 0},         {75, 79, 100'000},
    {80, 84, 200'000}, {85, 89, 400'000},   {90, 91, 100},       {92, 92, 10},        {93, 98, 800'000},
    {99, 102, 10},     {103, 108, 200'000}, {109, 114, 400'000}, {115, 120, 800'000}, {121, 124, 1'600'000},
};

std::optional<uint64_t> SpeedOf(unsigned mode) {
    for (const TModes& modes : kModes)
        if (mode >= modes.first && mode <= modes.last) return modes.speed;
    return std::nullopt;
}

// The first of the masks has what is supported. A mode that is not known may be faster than all others.
std::optional<uint64_t> ParseMaxSpeed(std::string_view bytes) {
    const auto header = TakeStruct<TLinkHeader>(bytes);
    uint64_t fastest = 0;
    for (int word = 0; header && word < header->maskWords; ++word) {
        const std::optional<uint32_t> mask = TakeStruct<uint32_t>(bytes);
        for (unsigned bit = 0; mask && bit < 32; ++bit) {
            if ((*mask >> bit & 1) == 0) continue;
            const std::optional<uint64_t> speed = SpeedOf(unsigned(word) * 32 + bit);
            if (!speed) return std::nullopt;
            fastest = std::max(fastest, *speed);
        }
    }
    return fastest == 0 ? std::nullopt : std::optional(fastest * 1'000'000);
}

bool IsSuspended(const TSystemRoot& root, const std::string& name) {
    return root.ReadText("/sys/class/net/" + name + "/device/power/runtime_status").ValueOr("") == "suspended";
}

}  // namespace

TDriverFacts ParseDriverFacts(const TFact<std::string>& information, const TFact<std::string>& settings) {
    const auto driver = StructureOf<ethtool_drvinfo>(information);
    const auto link = StructureOf<TLinkHeader>(settings);
    TDriverFacts facts;
    facts.version = TextOf(driver, &ethtool_drvinfo::version);
    facts.firmwareVersion = TextOf(driver, &ethtool_drvinfo::fw_version);
    facts.busInfo = TextOf(driver, &ethtool_drvinfo::bus_info);
    facts.connector = link.Map([](const auto& value) { return std::optional<uint16_t>(value.port); });
    facts.autoSense = link.Map([](const auto& value) { return std::optional(value.autoneg == AUTONEG_ENABLE); });
    facts.maxSpeed = settings.Map(ParseMaxSpeed);
    return facts;
}

std::optional<TDriverFacts> ReadDriverFacts(const TSystemRoot& root, const std::string& name) {
    if (root.IsRunningMachine() && IsSuspended(root, name)) return std::nullopt;
    return ParseDriverFacts(Read(root, name, kInformation), Read(root, name, kSettings));
}
