// What kyr says of classes whose source as a whole is missing: nobody may read "none" where nobody could look.
#include <unistd.h>

#include <filesystem>

#include "host/KyrRun.h"

namespace {

namespace fs = std::filesystem;

/// A part of a recorded machine that is taken away or emptied, and what must be said then.
struct TLoss {
    const char* part;
    bool emptied;
    const char* line;       ///< the beginning of the line on standard error
    const char* lost;       ///< a class of which nothing is known any more
    const char* unchanged;  ///< a class that is complete all the same
};

constexpr TLoss kLosses[] = {
    {"sys", false, "missing source /sys: not present (classes ", "MOLTA_DiskDrive", "MOLTA_SwapArea"},
    {"sys", true, "missing source /sys: not present (classes ", "MOLTA_PCIDevice", "MOLTA_Mount"},
    {"proc", false, "missing source /proc: not present (classes ", "MOLTA_Mount", "MOLTA_DiskDrive"},
    {"sys/class", false, "missing source /sys/class: not present (classes ", "MOLTA_Fan", "MOLTA_PCIDevice"},
    {"sys/class/block", false, "missing source /sys/class/block: not present (classes MOLTA_DiskDrive",
     "MOLTA_DiskDrive", "MOLTA_Mount"},
    {"sys/class/net", true, "missing source /sys/class/net: not present (classes ", "", "MOLTA_IPAddress"},
    {"sys/bus/pci/devices", false, "missing source /sys/bus/pci", "MOLTA_PCIBridgeDevice", "MOLTA_USBDevice"},
    {"sys/bus/usb/devices", false, "missing source /sys/bus/usb", "MOLTA_USBHubDevice", "MOLTA_PCIDevice"},
    {"sys/firmware", false, "missing source /sys/firmware: not present (classes MOLTA_CacheChip",
     "MOLTA_PhysicalMemory", "MOLTA_SystemMemory"},
    {"sys/class/dmi/id", false, "missing source /sys/class/dmi", "MOLTA_SystemBIOSElement", "MOLTA_PhysicalMemory"},
    {"sys/devices/system", false, "missing source /sys/devices/system: not present (classes ", "MOLTA_NUMANode",
     "MOLTA_DiskDrive"},
    {"proc/self/mountinfo", false, "missing source /proc/self", "MOLTA_Mount", "MOLTA_DiskDrive"},
    {"proc/meminfo", false, "missing source /proc/meminfo: not present (classes MOLTA_SystemMemory", "",
     "MOLTA_PhysicalMemory"},
    {"proc/swaps", false, "missing source /proc/swaps: not present (classes MOLTA_SwapArea", "MOLTA_SwapArea",
     "MOLTA_SystemMemory"},
    {"etc", false, "missing source /usr/lib/os-release: not present (classes MOLTA_InstalledOS, MOLTA_OperatingSystem)",
     "MOLTA_DNSSettings", "MOLTA_ComputerSystem"},
    {"etc", true, "missing source /etc: not present (class", "MOLTA_DNSSettings", "MOLTA_NetworkAdapter"},
    {"var/lib/dpkg", false, "missing source /var/lib/dpkg: not present (classes MOLTA_InstalledPackage, MOLTA_Package",
     "MOLTA_Package", "MOLTA_KernelModule"},
    {"etc/passwd", false, "missing source /etc/passwd: not present (classes MOLTA_Account", "MOLTA_AccountOnSystem",
     "MOLTA_Group"},
    {"etc/group", false, "missing source /etc/group: not present (classes MOLTA_Group", "MOLTA_MemberOfGroup",
     "MOLTA_Account"},
    {".kyr/rtnetlink/route", false, "missing source rtnetlink route: not present (classes MOLTA_Route", "MOLTA_Route",
     "MOLTA_IPAddress"},
    {".kyr/sockdiag/tcp", false, "missing source /proc/net/tcp: not present (classes MOLTA_HostedListeningSocket, ", "",
     "MOLTA_UnixListeningSocket"},
    {".kyr/sockdiag/unix", false, "missing source /proc/net/unix: not present (classes MOLTA_HostedListeningSocket, ",
     "MOLTA_UnixListeningSocket", "MOLTA_ListeningSocket"},
};

/// What JSON says of a class up to its instances, which hold the same words.
std::string StateOf(const std::string& name, const std::string& json) {
    const size_t start = json.find("\"name\": \"" + name + "\"");
    return start == std::string::npos ? "" : json.substr(start, json.find("\"instances\"", start) - start);
}

/// A copy of a recorded machine, parts of which can be taken away.
class TMachine : public TempFolder {
public:
    explicit TMachine(const char* machine) {
        fs::copy(std::string(MACHINES "/") + machine, Root(),
                 fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    }

    std::string Root() const { return Path() + "/root"; }
    void Remove(const std::string& part) const { fs::rename(Root() + '/' + part, Path() + "/removed"); }
    /// Puts back what was removed last.
    void Restore(const std::string& part) const {
        fs::remove_all(Root() + '/' + part);
        fs::rename(Path() + "/removed", Root() + '/' + part);
    }
    void Empty(const std::string& part) const {
        Remove(part);
        fs::create_directory(Root() + '/' + part);
    }
    TRunResult Collect() const { return RunKyr("collect --json " ALL_PLUGINS, "KYR_SYSTEM_ROOT=" + Root()); }
};

}  // namespace

TEST(MissingSourcesTest, NothingIsCompleteWithoutItsSource) {
    const TMachine machine("server");
    for (const TLoss& loss : kLosses) {
        loss.emptied ? machine.Empty(loss.part) : machine.Remove(loss.part);
        const TRunResult run = machine.Collect();
        machine.Restore(loss.part);
        SCOPED_TRACE(loss.line + ("\n" + run.err));
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(CountIn(run.err, "kyr: " + std::string(loss.line)), 1u);
        EXPECT_THAT(StateOf(loss.unchanged, run.out), HasSubstr("\"state\": \"complete\""));
        if (*loss.lost == '\0') continue;
        EXPECT_THAT(StateOf(loss.lost, run.out), HasSubstr("\"state\": \"no source\""));
        EXPECT_THAT(StateOf(loss.lost, run.out), HasSubstr("\"reasonCode\": \"source missing\""));
    }
    EXPECT_THAT(machine.Collect(), FieldsAre(0, _, ""));
}

TEST(MissingSourcesTest, MachineWithoutAKindIsComplete) {
    const TMachine machine("server");
    for (const char* kind : {"sys/bus/usb", "sys/class/hwmon", "sys/class/drm"})
        fs::remove_all(machine.Root() + '/' + kind);
    const TRunResult run = machine.Collect();
    EXPECT_THAT(run, FieldsAre(0, _, ""));
    for (const char* name : {"MOLTA_USBDevice", "MOLTA_Fan", "MOLTA_Battery", "MOLTA_KernelModule", "MOLTA_Monitor"})
        EXPECT_THAT(StateOf(name, run.out), HasSubstr("\"state\": \"complete\""));
}

TEST(MissingSourcesTest, SoftwareOfAnyFamilyIsMissedWithoutItsDataBase) {
    constexpr std::pair<const char*, const char*> kFamilies[] = {
        {"ID=fedora\n", "\"state\": \"no source\""},
        {"ID=\"almalinux\"\nID_LIKE=\"rhel centos fedora\"\n", "\"reasonCode\": \"source missing\""},
        {"ID=gentoo\n", "\"packages of gentoo: not supported\"]"},
        {"ID=ubuntu\nID_LIKE=debian\n", "\"reasonCode\": \"source missing\""},
        {"NAME=None\n", "\"reasonCode\": \"source missing\""}};
    const TMachine machine("nvme");
    machine.Remove("var");
    for (const auto& [osRelease, state] : kFamilies) {
        machine.Write("root/etc/os-release", osRelease);
        const TRunResult run = machine.Collect();
        EXPECT_EQ(run.status, 1);
        for (const char* name : {"MOLTA_Package", "MOLTA_InstalledPackage"})
            EXPECT_THAT(StateOf(name, run.out), HasSubstr(state)) << osRelease;
    }
}

// What one source does not tell, a second one may.
TEST(MissingSourcesTest, MachineWithTheSecondOfTwoSourcesIsComplete) {
    const TMachine machine("server");
    const std::pair<const char*, const char*> kCases[] = {{"etc/os-release", "MOLTA_OperatingSystem"},
                                                          {"sys/devices/system/cpu/online", "MOLTA_ProcessorCore"}};
    for (const auto& [part, name] : kCases) {
        machine.Remove(part);
        const TRunResult run = machine.Collect();
        machine.Restore(part);
        EXPECT_THAT(run, FieldsAre(0, _, "")) << part;
        EXPECT_THAT(StateOf(name, run.out), HasSubstr("\"state\": \"complete\"")) << part;
    }
}

// A container or a mount may hide a part of the running machine.
TEST(MissingSourcesTest, FolderThatIsCoveredOnTheRunningMachineIsMissing) {
    if (geteuid() != 0) GTEST_SKIP() << "only a superuser can mount";
    for (const char* folder : {"/sys", "/sys/class/block", "/sys/devices"}) {
        const std::string cover =
            "unshare -m sh -c 'mount -t tmpfs none " + std::string(folder) + " && exec \"$@\"' sh ";
        if (RunShell(cover + "true").status != 0) GTEST_SKIP() << "cannot mount here";
        const TRunResult run = RunShell(cover + KYR_PROGRAM " collect --json " ALL_PLUGINS);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.err, HasSubstr("kyr: missing source " + std::string(folder) + ": not present (classes "));
        EXPECT_THAT(StateOf("MOLTA_MountedFileSystem", run.out), HasSubstr("\"source missing\""));
    }
}

// The states are saved with the collection and narrowed with it.
TEST(MissingSourcesTest, SavedCollectionTellsTheSame) {
    const TMachine machine("virtual");
    machine.Remove("sys");
    const std::string file = machine.Path() + "/saved.xml";
    const TRunResult saved = RunKyr("collect " ALL_PLUGINS " -o " + file, "KYR_SYSTEM_ROOT=" + machine.Root());
    EXPECT_EQ(saved.status, 1);
    EXPECT_THAT(RunKyr("show " + file), FieldsAre(1, _, saved.err));
    EXPECT_THAT(RunKyr("show " + file + " --class MOLTA_DiskDrive"),
                FieldsAre(1, _, HasSubstr("kyr: missing source /sys: not present (class MOLTA_DiskDrive)\n")));
    EXPECT_EQ(RunKyr("show " + file + " --class MOLTA_SwapArea").status, 0);
}
