// The files of accounts: passwd, group, shadow, and the records of log-ins. The first byte chooses one of them.
#include <algorithm>
#include <cstdint>
#include <set>

#include "Logins.h"
#include "support/FuzzSupport.h"

namespace {

template <typename T>
void CheckEntries(const TEntries<T>& entries, const std::string& text) {
    std::set<std::string> names;
    for (const T& entry : entries.entries) {
        Require(!entry.name.empty() && entry.name.find(':') == std::string::npos, "a name is a field");
        Require(names.insert(entry.name).second, "a name stands for one entry");
    }
    const size_t lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    Require(entries.entries.size() + entries.repeated + entries.malformed + entries.elsewhere <= lines,
            "each line is counted once");
}

void CheckPasswd(const std::string& text) {
    const TEntries<TAccount> accounts = ParsePasswd(text);
    CheckEntries(accounts, text);
    for (const TAccount& account : accounts.entries) Require(!account.shell.empty(), "each account has a shell");
    const TEntries<TGroup> groups = ParseGroups(text);
    CheckEntries(groups, text);
    const auto memberships = FindMemberships(accounts.entries, groups.entries);
    Require(std::is_sorted(memberships.begin(), memberships.end()), "memberships are sorted");
    for (const auto& [account, group] : memberships)
        Require(account < accounts.entries.size() && group < groups.entries.size(), "both ends are there");
}

void CheckShadow(const std::string& text) {
    for (const auto& [name, age] : ParseShadow(text)) {
        Require(name.find(':') == std::string::npos, "a name is a field");
        Require(!age.expires || *age.expires >= *age.lastChanged, "a password expires after it was set");
    }
}

void CheckLogin(const TLogin& login) {
    Require(login.terminal.size() <= 32 && login.host.size() <= 256, "texts fit their fields");
}

void CheckWtmp(const std::string& bytes) {
    for (const size_t size : {384, 400})
        for (const auto& [name, login] : ParseWtmp(bytes, size)) {
            Require(name.size() <= 32 && login.time > 0, "a record has a name and a time");
            CheckLogin(login);
        }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TByteReader input(data, size);
    const std::string kind = input.Bytes(1), bytes = input.Bytes(size);
    if (kind == "p") CheckPasswd(bytes);
    if (kind == "s") CheckShadow(bytes);
    if (kind == "w") CheckWtmp(bytes);
    if (kind == "l")
        if (const auto login = ParseLastLog(bytes)) CheckLogin(*login);
    return 0;
}
