#include "OsRelease.h"
#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

constexpr size_t kHostsLimit = 1 << 20;

// The names of a line behind its address.
std::vector<std::string_view> NamesOf(std::string_view line) {
    std::vector<std::string_view> names = Words(line.substr(0, line.find('#')));
    if (!names.empty()) names.erase(names.begin());
    return names;
}

// The first name of an address is its own, and the others are short for it.
std::optional<std::string> FindFullName(const std::string& hosts, const std::string& host) {
    for (const std::string_view line : Lines(hosts)) {
        if (line.find(host) == std::string_view::npos) continue;
        const std::vector<std::string_view> names = NamesOf(line);
        if (!names.empty() && names[0].substr(0, host.size() + 1) == host + '.') return std::string(names[0]);
    }
    return {};
}

// Asks no name server, which might not answer.
TText ReadFullHostName(const TSystemRoot& root, const TText& host) {
    if (!host || host->find('.') != std::string::npos) return host;
    const TText hosts = root.ReadFile("/etc/hosts", kHostsLimit);
    TText name = hosts.Map([&host](const std::string& text) { return FindFullName(text, *host); });
    if (hosts && !name) name.absence = EAbsence::eNotPresent;
    return name;
}

struct TChassis {
    std::string_view word;
    uint16_t type;  ///< as in SMBIOS
};

constexpr TChassis kChassis[] = {{"desktop", 3}, {"laptop", 9},       {"handset", 11}, {"server", 17},
                                 {"tablet", 30}, {"convertible", 31}, {"embedded", 34}};

std::optional<uint16_t> ChassisOf(const std::string& word) {
    for (const TChassis& chassis : kChassis)
        if (chassis.word == word) return chassis.type;
    return {};
}

}  // namespace

void ReadHostNames(const TSystemRoot& root, TSystemFacts& facts) {
    facts.staticHostName = root.ReadText("/etc/hostname");
    facts.fullHostName = ReadFullHostName(root, facts.hostName);
    const TText machine = root.ReadFile("/etc/machine-info");
    facts.prettyHostName = FindOsReleaseValue(machine, "PRETTY_HOSTNAME");
    facts.deployment = FindOsReleaseValue(machine, "DEPLOYMENT");
    facts.location = FindOsReleaseValue(machine, "LOCATION");
    const TFact<uint16_t> chassis = FindOsReleaseValue(machine, "CHASSIS").Map(ChassisOf);
    if (!facts.chassisType && chassis) facts.chassisType = chassis;
}
