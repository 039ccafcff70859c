#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <filesystem>

#include "NetworkParts.h"

namespace {

using TTexts = std::vector<std::string>;

const std::string kResolverFile = "/etc/resolv.conf";
constexpr size_t kFileLimit = 64 << 10;
constexpr size_t kMostServers = 3;  // that the C library asks
constexpr int kMostLinks = 8;

// Without the zone of a link-local address, which names an adapter, and what systemd allows behind it.
bool IsAddress(const std::string& text) {
    unsigned char bytes[sizeof(in6_addr)];
    return inet_pton(AF_INET, text.c_str(), bytes) == 1 ||
           inet_pton(AF_INET6, text.substr(0, text.find('%')).c_str(), bytes) == 1;
}

bool IsLocal(const std::string& address) { return address.rfind("127.", 0) == 0 || address == "::1"; }

bool HasLocalServer(const TDnsSettings& settings) {
    const TTexts servers = settings.servers.ValueOr({});
    return std::any_of(servers.begin(), servers.end(), IsLocal);
}

bool AsksResolved(const TDnsSettings& settings) {
    const TTexts servers = settings.servers.ValueOr({});
    return std::any_of(servers.begin(), servers.end(),
                       [](const std::string& at) { return at == "127.0.0.53" || at == "127.0.0.54"; });
}

TTexts WordsOf(std::string_view text) {
    const std::vector<std::string_view> words = Words(text);
    return {words.begin(), words.end()};
}

/// What the lines of a file such as /etc/resolv.conf say.
struct TResolverLines {
    TTexts servers;
    TTexts domains;  ///< that are searched
    TTexts options;
    std::string domain;
};

// The C library takes no line that begins with a blank. Of lines with domains the last holds.
void ParseLine(std::string_view line, TResolverLines& lines) {
    TTexts words = WordsOf(line);
    if (words.size() < 2 || line[0] == ' ' || line[0] == '\t') return;
    const std::string keyword = std::move(words.front());
    words.erase(words.begin());
    if (keyword == "nameserver") lines.servers.push_back(words.front());
    if (keyword == "options") lines.options.insert(lines.options.end(), words.begin(), words.end());
    if (keyword != "domain" && keyword != "search") return;
    lines.domain = keyword == "domain" ? words.front() : "";
    lines.domains = keyword == "domain" ? TTexts{words.front()} : std::move(words);
}

void SetUnlessEmpty(TFact<TTexts>& fact, TTexts texts, const std::string& source) {
    if (!texts.empty()) fact = TFact<TTexts>::Of(std::move(texts), source);
}

// The path that the links lead to. On a recorded machine it is one of that machine.
std::string FollowLinks(const TSystemRoot& root, std::string path) {
    for (int links = 0; links < kMostLinks; ++links) {
        const TFact<std::string> target = root.ReadLink(path);
        if (!target) break;
        path = (std::filesystem::path(path).parent_path() / *target).lexically_normal().string();
    }
    return path;
}

TDnsSettings ReadResolverFile(const TSystemRoot& root, const std::string& path, EDnsProgram program) {
    TDnsSettings settings;
    settings.id = path;
    settings.program = program;
    settings.linkTarget = root.ReadLink(path);
    const TFact<std::string> text = root.ReadFile(FollowLinks(root, path), kFileLimit);
    settings.servers.source = settings.linkTarget ? text.source : path;
    settings.servers.absence = text.absence;
    if (text) ParseResolverFile(*text, settings);
    return settings;
}

/// What a file of systemd names the settings of one adapter, in lines such as "DNS=192.0.2.53 192.0.2.54". Domains with
/// a tilde only tell which names are asked for there.
struct TLinkFiles {
    const char* folder;
    EDnsProgram program;
    const char* name;  ///< of the program
    std::string_view servers;
};

constexpr TLinkFiles kLinkFiles[] = {
    {"/run/systemd/resolve/netif/", EDnsProgram::eResolved, "systemd-resolved", "SERVERS"},
    {"/run/systemd/netif/links/", EDnsProgram::eNetworkd, "systemd-networkd", "DNS"},
};

void ParseLinkFile(std::string_view text, std::string_view serversKey, TDnsSettings& settings) {
    const std::string source = settings.servers.source;
    for (const std::string_view line : Lines(text)) {
        const std::string_view key = line.substr(0, line.find('='));
        TTexts words = WordsOf(line.substr(std::min(key.size() + 1, line.size())));
        words.erase(std::remove_if(words.begin(), words.end(), [](const std::string& word) { return word[0] == '~'; }),
                    words.end());
        if (key == serversKey)
            SetUnlessEmpty(settings.servers, std::move(words), source);
        else if (key == "DOMAINS")
            SetUnlessEmpty(settings.searchDomains, std::move(words), source);
    }
    settings.hasLocalServer = HasLocalServer(settings);
}

void ReadLinkFile(const TSystemRoot& root, const TLinkFiles& files, const std::string& file, const std::string& adapter,
                  std::vector<TDnsSettings>& all) {
    TDnsSettings settings;
    settings.id = adapter + ' ' + files.name;
    settings.program = files.program;
    settings.adapter = adapter;
    const TFact<std::string> text = root.ReadFile(files.folder + file, kFileLimit);
    settings.servers.source = text.source;
    settings.servers.absence = text.absence;
    if (text) ParseLinkFile(*text, files.servers, settings);
    if (settings.servers || settings.searchDomains || IsUnreadable(text)) all.push_back(std::move(settings));
}

void ReadLinkFiles(const TSystemRoot& root, const TAdapterNames& names, TNetworkFacts& facts) {
    for (const TLinkFiles& files : kLinkFiles) {
        const TFact<TTexts> list = root.List(files.folder);
        if (IsUnreadable(list)) facts.dnsListing = ListingOf(list);
        for (const std::string& file : list.ValueOr({}))
            if (const std::string adapter = NameOf(ParseNumber<uint32_t>(file), names); !adapter.empty())
                ReadLinkFile(root, files, file, adapter, facts.dnsSettings);
    }
}

// A machine may lack the file, but whether it does must be seen.
TListing ListingOfResolverFile(const TSystemRoot& root) {
    const TFact<std::string> file = root.ReadFile(FollowLinks(root, kResolverFile), kFileLimit);
    const bool isKnown = !IsUnreadable(file) && root.FindObstacle(kResolverFile) == kResolverFile;
    return isKnown ? TListing::Of(true, kResolverFile) : ListingOf(file);
}

// The stub asks the servers that the file of its program names.
void ReadFilesOfPrograms(const TSystemRoot& root, std::vector<TDnsSettings>& all) {
    const bool asksResolved = AsksResolved(all.front());
    const std::string file =
        asksResolved ? "/run/systemd/resolve/resolv.conf" : "/run/NetworkManager/no-stub-resolv.conf";
    if (all.front().hasLocalServer && (asksResolved || root.Exists(file)))
        all.push_back(
            ReadResolverFile(root, file, asksResolved ? EDnsProgram::eResolved : EDnsProgram::eNetworkManager));
}

}  // namespace

void ParseResolverFile(std::string_view text, TDnsSettings& settings) {
    TResolverLines lines;
    for (const std::string_view line : Lines(text)) ParseLine(line, lines);
    const std::string source = settings.servers.source;
    size_t asked = 0;
    for (const std::string& server : lines.servers)
        if (!IsAddress(server) || (settings.id == kResolverFile && ++asked > kMostServers))
            settings.ignoredServers.push_back(server);
    SetUnlessEmpty(settings.servers, std::move(lines.servers), source);
    SetUnlessEmpty(settings.searchDomains, std::move(lines.domains), source);
    SetUnlessEmpty(settings.options, std::move(lines.options), source);
    if (!lines.domain.empty()) settings.domain = TFact<std::string>::Of(std::move(lines.domain), source);
    settings.hasLocalServer = HasLocalServer(settings);
}

void ReadDns(const TSystemRoot& root, const TAdapterNames& names, TNetworkFacts& facts) {
    facts.dnsListing = ListingOfResolverFile(root);
    if (root.Exists(kResolverFile) || root.ReadLink(kResolverFile)) {
        facts.dnsSettings.push_back(ReadResolverFile(root, kResolverFile, EDnsProgram::eCLibrary));
        ReadFilesOfPrograms(root, facts.dnsSettings);
    }
    ReadLinkFiles(root, names, facts);
}
