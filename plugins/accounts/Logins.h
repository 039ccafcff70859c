#ifndef KYR_PLUGINS_ACCOUNTS_LOGINS_H
#define KYR_PLUGINS_ACCOUNTS_LOGINS_H

#include <string_view>

#include "AccountsFacts.h"

/// Sets the last log-in of each account by the records of log-ins that there are, whichever is latest. Returns whether
/// those could be read, and one was there.
TListing ReadLogins(const TSystemRoot& root, std::vector<TAccount>& accounts);

/// The record of one account in lastlog, whose size depends on the architecture; nothing if it never logged in.
std::optional<TLogin> ParseLastLog(std::string_view record);
/// The last log-in of each name in the records of wtmp, all of that size.
std::unordered_map<std::string, TLogin> ParseWtmp(std::string_view records, size_t recordSize);

#endif
