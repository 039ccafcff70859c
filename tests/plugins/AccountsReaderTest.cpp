#include <gtest/gtest.h>
#include <lastlog.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "Logins.h"

namespace {

namespace fs = std::filesystem;

/// The state of a password and how the account stands, as "L 19000 19090 - !"
std::string Told(const TPasswordAge& age) {
    const auto day = [](std::optional<int64_t> days) { return ' ' + (days ? std::to_string(*days) : "-"); };
    return std::string(1, " ULN"[static_cast<size_t>(age.state)]) + day(age.lastChanged) + day(age.expires) +
           day(age.accountExpires) + (age.mustChange ? " !" : "");
}

/// A record of lastlog with a time of 32 or 64 bits.
template <typename TTime>
std::string LastLogRecord(TTime time, const char* terminal, const char* host) {
    std::string record(sizeof time + 32 + 256, '\0');
    std::memcpy(record.data(), &time, sizeof time);
    record.replace(sizeof time, std::strlen(terminal), terminal);
    record.replace(sizeof time + 32, std::strlen(host), host);
    return record;
}

}  // namespace

TEST(AccountsReaderTest, LinesOfShadowTellStateAndDates) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"$6$salt$hash:19000:0:99999:7:::", "U 19000 - -"}, {"*:19000:0:90:7:::", "L 19000 19090 -"},
        {"!$6$salt$hash:19000:0:9999:7::19500:", "L 19000 28999 19500"}, {"!!:::::::", "L - - -"}, {":::::::", "N - - -"},
        {"x:0:0:90:7::0:", "U - - 0 !"}, {"x:-1:0:-1::-1:-1:", "U - - -"}, {"x:1e3:0:9x:::2932897:", "U - - -"},
        {"x:99999999999999999999:0:5::::", "U - - -"}, {"", "N - - -"}};
    // clang-format on
    for (const auto& [line, told] : cases) {
        const auto ages = ParseShadow("# comment\nanna:" + std::string(line) + "\nanna:late:1::::::\n");
        ASSERT_EQ(ages.size(), 1u) << line;
        EXPECT_EQ(Told(ages.at("anna")), told) << line;
    }
}

TEST(AccountsReaderTest, EntriesAreThoseThatTheCLibraryFinds) {
    const auto accounts =
        ParsePasswd("a:x:1:2:A B,room:/a:/bin/a\nb::3:4\na:x:9:9:::\nc:x:x:1:::\n+:::\n\n#d:x:5:5:::\n");
    ASSERT_EQ(accounts.entries.size(), 2u);
    EXPECT_EQ(accounts.repeated + accounts.malformed + accounts.elsewhere, 3u);
    EXPECT_EQ(accounts.entries[0].fullName, "A B");
    EXPECT_EQ(accounts.entries[1].shell, "/bin/sh");
    EXPECT_EQ(accounts.entries[1].ownState, EPasswordState::eNoneNeeded);
    const auto groups = ParseGroups("g:x:2:b,a,b,nobody,,b\nh:x:4:b\ni:x:4:a\n");
    const std::vector<std::pair<size_t, size_t>> expected = {{0, 0}, {0, 2}, {1, 0}, {1, 1}};
    EXPECT_EQ(FindMemberships(accounts.entries, groups.entries), expected);
    for (const char* shell : {"/usr/sbin/nologin", "/bin/false", "nologin"}) EXPECT_FALSE(IsLoginShell(shell));
    EXPECT_TRUE(IsLoginShell("/opt/nologin/bash"));
}

// By lastlog and wtmp, by wtmp and wtmpdb, by lastlog2, and by none of them.
TEST(AccountsReaderTest, LatestRecordOfALoginCounts) {
    // clang-format off
    const std::tuple<const char*, const char*, int64_t, const char*, const char*> cases[] = {
        {"server", "anna", 1709281800, "pts/1", "2001:db8:20::77"}, {"server", "carl", 1600000000, "pts/3", "admin.example.net"},
        {"server", "ben", 0, "", ""}, {"laptop", "anna", 1719900360, "tty2", ""}, {"laptop", "root", 1719910000, "pts/1", "192.0.2.9"},
        {"virtual", "ubuntu", 1714521700, "pts/0", "198.51.100.7"}, {"virtual", "root", 0, "", ""}, {"container", "root", 0, "", ""}};
    // clang-format on
    for (const auto& [machine, name, time, terminal, host] : cases) {
        const TAccountsFacts facts = ReadAccounts(TSystemRoot(std::string(MACHINES "/") + machine));
        EXPECT_EQ(bool(facts.logins), std::string(machine) != "container");
        for (const TAccount& account : facts.accounts.entries) {
            if (account.name != name) continue;
            const TLogin login = account.login.value_or(TLogin{0, "", "", ""});
            EXPECT_EQ(std::tie(login.time, login.terminal, login.host), std::tuple(time, terminal, host)) << machine;
        }
    }
}

// The file is as large as the largest number of a user makes it, and has a place for each.
TEST(AccountsReaderTest, LastLoginIsFoundInASparseFile) {
    const fs::path root = fs::path(::testing::TempDir()) / "sparse-lastlog";
    fs::create_directories(root / "var/log");
    const std::string record = LastLogRecord<decltype(lastlog::ll_time)>(1700000000, "pts/1", "192.0.2.1");
    std::ofstream(root / "var/log/lastlog").seekp(std::streamoff(record.size()) * 4'000'000'000) << record;
    auto accounts = ParsePasswd("a:x:1:1:::\nfar:x:4000000000:1:::\nfarther:x:4294967295:1:::\n").entries;
    EXPECT_TRUE(ReadLogins(TSystemRoot(root.string()), accounts));
    fs::remove_all(root);
    EXPECT_FALSE(accounts[0].login || accounts[2].login);
    ASSERT_TRUE(accounts[1].login);
    EXPECT_EQ(accounts[1].login->time, 1700000000);
    EXPECT_EQ(accounts[1].login->host, "192.0.2.1");
}

TEST(AccountsReaderTest, TimesOfBothSizesAreRead) {
    EXPECT_EQ(ParseLastLog(LastLogRecord<int32_t>(5, "tty1", ""))->terminal, "tty1");
    EXPECT_EQ(ParseLastLog(LastLogRecord<int64_t>(int64_t{1} << 33, "tty1", "h"))->time, int64_t{1} << 33);
    EXPECT_FALSE(ParseLastLog(LastLogRecord<int32_t>(0, "tty1", "")));
    EXPECT_FALSE(ParseLastLog("short"));
}
