#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "AccountsFacts.h"
#include "Logins.h"

namespace {

constexpr const char* kPasswd = "/etc/passwd";
constexpr const char* kShadow = "/etc/shadow";
constexpr const char* kGroup = "/etc/group";
constexpr const char* kLoginDefs = "/etc/login.defs";

// Removes the front of the line up to a colon and returns it. The last field has no colon behind it.
std::string_view TakeField(std::string_view& line, char separator = ':') {
    const size_t end = std::min(line.find(separator), line.size());
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return field;
}

EPasswordState StateOf(std::string_view password) {
    if (password.empty()) return EPasswordState::eNoneNeeded;
    return password[0] == '!' || password[0] == '*' ? EPasswordState::eLocked : EPasswordState::eUsable;
}

bool IsComment(std::string_view line) { return line.empty() || line[0] == '#' || Trim(line).empty(); }

// A NUL would end the name before its end.
bool IsName(std::string_view field) { return !field.empty() && field.find('\0') == std::string_view::npos; }

// As the C library takes them: what follows the numbers may be missing.
std::optional<TAccount> ParseAccount(std::string_view line) {
    constexpr std::string_view kElsewhere = "x";
    TAccount account;
    account.name = TakeField(line);
    const std::string_view password = TakeField(line);
    if (password != kElsewhere) account.ownState = StateOf(password);
    const auto user = ParseNumber<uint32_t>(TakeField(line)), group = ParseNumber<uint32_t>(TakeField(line));
    if (!IsName(account.name) || !user || !group) return std::nullopt;
    account.userId = *user;
    account.groupId = *group;
    std::string_view comment = TakeField(line);
    account.fullName = TakeField(comment, ',');
    account.home = TakeField(line);
    account.shell = TakeField(line);
    if (account.shell.empty()) account.shell = "/bin/sh";
    return account;
}

std::optional<TGroup> ParseGroup(std::string_view line) {
    TGroup group;
    group.name = TakeField(line);
    TakeField(line);  // the password
    const auto id = ParseNumber<uint32_t>(TakeField(line));
    if (!IsName(group.name) || !id) return std::nullopt;
    group.groupId = *id;
    for (const std::string_view member : Split(line, ',')) group.members.emplace_back(member);
    return group;
}

template <typename T>
TEntries<T> ParseEntries(std::string_view text, std::optional<T> (*parse)(std::string_view)) {
    TEntries<T> entries;
    std::unordered_set<std::string_view> names;
    const std::vector<std::string_view> lines = Lines(text);
    names.reserve(lines.size());
    for (const std::string_view line : lines) {
        if (IsComment(line)) continue;
        std::optional<T> entry = parse(line);
        if (line[0] == '+' || line[0] == '-')
            ++entries.elsewhere;
        else if (!entry)
            ++entries.malformed;
        else if (!names.insert(line.substr(0, entry->name.size())).second)
            ++entries.repeated;
        else
            entries.entries.push_back(std::move(*entry));
    }
    return entries;
}

// Fields that are empty or negative say that there is no such day.
std::optional<int64_t> Days(std::string_view field) {
    constexpr int64_t kEndOfYear9999 = 2932896;
    const auto days = ParseNumber<int64_t>(field);
    return days && *days >= 0 && *days <= kEndOfYear9999 ? days : std::nullopt;
}

// So many days or more, which are 27 years, mean that a password may be kept for ever.
constexpr int64_t kForEver = 10'000;

TPasswordAge ParseAge(std::string_view line) {
    TPasswordAge age;
    age.state = StateOf(TakeField(line));
    const auto changed = Days(TakeField(line));
    TakeField(line);  // how long the password must be kept
    const auto most = Days(TakeField(line));
    TakeField(line);  // how long before its end the user is warned
    TakeField(line);  // how long after it the user may still change it
    age.accountExpires = Days(TakeField(line));
    age.mustChange = changed == 0;
    if (!changed || age.mustChange) return age;
    age.lastChanged = changed;
    if (most && *most < kForEver) age.expires = *changed + *most;
    return age;
}

TFact<uint32_t> ReadFirstUser(const TSystemRoot& root) {
    TFact<uint32_t> first = TFact<uint32_t>::Of(1000, "");  // where no file says otherwise
    const TFact<std::string> definitions = root.ReadFile(kLoginDefs);
    if (IsUnreadable(definitions)) return TFact<uint32_t>::Missing(definitions.absence, kLoginDefs);
    for (const std::string_view line : Lines(definitions ? std::string_view(*definitions) : "")) {
        constexpr std::string_view kKey = "UID_MIN";
        const std::string_view text = Trim(line);
        if (text.substr(0, kKey.size()) != kKey) continue;
        if (const auto number = ParseNumber<uint32_t>(text.substr(kKey.size())))
            first = TFact<uint32_t>::Of(*number, kLoginDefs);
    }
    return first;
}

// What is behind the limit of a read is not known.
TListing WholeListing(const TFact<std::string>& file) {
    if (file && file->size() >= TSystemRoot::kReadLimit) return TListing::Missing(EAbsence::eNotSupported, file.source);
    return ListingOf(file);
}

void ReadPasswords(const TSystemRoot& root, TAccountsFacts& facts) {
    const TFact<std::string> shadow = root.ReadFile(kShadow);
    facts.shadow = ListingOf(shadow);
    if (!shadow) return;
    const auto ages = ParseShadow(*shadow);
    for (TAccount& account : facts.accounts.entries)
        if (const auto found = ages.find(account.name); found != ages.end()) account.age = found->second;
}

}  // namespace

TAccountsFacts ReadAccounts(const TSystemRoot& root) {
    const TFact<std::string> passwd = root.ReadFile(kPasswd), group = root.ReadFile(kGroup);
    TAccountsFacts facts;
    facts.accountListing = WholeListing(passwd);
    facts.groupListing = WholeListing(group);
    facts.accounts = ParsePasswd(passwd.ValueOr(""));
    facts.groups = ParseGroups(group.ValueOr(""));
    facts.firstUser = ReadFirstUser(root);
    ReadPasswords(root, facts);
    facts.logins = ReadLogins(root, facts.accounts.entries);
    facts.memberships = FindMemberships(facts.accounts.entries, facts.groups.entries);
    return facts;
}

TEntries<TAccount> ParsePasswd(std::string_view text) { return ParseEntries(text, ParseAccount); }
TEntries<TGroup> ParseGroups(std::string_view text) { return ParseEntries(text, ParseGroup); }

std::unordered_map<std::string, TPasswordAge> ParseShadow(std::string_view text) {
    std::unordered_map<std::string, TPasswordAge> ages;
    const std::vector<std::string_view> lines = Lines(text);
    ages.reserve(lines.size());
    for (std::string_view line : lines) {
        if (IsComment(line) || line.find(':') == std::string_view::npos) continue;
        const std::string_view name = TakeField(line);
        ages.emplace(name, ParseAge(line));
    }
    return ages;
}

std::vector<std::pair<size_t, size_t>> FindMemberships(const std::vector<TAccount>& accounts,
                                                       const std::vector<TGroup>& groups) {
    std::unordered_map<std::string_view, size_t> byName;
    std::unordered_map<uint32_t, size_t> byId;
    byName.reserve(accounts.size());
    byId.reserve(groups.size());
    for (size_t i = 0; i < accounts.size(); ++i) byName.emplace(accounts[i].name, i);
    for (size_t i = 0; i < groups.size(); ++i) byId.emplace(groups[i].groupId, i);
    std::vector<std::pair<size_t, size_t>> memberships;
    for (size_t i = 0; i < accounts.size(); ++i)
        if (const auto found = byId.find(accounts[i].groupId); found != byId.end())
            memberships.emplace_back(i, found->second);
    for (size_t i = 0; i < groups.size(); ++i)
        for (const std::string& member : groups[i].members)
            if (const auto found = byName.find(member); found != byName.end())
                memberships.emplace_back(found->second, i);
    std::sort(memberships.begin(), memberships.end());
    memberships.erase(std::unique(memberships.begin(), memberships.end()), memberships.end());
    return memberships;
}

bool IsLoginShell(std::string_view shell) {
    constexpr std::string_view kOthers[] = {"nologin", "false", "true", "sync", "halt", "shutdown"};
    const std::string_view name = shell.substr(shell.rfind('/') + 1);
    return std::find(std::begin(kOthers), std::end(kOthers), name) == std::end(kOthers);
}
