#include "Names.h"

namespace {

template <typename TKey>
using TNamed = std::optional<std::pair<TKey, std::string_view>>;

// "name:x:1000:..."
TNamed<uint32_t> ParseUser(std::string_view line) {
    const size_t name = line.find(':');
    const size_t password = line.find(':', name + 1);
    if (name == std::string_view::npos || name == 0 || password == std::string_view::npos) return std::nullopt;
    const std::string_view rest = line.substr(password + 1);
    const auto number = ParseNumber<uint32_t>(rest.substr(0, rest.find(':')));
    if (!number) return std::nullopt;
    return std::pair(*number, line.substr(0, name));
}

// "name  22/tcp  alias  # comment"
TNamed<TPortAndProtocol> ParsePort(std::string_view line) {
    const size_t name = line.find_first_of(" \t#");
    if (name == 0 || name == std::string_view::npos || line[name] == '#') return std::nullopt;
    const std::string_view rest = Trim(line.substr(name));
    const size_t slash = rest.find('/');
    const auto port = ParseNumber<uint16_t>(rest.substr(0, slash));
    if (!port || slash == std::string_view::npos) return std::nullopt;
    const std::string_view protocol = rest.substr(slash + 1);
    return std::pair(TPortAndProtocol(*port, protocol.substr(0, protocol.find_first_of(" \t#"))), line.substr(0, name));
}

// Of several names the first counts.
template <typename TKey>
TNames<TKey> ReadNames(const TSystemRoot& root, const char* path, const std::set<TKey>& wanted,
                       TNamed<TKey> (*parse)(std::string_view)) {
    if (wanted.empty()) return {};
    return {root.ReadFile(path).Map([&](const std::string& text) {
        std::map<TKey, std::string> names;
        for (const std::string_view line : Lines(text))
            if (const TNamed<TKey> named = parse(line); named && wanted.count(named->first) != 0) names.insert(*named);
        return std::optional(std::move(names));
    })};
}

}  // namespace

TNames<uint32_t> ReadUserNames(const TSystemRoot& root, const std::set<uint32_t>& wanted) {
    return ReadNames(root, "/etc/passwd", wanted, ParseUser);
}

TNames<TPortAndProtocol> ReadPortNames(const TSystemRoot& root, const std::set<TPortAndProtocol>& wanted) {
    return ReadNames(root, "/etc/services", wanted, ParsePort);
}
