#ifndef KYR_HOST_RENDER_SUMMARYACCOUNTS_H
#define KYR_HOST_RENDER_SUMMARYACCOUNTS_H

#include <string>
#include <vector>

class TContainer;

constexpr const char* kAccountClass = "MOLTA_Account";

/// In one line, how many accounts there are, and by how many of them people can get in: "3 of 27 have a login shell, 1
/// of them locked". None if the container has none.
std::vector<std::string> AccountsTexts(const TContainer& container);

#endif
