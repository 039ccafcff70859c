#include <linux/if_addr.h>
#include <sys/socket.h>

#include <ctime>
#include <map>
#include <utility>

#include "NetworkParts.h"

namespace {

constexpr size_t kMostFiles = 256;

/// What a DHCP client has noted of an address that it was lent.
struct TLease {
    std::string adapter;
    std::string address;
    std::string server;
    std::optional<int64_t> expires;
};

/// How a client names what is wanted, in lines such as "ADDRESS=192.0.2.10" of a file named after the adapter's index.
struct TKeys {
    const char* folder;
    std::string_view address;
    std::string_view server;
    std::string_view expires;
};

constexpr TKeys kKeys[] = {
    {"/run/systemd/netif/leases/", "ADDRESS", "SERVER_ADDRESS", ""},
    {"/run/NetworkManager/devices/", "ip_address", "dhcp_server_identifier", "expiry"},
};

/// Where the client of ISC keeps its leases, in files for one adapter or for all.
constexpr const char* kFolders[] = {"/var/lib/dhcp", "/var/lib/dhclient"};

TLease ParsePairs(std::string_view text, const TKeys& keys, const std::string& adapter) {
    TLease lease;
    lease.adapter = adapter;
    for (const std::string_view line : Lines(text)) {
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string_view key = line.substr(0, equals), value = Trim(line.substr(equals + 1));
        if (key == keys.address) lease.address = value;
        if (key == keys.server) lease.server = value;
        if (key == keys.expires) lease.expires = ParseNumber<int64_t>(value);
    }
    return lease;
}

// "3 2024/03/06 12:00:00" in UTC, behind the day of the week, or "epoch 1709726400".
std::optional<int64_t> ParseExpiry(std::string_view text) {
    const std::vector<std::string_view> words = Split(text, ' ');
    if (words.size() == 2 && words[0] == "epoch") return ParseNumber<int64_t>(words[1]);
    if (words.size() != 3) return std::nullopt;
    struct tm date = {};
    const std::string told = std::string(words[1]) + ' ' + std::string(words[2]);
    return strptime(told.c_str(), "%Y/%m/%d %T", &date) == nullptr ? std::nullopt : std::optional(timegm(&date));
}

// What stands between the words and the semicolon, without quotes; nothing if the line begins with other words.
std::optional<std::string_view> ValueAfter(std::string_view line, std::string_view words) {
    if (line.substr(0, words.size()) != words) return std::nullopt;
    line = Trim(line.substr(words.size(), line.substr(words.size()).find(';')));
    if (line.size() >= 2 && line.front() == '"' && line.back() == '"') line = line.substr(1, line.size() - 2);
    return line;
}

void ParseStatement(std::string_view line, TLease& lease) {
    if (const auto name = ValueAfter(line, "interface ")) lease.adapter = *name;
    if (const auto address = ValueAfter(line, "fixed-address ")) lease.address = *address;
    if (const auto server = ValueAfter(line, "option dhcp-server-identifier ")) lease.server = *server;
    if (const auto expiry = ValueAfter(line, "expire ")) lease.expires = ParseExpiry(*expiry);
}

class TLeaseReader {
public:
    explicit TLeaseReader(const TSystemRoot& root) : fRoot(root) {}

    void ReadPairs(const TKeys& keys, const TAdapterNames& names) {
        for (const std::string& file : Noted(fRoot.List(keys.folder)).ValueOr({})) {
            const std::string adapter = NameOf(ParseNumber<uint32_t>(file), names), path = keys.folder + file;
            if (adapter.empty()) continue;
            if (const TFact<std::string> text = Noted(fRoot.ReadFile(path)))
                Keep(ParsePairs(*text, keys, adapter), path);
        }
    }

    void ReadFolder(const std::string& folder) {
        size_t files = 0;
        for (const std::string& name : Noted(fRoot.List(folder)).ValueOr({})) {
            if (!EndsWith(name, ".leases") && !EndsWith(name, ".lease")) continue;
            if (++files > kMostFiles) return;
            const std::string path = folder + '/' + name;
            if (const TFact<std::string> text = Noted(fRoot.ReadFile(path))) ReadStatements(*text, path);
        }
    }

    // An address that does not expire was lent by nobody, even if an old lease has it.
    void HandOut(TIPAddress& address) const {
        if (address.family != AF_INET || (address.flags & IFA_F_PERMANENT) != 0) return;
        const auto found = fLeases.find({address.adapter, address.address});
        if (found == fLeases.end()) {
            address.dhcpServer = TFact<std::string>::Missing(fObstacle.absence, fObstacle.source);
            return;
        }
        const auto& [lease, file] = found->second;
        address.dhcpServer = TFact<std::string>::Of(lease.server, file);
        if (lease.expires) address.leaseExpires = TFact<int64_t>::Of(*lease.expires, file);
    }

private:
    // A renewed lease stands behind the one that it replaces.
    void ReadStatements(std::string_view text, const std::string& path) {
        TLease lease;
        for (const std::string_view line : Lines(text)) {
            ParseStatement(Trim(line), lease);
            if (Trim(line) == "}") Keep(std::exchange(lease, TLease()), path);
        }
    }

    void Keep(TLease lease, const std::string& path) {
        if (lease.address.empty() || lease.server.empty()) return;
        std::pair<std::string, std::string> key(lease.adapter, lease.address);
        fLeases[std::move(key)] = {std::move(lease), path};
    }

    // The fact, of which is kept why it could not be read.
    template <typename T>
    TFact<T> Noted(TFact<T> fact) {
        if (IsUnreadable(fact) && fObstacle.source.empty()) fObstacle = ListingOf(fact);
        return fact;
    }

    const TSystemRoot& fRoot;
    std::map<std::pair<std::string, std::string>, std::pair<TLease, std::string>> fLeases;
    TListing fObstacle;
};

}  // namespace

void ReadLeases(const TSystemRoot& root, const TAdapterNames& names, std::vector<TIPAddress>& addresses) {
    TLeaseReader reader(root);
    for (const char* folder : kFolders) reader.ReadFolder(folder);
    for (const TKeys& keys : kKeys) reader.ReadPairs(keys, names);
    for (TIPAddress& address : addresses) reader.HandOut(address);
}
