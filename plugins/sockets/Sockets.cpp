// Sockets of all tables, with their processes, users and units.
#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>

#include "ControlGroups.h"
#include "Names.h"
#include "Netlink.h"
#include "NetlinkDump.h"
#include "SocketFacts.h"
#include "SocketHolders.h"
#include "SocketTables.h"
#include "UnitFiles.h"

namespace {

constexpr const char* kProcessGroups = "/proc/*/cgroup";
constexpr uint64_t kRootGroup = 1;

/// The sockets at one address, from the first of which the rest is taken.
template <typename TSocket, typename TEntry>
struct TShared {
    TSocket socket;
    std::vector<TEntry> entries;
};
template <typename TSocket, typename TEntry>
using TSharedByName = std::map<std::string, TShared<TSocket, TEntry>>;
using TInetSockets = TSharedByName<TListeningSocket, TInetEntry>;
using TUnixSockets = TSharedByName<TUnixSocket, TUnixEntry>;

template <typename T>
TFact<T> ToldBy(const std::string& source, const std::optional<T>& value) {
    return value ? TFact<T>::Of(*value, source) : TFact<T>::Missing(EAbsence::eNotSupported, source);
}

void FillUse(TSocketUse& use, const TSocketEntry& entry, const std::string& source) {
    use.source = source;
    use.owner = ToldBy(source, entry.owner);
    use.backlog = ToldBy(source, entry.backlog);
}

bool IsLoopback(const std::string& address) {
    return address.compare(0, 4, "127.") == 0 || address == "::1" || address.compare(0, 11, "::ffff:127.") == 0;
}

using TInterfaces = std::map<uint32_t, std::string>;

TInterfaces ReadInterfaces(const TSystemRoot& root) {
    TInterfaces names;
    const std::string table = ReadNetlinkTable(root, ENetlinkTable::eLinks).ValueOr("");
    for (const TNetlinkMessage& message : ParseNetlinkMessages(table)) {
        std::string_view body = message.body;
        const auto header = TakeStruct<ifinfomsg>(body);
        if (message.type != RTM_NEWLINK || !header || header->ifi_index <= 0) continue;
        names.emplace(header->ifi_index, TNetlinkAttributes(body).Text(IFLA_IFNAME).value_or(""));
    }
    return names;
}

class TReading {
public:
    explicit TReading(const TSystemRoot& root) : fRoot(root) {}

    TSocketFacts Read() {
        TSocketFacts facts;
        facts.listing = ReadTables();
        const auto unixEntries = ReadUnixTable(fRoot);
        facts.unixListing = ListingOf(unixEntries);
        for (const TUnixEntry& entry : unixEntries.ValueOr({})) AddUnix(entry, unixEntries.source);
        FillUses();
        for (auto& [name, shared] : fSockets) facts.sockets.push_back(std::move(shared.socket));
        for (auto& [name, shared] : fUnixSockets) facts.unixSockets.push_back(std::move(shared.socket));
        return facts;
    }

private:
    // The first table that is missing.
    TListing ReadTables() {
        TListing listing;
        for (const TInetTable& table : InetTables()) {
            const TFact<std::vector<TInetEntry>> entries = ReadInetTable(fRoot, table);
            if (listing || listing.source.empty()) listing = ListingOf(entries);
            for (const TInetEntry& entry : entries.ValueOr({})) Add(entry, table, entries.source);
        }
        return listing;
    }

    void Add(const TInetEntry& entry, const TInetTable& table, const std::string& source) {
        TListeningSocket socket;
        FillUse(socket, entry, source);
        socket.protocol = static_cast<uint16_t>(table.protocol);
        socket.family = entry.family;
        socket.address = entry.address;
        socket.port = entry.port;
        socket.interface = ToldBy(source, entry.interface).Map([this](uint32_t index) { return FindInterface(index); });
        if (entry.interface == 0u) socket.interface.absence = EAbsence::eNotPresent;
        socket.localOnly = FindReach(socket);
        socket.ipv6Only = ToldBy(source, entry.ipv6Only);
        auto& shared = fSockets.try_emplace(NameOf(socket), TInetSockets::mapped_type{socket, {}}).first->second;
        shared.entries.push_back(entry);
    }

    void AddUnix(const TUnixEntry& entry, const std::string& source) {
        TUnixSocket socket;
        FillUse(socket, entry, source);
        socket.type = entry.type;
        socket.name = entry.name;
        auto& shared = fUnixSockets.try_emplace(entry.name, TUnixSockets::mapped_type{socket, {}}).first->second;
        shared.entries.push_back(entry);
    }

    std::optional<std::string> FindInterface(uint32_t index) {
        if (index == 0) return std::nullopt;
        if (fInterfaces.empty()) fInterfaces = ReadInterfaces(fRoot);
        const auto found = fInterfaces.find(index);
        return found == fInterfaces.end() ? std::to_string(index) : found->second;
    }

    // Where nobody tells the interface, an address of all could be bound to that of the system itself.
    static TFact<bool> FindReach(const TListeningSocket& socket) {
        const bool isLocal = IsLoopback(socket.address) || socket.interface.ValueOr("") == "lo";
        const bool isKnown = isLocal || socket.interface || socket.interface.absence == EAbsence::eNotPresent;
        return isKnown ? TFact<bool>::Of(isLocal, socket.source)
                       : TFact<bool>::Missing(EAbsence::eNotSupported, socket.source);
    }

    template <typename F>
    void ForEach(F function) {
        for (auto& [name, shared] : fSockets) function(shared);
        for (auto& [name, shared] : fUnixSockets) function(shared);
    }

    void FillUses() {
        std::vector<uint64_t> inodes;
        std::set<uint32_t> owners;
        std::set<TPortAndProtocol> ports;
        ForEach([&](const auto& shared) {
            for (const auto& entry : shared.entries) inodes.push_back(entry.inode);
            if (shared.socket.owner) owners.insert(*shared.socket.owner);
        });
        for (const auto& [name, shared] : fSockets) ports.insert(PortOf(shared.socket));
        const TSocketHolders holders(fRoot, inodes);
        const TNames<uint32_t> users = ReadUserNames(fRoot, owners);
        const TNames<TPortAndProtocol> portNames = ReadPortNames(fRoot, ports);
        ForEach([&](auto& shared) {
            TSocketUse& use = shared.socket;
            use.count = static_cast<uint32_t>(shared.entries.size());
            use.ownerName =
                use.owner ? users.Of(*use.owner) : TFact<std::string>::Missing(use.owner.absence, use.owner.source);
            FillProcesses(shared, holders);
        });
        for (auto& [name, shared] : fSockets) shared.socket.portName = portNames.Of(PortOf(shared.socket));
        FillUnitsOfUnknownProcesses();
    }

    static TPortAndProtocol PortOf(const TListeningSocket& socket) {
        return {socket.port, ProtocolName(socket.protocol)};
    }

    template <typename TShared>
    void FillProcesses(TShared& shared, const TSocketHolders& holders) const {
        std::map<uint32_t, const TProcess*> processes;
        for (const auto& entry : shared.entries)
            for (const TProcess* process : holders.Of(entry.inode)) processes.emplace(process->id, process);
        TSocketUse& use = shared.socket;
        if (processes.empty()) return FillAbsence(use, holders.Listing());
        std::vector<uint32_t> ids;
        std::vector<std::string> names, executables, units;
        for (const auto& [id, process] : processes) {
            ids.push_back(id);
            AddNew(names, process->name);
            AddNew(executables, process->executable);
            AddNew(units, UnitOf(process->controlGroup));
        }
        use.processIds = TFact<std::vector<uint32_t>>::Of(std::move(ids), kProcessFiles);
        use.processNames = UnlessEmpty(std::move(names), "/proc/*/comm");
        use.executables = UnlessEmpty(std::move(executables), "/proc/*/exe");
        SetUnit(use, BestOf(units), kProcessGroups);
    }

    static void AddNew(std::vector<std::string>& texts, const std::string& text) {
        if (!text.empty() && std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
    }

    static TFact<std::vector<std::string>> UnlessEmpty(std::vector<std::string> texts, const char* source) {
        using TTexts = TFact<std::vector<std::string>>;
        return texts.empty() ? TTexts::Missing(EAbsence::eNotPresent, source) : TTexts::Of(std::move(texts), source);
    }

    static void FillAbsence(TSocketUse& use, const TListing& listing) {
        const EAbsence absence = listing ? EAbsence::eNotPresent : listing.absence;
        use.processIds = TFact<std::vector<uint32_t>>::Missing(absence, kProcessFiles);
        use.processNames = TFact<std::vector<std::string>>::Missing(absence, kProcessFiles);
        use.executables = use.processNames;
        use.unit = TFact<std::string>::Missing(absence, kProcessFiles);
    }

    // systemd itself may have a socket of a service open too.
    static std::string BestOf(const std::vector<std::string>& units) {
        const auto isService = [](const std::string& unit) { return EndsWith(unit, ".service"); };
        const auto service = std::find_if(units.begin(), units.end(), isService);
        if (service != units.end()) return *service;
        return units.empty() ? "" : units.back();
    }

    void SetUnit(TSocketUse& use, const std::string& unit, const char* source) const {
        use.unit = unit.empty() ? TFact<std::string>::Missing(EAbsence::eNotPresent, source)
                                : TFact<std::string>::Of(unit, source);
        use.isUnitAService = EndsWith(unit, ".service") && !FindUnitFile(fRoot, unit).empty();
    }

    // The control group in which a socket was made tells the unit. It does not tell the process, even where it has only
    // one: the kernel makes sockets for itself that processes ask for, and processes hand sockets on.
    void FillUnitsOfUnknownProcesses() {
        std::unordered_set<uint64_t> numbers;
        ForEach([&](const auto& shared) {
            if (GroupOf(shared) != kRootGroup) numbers.insert(GroupOf(shared));
        });
        if (numbers.empty()) return;
        const auto groups = FindControlGroups(fRoot, numbers);
        ForEach([&](auto& shared) {
            const auto found = groups.find(GroupOf(shared));
            if (found != groups.end()) SetUnit(shared.socket, UnitOf(found->second), kControlGroups);
        });
    }

    // That of the root is none of a unit.
    template <typename TShared>
    static uint64_t GroupOf(const TShared& shared) {
        if (shared.socket.processIds) return kRootGroup;
        return shared.entries.front().controlGroup.value_or(kRootGroup);
    }

    const TSystemRoot& fRoot;
    TInterfaces fInterfaces;
    TInetSockets fSockets;
    TUnixSockets fUnixSockets;
};

}  // namespace

TSocketFacts ReadSockets(const TSystemRoot& root) { return TReading(root).Read(); }

const char* ProtocolName(uint16_t protocol) {
    switch (protocol) {
        case IPPROTO_TCP:
            return "tcp";
        case IPPROTO_UDP:
            return "udp";
        case IPPROTO_UDPLITE:
            return "udplite";
        case IPPROTO_SCTP:
            return "sctp";
        default:
            return "dccp";
    }
}

std::string NameOf(const TListeningSocket& socket) {
    const std::string address = socket.family == AF_INET ? socket.address : '[' + socket.address + ']';
    const std::string interface = socket.interface ? '%' + *socket.interface : "";
    return std::string(ProtocolName(socket.protocol)) + ' ' + address + interface + ':' + std::to_string(socket.port);
}
