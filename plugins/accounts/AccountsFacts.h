#ifndef KYR_PLUGINS_ACCOUNTS_ACCOUNTSFACTS_H
#define KYR_PLUGINS_ACCOUNTS_ACCOUNTSFACTS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "SystemRoot.h"

/// Numbers of the ValueMap of PasswordState.
enum class EPasswordState : uint16_t { eUsable = 1, eLocked = 2, eNoneNeeded = 3 };

/// What a line of /etc/shadow says beside the password, of which nothing is kept. Dates are in days since 1970-01-01.
struct TPasswordAge {
    EPasswordState state = EPasswordState::eLocked;
    bool mustChange = false;
    std::optional<int64_t> lastChanged;
    std::optional<int64_t> expires;
    std::optional<int64_t> accountExpires;
};

struct TLogin {
    int64_t time;  ///< in seconds since 1970-01-01 UTC
    std::string terminal;
    std::string host;
    const char* source;
};

struct TAccount {
    std::string name;
    uint32_t userId;
    uint32_t groupId;
    std::string fullName;
    std::string home;
    std::string shell;  ///< never empty
    /// If the password stands in /etc/passwd itself, or there is none.
    std::optional<EPasswordState> ownState;
    std::optional<TPasswordAge> age;
    std::optional<TLogin> login;
};

struct TGroup {
    std::string name;
    uint32_t groupId;
    std::vector<std::string> members;
};

/// Of a file with a line for each entry: the entries that count, and how many lines do not.
template <typename T>
struct TEntries {
    std::vector<T> entries;
    size_t repeated = 0;   ///< a name that an earlier line has: nobody finds it
    size_t malformed = 0;  ///< no entry for anybody
    size_t elsewhere = 0;  ///< "+" and "-" of NIS, which stand for entries of another machine
};

struct TAccountsFacts {
    TEntries<TAccount> accounts;
    TEntries<TGroup> groups;
    TListing accountListing;
    TListing groupListing;
    TListing shadow;
    TListing logins;            ///< whether any record of log-ins could be read
    TFact<uint32_t> firstUser;  ///< the smallest number of an account that is a person's
    /// The places of an account and of a group that it belongs to.
    std::vector<std::pair<size_t, size_t>> memberships;
};

TAccountsFacts ReadAccounts(const TSystemRoot& root);

TEntries<TAccount> ParsePasswd(std::string_view text);
TEntries<TGroup> ParseGroups(std::string_view text);
std::unordered_map<std::string, TPasswordAge> ParseShadow(std::string_view text);
/// Each account with its groups, the one of its GroupID among them, sorted and each once.
std::vector<std::pair<size_t, size_t>> FindMemberships(const std::vector<TAccount>& accounts,
                                                       const std::vector<TGroup>& groups);
/// False for a shell that ends at once, as accounts of services have it.
bool IsLoginShell(std::string_view shell);

#endif
