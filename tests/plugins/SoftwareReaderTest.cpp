#include <filesystem>

#include "AptLists.h"
#include "DebianVersion.h"
#include "PackageFormats.h"
#include "RepositoryFiles.h"
#include "support/TestSupport.h"

namespace {

/// What a fact says: its value, or why there is none.
std::string Told(const TFact<std::string>& fact) { return fact ? *fact : AbsenceText(fact.absence); }

std::string Described(const TPackage& package) {
    return package.name + ' ' + package.id + ' ' + Told(package.version) + " of " + Told(package.source);
}

/// The header of rpm with texts and numbers, of which the tags begin with 1000 or 5009.
std::string RpmHeader(const std::vector<std::pair<uint32_t, std::string>>& fields) {
    std::string entries, data;
    const auto number = [](size_t value) {
        std::string bytes;
        for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(value >> shift & 0xff);
        return bytes;
    };
    for (const auto& [tag, value] : fields) {
        const bool isNumber = tag == 1003 || tag == 1008 || tag == 1009;
        entries += number(tag) + number(isNumber ? 4 : tag == 5009 ? 5 : 6) + number(data.size()) + number(1);
        data += isNumber || tag == 5009 ? value : value + '\0';
    }
    return number(fields.size()) + number(data.size()) + entries + data;
}

/// A machine with what makes its package listing, and what is missing of it then.
struct TMachine {
    const char* osRelease;
    std::vector<std::pair<const char*, const char*>> files;
    const char* missing;
};

const std::string kDpkgStatus = "var/lib/dpkg/status";

}  // namespace

TEST(SoftwareReaderTest, PackagesAreReadFieldByField) {
    const auto packages = ParseDpkgStatus(
        "Package: zlib1g\nStatus: hold ok installed\nArchitecture: amd64\nInstalled-Size: 168\nVersion: 1:1.2.13\n"
        "Description: compression library\n Version: of the text, not of the package\n\n"
        "Package: gone\nStatus: deinstall ok config-files\nArchitecture: all\n\n\n"
        "Broken\nStatus: install ok installed\n\n"
        "Package: odd\nStatus: installed\nInstalled-Size: much\nEssential: yes",
        "status");
    ASSERT_EQ(packages.size(), 3u);
    EXPECT_EQ(*packages[0].version, "1:1.2.13");
    EXPECT_EQ(*packages[0].installedSize, 168u * 1024);
    EXPECT_EQ(*packages[0].summary, "compression library");
    EXPECT_TRUE(packages[0].isHeld);
    EXPECT_EQ(packages[1].name, "gone");
    EXPECT_EQ(*packages[1].status, eConfigFiles);
    EXPECT_FALSE(packages[1].version);
    EXPECT_EQ(packages[2].status.absence, EAbsence::eNotSupported);
    EXPECT_EQ(packages[2].installedSize.absence, EAbsence::eNotSupported);
    EXPECT_TRUE(*packages[2].essential);
}

TEST(SoftwareReaderTest, RpmHeadersAreReadWithinTheirBounds) {
    using TParts = std::vector<std::pair<uint32_t, std::string>>;
    const std::string two("\0\0\0\2", 4), large("\0\0\0\1\0\0\0\0", 8);
    const TParts plain = {{1000, "zlib"}, {1001, "1.3"}, {1002, "5"}, {1022, "x86_64"}};
    const auto with = [&](const TParts& more) {
        TParts fields = plain;
        fields.insert(fields.end(), more.begin(), more.end());
        return RpmHeader(fields);
    };
    const std::pair<std::string, const char*> cases[] = {
        {RpmHeader(plain), "zlib x86_64 1.3-5 of not present"},
        {with({{1003, two}, {1044, "zlib-1.3-5.src.rpm"}}), "zlib x86_64 2:1.3-5 of not present"},
        {with({{1044, "z-lib-1.3-6.nosrc.rpm"}}), "zlib x86_64 1.3-5 of z-lib (1.3-6)"},
        {with({{1044, "nothing"}}), "zlib x86_64 1.3-5 of nothing"},
        {RpmHeader({{1000, "(none)"}}), "  not present of not present"},
        {RpmHeader(plain).substr(0, 40), "  not present of not present"},
        {"", "  not present of not present"},
        {std::string(8, '\xff'), "  not present of not present"},
    };
    for (const auto& [header, told] : cases) EXPECT_EQ(Described(ParseRpmHeader(header, "db")), told);
    EXPECT_EQ(*ParseRpmHeader(with({{1009, two}, {5009, large}}), "db").installedSize, uint64_t{1} << 32);
    std::string cut = RpmHeader({{1000, "zlib"}});
    cut.back() = 'x';
    EXPECT_EQ(Described(ParseRpmHeader(cut, "db")), "  not present of not present");
}

TEST(SoftwareReaderTest, PacmanAndApkKeepParagraphs) {
    const TPackage pacman = ParsePacmanDesc(
        "%NAME%\nzexample\n\n%VERSION%\n1:2.3-4\n\n%BASE%\nexample\n\n%ARCH%\nany\n\n%INSTALLDATE%\n1795358105\n\n"
        "%SIZE%\n-1\n\n%GROUPS%\nbase\ndevel\n\n%DESC%\n\nlost",
        "desc");
    EXPECT_EQ(Described(pacman), "zexample any 1:2.3-4 of example");
    EXPECT_EQ(*pacman.installDate, 1795358105);
    EXPECT_EQ(pacman.installedSize.absence, EAbsence::eNotSupported);
    EXPECT_EQ(*pacman.section, "base");
    const auto apk = ParseApkInstalled("C:x\nP:a\nV:1-r0\nA:x86_64\no:b\nF:P:not\n\nV:2\n\nP:b\no:b", "installed");
    ASSERT_EQ(apk.size(), 2u);
    EXPECT_EQ(Described(apk[0]), "a x86_64 1-r0 of b");
    EXPECT_EQ(Described(apk[1]), "b  not present of not present");
}

TEST(SoftwareReaderTest, ListingIsCompleteWithThePackagesOfTheDistribution) {
    const char *dpkg = "var/lib/dpkg/status", *apk = "usr/lib/apk/db/installed", *snap = "var/lib/snapd/snaps/a_1.snap";
    const char *deb = "Package: a\nArchitecture: all\n", *alpine = "P:a\nA:all\n";
    const TMachine machines[] = {
        {"ID=debian\n", {{dpkg, deb}}, ""},
        {"ID=debian\n", {{dpkg, ""}, {apk, alpine}}, "not present: /var/lib/dpkg/status"},
        {"ID=alpine\n", {{apk, alpine}}, ""},
        {"ID=alpine\n", {{dpkg, deb}, {snap, ""}}, "not present: /lib/apk/db/installed"},
        {"ID=own\nID_LIKE=\"rhel fedora\"\n", {{"var/lib/rpm/Packages", ""}}, "not supported: /var/lib/rpm/Packages"},
        {"ID=suse\n", {{"usr/lib/sysimage/rpm/Packages.db", ""}}, "not supported: /usr/lib/sysimage/rpm/Packages.db"},
        {"ID=arch\n", {{"var/lib/pacman/local/ALPM_DB_VERSION", "9"}}, "not present: /var/lib/pacman/local"},
        {"ID=arch\n", {{"var/lib/pacman/local/a-1/desc", "damaged"}}, "read error: /var/lib/pacman/local/a-1/desc"},
        {"ID=gentoo\n", {{dpkg, deb}}, "not supported: packages of gentoo"},
        {"ID=unheard-of\n", {{apk, alpine}}, ""},
        {"ID=unheard-of\n", {{snap, ""}}, "not supported: packages of unheard-of"},
        {"NAME=None\n", {{snap, ""}}, "not present: /var/lib/dpkg/status"},
    };
    for (const TMachine& machine : machines) {
        const TempFolder root;
        root.Write("etc/os-release", machine.osRelease);
        for (const auto& [file, text] : machine.files) root.Write(file, text);
        std::string told;
        for (const TListing& missing : ReadPackages(TSystemRoot(root.Path())).missing)
            told += std::string(AbsenceText(missing.absence)) + ": " + missing.source;
        EXPECT_EQ(told, machine.missing) << machine.osRelease;
    }
}

TEST(SoftwareReaderTest, EachPackageHasKeysOfItsOwn) {
    const TempFolder root;
    root.Write(kDpkgStatus,
               "Package: a\nArchitecture: all\nVersion: 1\n\nPackage: b\nArchitecture: all\n\nPackage: "
               "b\nArchitecture: all\n");
    root.Write("lib/apk/db/installed",
               "P:a\nA:all\nV:2\n\nP:a\nA:all\nV:2\n\nP:c\nA:all\n\nP:d\nA:x\nV:1\n\nP:d\nA:x\nV:2\n");
    root.Write("var/lib/pacman/local/d-1/desc", "%NAME%\nd\n\n%ARCH%\nx\n\n%VERSION%\n1\n");
    std::string told;
    for (const TPackage& package : ReadPackages(TSystemRoot(root.Path())).items)
        told += package.name + '/' + package.id + ' ';
    EXPECT_EQ(told, "a/all a/all:2 b/all c/all d/x:1 d/x:2 ");
}

TEST(SoftwareReaderTest, VersionsOfDebianAreOrdered) {
    // Each is older than the next.
    const char* const versions[] = {"~~",         "~~a",
                                    "~",          "",
                                    "0.9",        "1.0~rc1",
                                    "1.0",        "1.0-0+b1",
                                    "1.0-1~bpo1", "1.0-1",
                                    "1.0-1deb",   "1.0-1+b2",
                                    "1.0-1+b10",  "1.0-1.1",
                                    "1.0a",       "1.0b",
                                    "1.0+dfsg",   "1.0.1",
                                    "1.9",        "1.10",
                                    "1.010-2",    "99999999999999999999",
                                    "1:0",        "2:0"};
    for (size_t i = 0; i < std::size(versions); ++i)
        for (size_t j = 0; j < std::size(versions); ++j)
            EXPECT_EQ(IsOlderVersion(versions[i], versions[j]), i < j) << versions[i] << " and " << versions[j];
    const std::pair<const char*, const char*> equal[] = {
        {"1.0", "1.00"}, {"0:1", "1"}, {"1-0", "1"}, {"1.0-0", "1.0-00"}};
    for (const auto& [a, b] : equal) EXPECT_FALSE(IsOlderVersion(a, b) || IsOlderVersion(b, a)) << a << " and " << b;
}

TEST(SoftwareReaderTest, SecretsAreTakenOutOfAddresses) {
    const std::pair<const char*, const char*> cases[] = {
        {"https://deb.example.org/debian", "https://deb.example.org/debian"},
        {"https://user:pa@ss@host:80/a", "https://host:80/a"},
        {"https://user:p@s/s@host/x", "https://host/x"},
        {"https:/user:pass@host/x", "https:/host/x"},
        {"//user:pass@host/x", "//host/x"},
        {"http://h/x?a=1;token=x&b=2", "http://h/x?b=2"},
        {"http://h/x#token=x", "http://h/x"},
        {"https://updates.example.org/product/?AbCd0123", "https://updates.example.org/product/"},
        {"https://user:p/a?s#s@host/x", "https://host/x"},
        {"https://token@host", "https://host"},
        {"http://host:8080/@scope/x", "http://host:8080/@scope/x"},
        {"http://[::1]:80/a@b", "http://[::1]:80/a@b"},
        {"http://h/?repo=fedora-40&Auth_Token=x&arch=$basearch&password=y", "http://h/?repo=fedora-40&arch=$basearch"},
        {"http://h/?token=x", "http://h/"},
        {"mirror+file:/etc/apt/mirrors/x.list", "mirror+file:/etc/apt/mirrors/x.list"},
        {"", ""},
        {"://", "://"},
    };
    for (const auto& [url, told] : cases) EXPECT_EQ(WithoutSecrets(url), told);
}

TEST(SoftwareReaderTest, RepositoriesHaveNamesOfTheirOwnWithoutSecrets) {
    const TempFolder root;
    root.Write("etc/yum.repos.d/x.repo",
               "[SECRET@h_x]\nname=created from https://u:SECRET@h/x\n[a]\nname=A #1\n[a]\nname=A\n[a #2]\n[a]\n");
    root.Write("etc/apt/sources.list.d/x.sources",
               "Types: deb\nUris: http://u:SECRET@h/\nSuites: s\nComponents: a\n# note\n b\nenabled: no\n");
    std::string told;
    for (const TRepository& each : ReadRepositories(TSystemRoot(root.Path())).items)
        told += each.name + '|' + each.title + '|' + std::to_string(each.components.size()) +
                (each.isEnabled ? "; " : " off; ");
    EXPECT_EQ(told, "http://h/ s||2 off; h_x|created from https://h/x|0; a|A #1|0; a #2|A|0; a #2 #2||0; a #3||0; ");
}

TEST(SoftwareReaderTest, PacmanTakesServersOfIncludedFiles) {
    const auto include = [](const std::string& path) {
        return path == "/list" ? "# a mirror\nServer = https://m.example.org/$repo/os/$arch\nInclude = /list\n" : "";
    };
    const TRepositories repositories = ParsePacmanRepositories(
        "[options]\nSigLevel = Required DatabaseNever\nServer = x\n[core]\nInclude = /list\n[own]\nSigLevel = "
        "Never\nServer=file:///srv\n",
        "pacman.conf", include);
    ASSERT_EQ(repositories.size(), 2u);
    EXPECT_EQ(repositories[0].urls, std::vector<std::string>{"https://m.example.org/core/os/$arch"});
    EXPECT_EQ(repositories[0].checksSignatures, true);
    EXPECT_EQ(repositories[1].checksSignatures, false);
}

TEST(SoftwareReaderTest, UpdatesAreThoseThatAptWouldInstall) {
    const std::string lists = "var/lib/apt/lists/h_dists_";
    const auto packages = ParseDpkgStatus(
        "Package: dpkg\nStatus: install ok installed\nArchitecture: amd64\nVersion: 1\n\n"
        "Package: plain\nStatus: install ok installed\nArchitecture: amd64\nVersion: 1.9\n\n"
        "Package: plain\nStatus: install ok installed\nArchitecture: i386\nVersion: 1.9\n\n"
        "Package: held\nStatus: hold ok installed\nArchitecture: all\nVersion: 1\n\n"
        "Package: ported\nStatus: install ok installed\nArchitecture: amd64\nVersion: 2~bpo1\n\n"
        "Package: gone\nStatus: deinstall ok config-files\nArchitecture: amd64\nVersion: 1\n\n"
        "Package: newer\nStatus: install ok installed\nArchitecture: amd64\nVersion: 9\n",
        "status");
    const auto paragraph = [](const std::string& name, const std::string& architecture, const std::string& version) {
        return "Package: " + name + "\nArchitecture: " + architecture + "\nVersion: " + version + "\n\n";
    };
    const TempFolder root;
    root.Write(lists + "s_main_binary-amd64_Packages",
               paragraph("plain", "amd64", "1.10") + paragraph("plain", "amd64", "1.2") +
                   paragraph("held", "amd64", "2") + paragraph("ported", "amd64", "1") +
                   paragraph("gone", "amd64", "2") + paragraph("newer", "amd64", "8"));
    root.Write(lists + "s_main_binary-amd64_Packages.diff_Index", "SHA256-Current: x\n");
    root.Write(lists + "s_main_binary-i386_Packages", paragraph("held", "i386", "3"));
    root.Write(lists + "s-security_InRelease", "Suite: s-security\nDate: Thu, 01 Jan 1970 00:01:00 UTC\n");
    root.Write(lists + "s-security_main_binary-amd64_Packages", paragraph("plain", "amd64", "1.9.1"));
    root.Write(lists + "b_Release", "Suite: b\nNotAutomatic: yes\nButAutomaticUpgrades: yes\n");
    root.Write(
        lists + "b_main_binary-amd64_Packages",
        paragraph("ported", "amd64", "2~bpo2") + paragraph("plain", "amd64", "7") + paragraph("dpkg", "amd64", "9"));
    root.Write(lists + "e_Release", "Suite: e\nNotAutomatic: yes\n");
    root.Write(lists + "e_main_binary-amd64_Packages", paragraph("newer", "amd64", "10"));
    const TPendingUpdates updates = ReadPendingUpdates(TSystemRoot(root.Path()), packages);
    EXPECT_TRUE(updates.listing);
    EXPECT_EQ(*ReadUpdateState(TSystemRoot(root.Path()), packages)->listDate, 60);
    std::string told;
    for (const TPendingUpdate& update : updates.updates)
        told += update.name + '/' + update.architecture + ' ' + update.candidate +
                (update.isSecurity ? " security" : "") + (update.isHeld ? " held" : "") + "; ";
    EXPECT_EQ(told, "dpkg/amd64 9; held/all 2 held; plain/amd64 1.10 security; ported/amd64 2~bpo2; ");
}

TEST(SoftwareReaderTest, ModulesAreReadWithTheirUsers) {
    const auto modules = ParseModules(
        "virtio_net 61440 0 - Live 0x0000000000000000\nshort line\n"
        "failover 16384 2 net_failover,virtio_net, Live 0x0 (OE)\nkvm 999 x [permanent], Dying 0x0\n",
        "modules");
    ASSERT_EQ(modules.size(), 3u);
    EXPECT_EQ(modules[0].users, (std::vector<std::string>{"net_failover", "virtio_net"}));
    EXPECT_EQ(*modules[0].size, 16384u);
    EXPECT_EQ(modules[1].referenceCount.absence, EAbsence::eNotSupported);
    EXPECT_EQ(modules[1].state.absence, EAbsence::eNotSupported);
    EXPECT_TRUE(modules[1].users.empty());
    EXPECT_EQ(*modules[2].state, eLive);
}

TEST(SoftwareReaderTest, ServicesTellHowTheyAreStartedAndWhetherTheyRun) {
    const TempFolder root;
    const std::string units = "usr/lib/systemd/system/", etc = "etc/systemd/system/";
    root.Write(units + "ssh.service", "[Unit]\nDescription=Secure shell\n[Install]\nWantedBy=multi-user.target\n");
    root.Write(units + "cron.service", "[Unit]\nDescription = Runs at times\n\n[Install]\n");
    root.Write(units + "vsftpd.service", "[Install]\n");
    root.Write(units + "once.service", "[Unit]\n");
    root.Write(units + "my-getty@.service", "[Unit]\nDescription=Getty on %I, %p\n");
    root.Write(units + "udevd.service", "[Unit]\nDescription=Watches\n");
    std::filesystem::create_symlink("/dev/null", root.Path() + '/' + units + "old.service");
    root.Write(etc + "multi-user.target.wants/ssh.service", "");
    root.Write(etc + "getty.target.wants/my-getty@tty1.service", "");
    std::filesystem::create_symlink("/usr/lib/systemd/system/cron.service", root.Path() + '/' + etc + "times.service");
    root.Write("run/systemd/generator.late/lsb.service", "[Unit]\nDescription=LSB: of a script\n");
    root.Write("run/systemd/generator.late/multi-user.target.wants/lsb.service", "");
    const std::string slice = "sys/fs/cgroup/system.slice/";
    root.Write(slice + "ssh.service/cgroup.procs", "812\n");
    root.Write(slice + "udevd.service/cgroup.procs", "");
    root.Write(slice + "udevd.service/cgroup.events", "populated 1\nfrozen 0\n");
    root.Write(slice + "system-my\\x2dgetty.slice/my-getty@tty1.service/cgroup.procs", "813\n");
    const auto services = ReadServices(TSystemRoot(root.Path()));
    std::vector<std::tuple<std::string, uint16_t, std::string, bool>> found;
    for (const TService& service : services)
        found.emplace_back(service.name, *service.startMode, service.description.ValueOr(""), *service.running);
    EXPECT_THAT(found, ::testing::ElementsAre(std::tuple("cron.service", eEnabled, "Runs at times", false),
                                              std::tuple("lsb.service", eEnabled, "LSB: of a script", false),
                                              std::tuple("my-getty@tty1.service", eEnabled, "Getty on tty1, %p", true),
                                              std::tuple("old.service", eMasked, "", false),
                                              std::tuple("once.service", eStatic, "", false),
                                              std::tuple("ssh.service", eEnabled, "Secure shell", true),
                                              std::tuple("udevd.service", eStatic, "Watches", true),
                                              std::tuple("vsftpd.service", eDisabled, "", false)));
}
