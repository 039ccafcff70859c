// The plugin "accounts": the users and groups that this machine itself knows. Of a password only its state is told.
#include "AccountsFacts.h"
#include "DataPlugin.h"
#include "InstanceReport.h"

namespace {

constexpr const char* kAccount = "MOLTA_Account";
constexpr const char* kGroup = "MOLTA_Group";
constexpr const char* kSystemAccount = "MOLTA_AccountOnSystem";
constexpr const char* kMember = "MOLTA_MemberOfGroup";
constexpr const char* kShadow = "/etc/shadow";

TInstancePath PathOf(const TAccount& account) { return ScopedPath(kAccount, account.name); }
TInstancePath PathOf(const TGroup& group) { return {kGroup, {{"CreationClassName", kGroup}, {"Name", group.name}}}; }

/// Reports one account.
class TAccountReport {
public:
    TAccountReport(kyrIOHandle handle, const TAccountsFacts& facts, const TAccount& account)
        : fReport(handle, PathOf(account)), fFacts(facts), fAccount(account) {}

    kyrStatusCode Report() {
        const std::string& source = fFacts.accountListing.source;
        fReport.Set("Caption", "Account " + fAccount.name);
        AddText("FullName", fAccount.fullName, source);
        fReport.Add("UserID", TFact<uint32_t>::Of(fAccount.userId, source));
        fReport.Add("GroupID", TFact<uint32_t>::Of(fAccount.groupId, source));
        AddText("HomeDirectory", fAccount.home, source);
        AddText("LoginShell", fAccount.shell, source);
        fReport.Add("HasLoginShell", TFact<bool>::Of(IsLoginShell(fAccount.shell), source));
        fReport.Add("SystemAccount", fFacts.firstUser.Map([this](uint32_t first) { return IsOfSystem(first); }));
        AddPassword();
        AddLogin();
        return fReport.Finish();
    }

private:
    void AddText(const char* property, const std::string& text, const std::string& source) {
        if (!text.empty()) fReport.Add(property, TFact<std::string>::Of(text, source));
    }

    // The last numbers of 16 bits stand for nobody.
    std::optional<bool> IsOfSystem(uint32_t first) const {
        return fAccount.userId < first || fAccount.userId == 65534 || fAccount.userId == 65535;
    }

    template <typename T>
    TFact<T> OfShadow(T value) const {
        return TFact<T>::Of(value, kShadow);
    }

    void AddPassword() {
        if (fAccount.ownState)
            fReport.Add("PasswordState",
                        TFact<uint16_t>::Of(static_cast<uint16_t>(*fAccount.ownState), fFacts.accountListing.source));
        else if (fAccount.age)
            fReport.Add("PasswordState", OfShadow(static_cast<uint16_t>(fAccount.age->state)));
        else
            fReport.Add("PasswordState", TFact<uint16_t>::Missing(fFacts.shadow.absence, kShadow));
        fAccount.age ? AddAge(*fAccount.age) : AddNoAge();
    }

    void AddAge(const TPasswordAge& age) {
        fReport.Add("MustChangePassword", OfShadow(age.mustChange));
        AddDay("PasswordLastChanged", age.lastChanged);
        AddDay("PasswordExpires", age.expires);
        AddDay("AccountExpires", age.accountExpires);
    }

    void AddDay(const char* property, std::optional<int64_t> day) {
        constexpr int64_t kSecondsOfDay = 86'400;
        if (day) fReport.Add(property, OfShadow(TTimestamp{*day * kSecondsOfDay}));
    }

    void AddNoAge() {
        for (const char* property : {"MustChangePassword", "PasswordLastChanged", "PasswordExpires", "AccountExpires"})
            fReport.Add(property, TFact<bool>::Missing(fFacts.shadow.absence, kShadow));
    }

    void AddLogin() {
        if (!fAccount.login) {
            if (!fFacts.logins)
                fReport.Add("LastLogin", TFact<TTimestamp>::Missing(fFacts.logins.absence, fFacts.logins.source));
            return;
        }
        const TLogin& login = *fAccount.login;
        fReport.Add("LastLogin", TFact<TTimestamp>::Of({login.time}, login.source));
        AddText("LastLoginTerminal", login.terminal, login.source);
        AddText("LastLoginFrom", login.host, login.source);
    }

    TInstanceReport fReport;
    const TAccountsFacts& fFacts;
    const TAccount& fAccount;
};

template <typename T>
void WarnOfLines(const char* className, const std::string& file, const TEntries<T>& entries) {
    const auto warn = [&](size_t count, const char* what) {
        if (count != 0) LogWarning(std::string(className) + ": " + file + ": " + what + ": " + std::to_string(count));
    };
    warn(entries.malformed, "lines that are no entry, and have no effect");
    warn(entries.repeated, "lines that repeat a name, and have no effect");
    warn(entries.elsewhere, "lines that stand for entries of NIS, which are not listed");
}

kyrStatusCode ReportAccounts(kyrIOHandle handle, const TAccountsFacts& facts) {
    WarnOfLines(kAccount, facts.accountListing.source, facts.accounts);
    return ReportEach(facts.accounts.entries,
                      [&](const TAccount& account) { return TAccountReport(handle, facts, account).Report(); });
}

kyrStatusCode ReportGroups(kyrIOHandle handle, const TAccountsFacts& facts) {
    const std::string& source = facts.groupListing.source;
    WarnOfLines(kGroup, source, facts.groups);
    return ReportEach(facts.groups.entries, [&](const TGroup& group) {
        TInstanceReport report(handle, PathOf(group));
        report.Set("Caption", "Group " + group.name);
        report.Add("GroupID", TFact<uint32_t>::Of(group.groupId, source));
        if (!group.members.empty()) report.Add("Members", TFact<std::vector<std::string>>::Of(group.members, source));
        return report.Finish();
    });
}

kyrStatusCode ReportAccountsOnSystem(kyrIOHandle handle, const TAccountsFacts& facts) {
    return ReportSystemDevices(handle, kSystemAccount, facts.accounts.entries,
                               [](const TAccount& account) { return PathOf(account); });
}

kyrStatusCode ReportMembers(kyrIOHandle handle, const TAccountsFacts& facts) {
    return ReportEach(facts.memberships, [&](const std::pair<size_t, size_t>& membership) {
        return ReportAssociation(handle, kMember, "Collection", PathOf(facts.groups.entries[membership.second]),
                                 "Member", PathOf(facts.accounts.entries[membership.first]));
    });
}

TListing Accounts(const TAccountsFacts& facts) { return facts.accountListing; }
TListing Groups(const TAccountsFacts& facts) { return facts.groupListing; }

const TDataPlugin<TAccountsFacts> gPlugin("accounts", ReadAccounts,
                                          {{kAccount, ReportAccounts, {Accounts}},
                                           {kGroup, ReportGroups, {Groups}},
                                           {kSystemAccount, ReportAccountsOnSystem, {Accounts}},
                                           {kMember, ReportMembers, {Accounts, Groups}}});

}  // namespace
