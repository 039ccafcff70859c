#include "render/SummaryAccounts.h"

#include <algorithm>
#include <vector>

#include "kyr/TCIMInstance.h"
#include "render/SummaryPieces.h"

namespace {

// Of MOLTA_Account.PasswordState.
constexpr uint64_t kLocked = 2;
constexpr uint64_t kNoneNeeded = 3;

using TAccounts = std::vector<TCIMInstance*>;

template <typename F>
size_t Count(const TAccounts& accounts, F isCounted) {
    return static_cast<size_t>(std::count_if(accounts.begin(), accounts.end(), isCounted));
}

size_t CountInState(const TAccounts& accounts, uint64_t state) {
    return Count(accounts,
                 [state](const TCIMInstance* account) { return SummaryNumber(*account, "PasswordState") == state; });
}

std::string Counted(size_t count, const std::string& text) {
    return (count == 0 ? ", none" : ", " + std::to_string(count)) + text;
}

}  // namespace

std::vector<std::string> AccountsTexts(const TContainer& container) {
    TAccounts accounts = InstancesOf(container, kAccountClass);
    const size_t all = accounts.size();
    if (all == 0) return {};
    const size_t superusers =
        Count(accounts, [](const TCIMInstance* account) { return SummaryValue(*account, "UserID") == "0"; });
    const auto hasNoShell = [](const TCIMInstance* account) { return !HasBoolean(*account, "HasLoginShell", true); };
    accounts.erase(std::remove_if(accounts.begin(), accounts.end(), hasNoShell), accounts.end());
    std::string text = std::to_string(accounts.size()) + " of " + std::to_string(all) + " with a login shell";
    if (accounts.empty()) return {text};
    const bool isKnown = CountInState(accounts, 0) == 0;
    text += isKnown ? Counted(CountInState(accounts, kLocked), " of them locked") : ", not known which are locked";
    if (const size_t open = CountInState(accounts, kNoneNeeded); open != 0) text += Counted(open, " without password");
    if (superusers > 1) text += Counted(superusers, " superusers");
    return {text};
}
