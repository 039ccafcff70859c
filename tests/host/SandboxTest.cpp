#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "KyrRun.h"

namespace fs = std::filesystem;

namespace {

// Of the kernel; below 1 if it has no Landlock.
int LandlockVersion() {
    return static_cast<int>(
        syscall(SYS_landlock_create_ruleset, nullptr, 0, static_cast<unsigned>(LANDLOCK_CREATE_RULESET_VERSION)));
}

constexpr const char* kNoLandlock = "landlock_create_ruleset landlock_add_rule landlock_restrict_self -- ";

const std::string kNobody = "setpriv --reuid=65534 --regid=65534 --clear-groups ";

bool CanBecomeNobody() { return RunShell(kNobody + KYR_PROGRAM " --version").status == 0; }

#if defined(__SANITIZE_ADDRESS__) || defined(KYR_COVERAGE)
constexpr bool kIsInstrumented = true;
#else
constexpr bool kIsInstrumented = false;
#endif

struct TAct {
    const char* name;
    const char* outcome;
    const char* withoutLandlock;
    int landlock = 1;  // the version from which on the outcome is that
};

constexpr TAct kActs[] = {
    {"write", "EACCES", "done"},
    {"overwrite", "EACCES", "done"},
    {"open to cut", "EACCES", "EPERM", 3},
    {"cut", "EPERM", "EPERM"},
    {"make folder", "EACCES", "done"},
    {"make link", "EACCES", "done"},
    {"make node", "EACCES", "done"},
    {"link", "EACCES", "done"},
    {"rename", "EACCES", "done"},
    {"change mode", "EPERM", "EPERM"},
    {"change owner", "EPERM", "EPERM"},
    {"change times", "EPERM", "EPERM"},
    {"change attribute", "EPERM", "EPERM"},
    {"set flags", "EPERM", "EPERM"},
    {"command device", "EACCES", "done", 5},
    {"speak", "EAFNOSUPPORT", "EAFNOSUPPORT"},
    {"speak raw", "EAFNOSUPPORT", "EAFNOSUPPORT"},
    {"speak to peers", "EPERM", "EPERM"},
    {"send datagrams", "EPERM", "EPERM"},
    {"connect", "EPERM", "EPERM"},
    {"bind abstract", "EPERM", "EPERM"},
    {"bind path", "EACCES", "done"},
    {"listen", "EPERM", "EPERM"},
    {"execute file", "EPERM", "EPERM"},
    {"execute memory", "EPERM", "EPERM"},
    {"signal", "EPERM", "EPERM"},
    {"signal all", "done", "EPERM", 6},
    {"signal thread", "EPERM", "EPERM"},
    {"send signal", "EPERM", "EPERM"},
    {"signal descriptor", "EPERM", "EPERM"},
    {"trace", "EPERM", "EPERM"},
    {"read memory", "EACCES", "EACCES"},
    {"write memory", "EACCES", "EACCES"},
    {"follow descriptor", "EACCES", "EACCES"},
    {"open descriptor", "EACCES", "EACCES"},
    {"set limit", "EPERM", "EPERM"},
    {"set processors", "EPERM", "EPERM"},
    {"set priority", "EPERM", "EPERM"},
    {"set priority of all", "EPERM", "EPERM"},
    {"share core", "EPERM", "EPERM"},
    {"receive message", "EPERM", "EPERM"},
    {"mount", "EPERM", "EPERM"},
    {"unshare", "EPERM", "EPERM"},
    {"make namespace", "EPERM", "EPERM"},
    {"make namespace by new call", "ENOSYS", "ENOSYS"},
    {"use keys", "EPERM", "EPERM"},
    {"use queue", "EPERM", "EPERM"},
    {"call foreign", "ENOSYS", "ENOSYS"},
    {"become another", "EPERM", "EPERM"},
    {"read file", "done", "done"},
    {"read kept", "done", "done"},
    {"read folder", "done", "done"},
    {"write nothing", "done", "EPERM"},
    {"ask space", "done", "done"},
    {"ask interfaces", "done", "done"},
    {"make pair", "done", "done"},
    {"load library", "done", "done"},
    {"signal self", "done", "done"},
    {"end child", "done", "EPERM", 6},
    {"make thread", "done", "done"},
    {"set own limit", "done", "done"},
    {"set own processors", "done", "done"},
    {"remove", "EACCES", "done"},
};

// The acts with what comes of them, sorted.
TLines ExpectedActs(int landlock) {
    TLines acts;
    for (const TAct& act : kActs)
        acts.push_back(std::string(act.name) + ": " + (landlock >= act.landlock ? act.outcome : act.withoutLandlock));
    std::sort(acts.begin(), acts.end());
    return acts;
}

// Of a process without Landlock, with the filter in its place.
TLines ExpectedActsWithProcesses(bool isSuperuser) {
    TLines acts;
    for (const TAct& act : kActs) {
        const std::string name = act.name, outcome = act.outcome;
        const bool isLook = name == "read memory" || name == "open descriptor" || name == "follow descriptor";
        const bool isRefused = outcome == "EACCES" && !isLook;
        const bool isToDevice = name == "ask interfaces" || name == "command device";
        acts.push_back(name + ": " +
                       (isLook && isSuperuser     ? "done"
                        : isRefused || isToDevice ? "EPERM"
                                                  : act.withoutLandlock));
    }
    std::sort(acts.begin(), acts.end());
    return acts;
}

TLines ActsIn(const std::string& printed) {
    const std::string start = "  Id  ";
    std::istringstream lines(printed);
    TLines acts;
    for (std::string line; std::getline(lines, line);)
        if (line.compare(0, start.size(), start) == 0) acts.push_back(line.substr(start.size()));
    std::sort(acts.begin(), acts.end());
    return acts;
}

// All that a plugin may not change.
std::string StateOf(const std::string& folder) {
    return RunShell("cd " + folder + " && ls -lnA --time-style=full-iso && cat kept").out;
}

class TrespassingTest : public testing::Test {
protected:
    TrespassingTest() : fRoot({"trespassing"}) {
        fs::permissions(fFolder.Path(), fs::perms(0777));
        fs::permissions(fRoot.Path(), fs::perms(0755));
        FillFolder();
    }

    void FillFolder() const {
        for (const auto& made : fs::directory_iterator(fFolder.Path())) fs::remove(made);
        fs::permissions(fFolder.Write("kept", "precious"), fs::perms(0666));
    }

    TRunResult Run(const std::string& arguments, const std::string& launcher = "") const {
        return RunKyr("show " + arguments + fRoot.Option(), "KYR_TEST_FOLDER=" + fFolder.Path() + " " + launcher);
    }

    TRunResult Try(const std::string& arguments = "", const std::string& launcher = "") const {
        return Run("--class TEST_Act " + arguments, launcher);
    }

    std::string SandboxOf(const std::string& arguments, const std::string& launcher = "") const {
        const std::string text = Run("--class MOLTA_CollectedPlugin " + arguments, launcher).out;
        const std::string name = "\n  Sandbox ";
        const size_t start = text.find_first_not_of(' ', text.find(name) + name.size());
        return text.find(name) == std::string::npos ? "" : text.substr(start, text.find('\n', start) - start);
    }

    const TempFolder fFolder;
    const TPluginRoot fRoot;
};

class SandboxTest : public TrespassingTest {
protected:
    void SetUp() override {
        if (kIsInstrumented) GTEST_SKIP() << "an instrumented build has no sandbox";
    }
};

class LandlockTest : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        if (LandlockVersion() < 1) GTEST_SKIP() << "needs a kernel with Landlock";
    }
};

}  // namespace

TEST_F(LandlockTest, PluginReadsAndDoesNothingElse) {
    const std::string before = StateOf(fFolder.Path());
    const TRunResult run = Try();
    EXPECT_EQ(ActsIn(run.out), ExpectedActs(LandlockVersion()));
    EXPECT_THAT(run, FieldsAre(0, _, ""));
    EXPECT_EQ(StateOf(fFolder.Path()), before);
}

TEST_F(LandlockTest, HoldsForAnOrdinaryUserToo) {
    if (!CanBecomeNobody()) GTEST_SKIP() << "needs a superuser who can become nobody";
    const std::string before = StateOf(fFolder.Path());
    EXPECT_EQ(ActsIn(Try("--sandbox require", kNobody).out), ExpectedActs(LandlockVersion()));
    EXPECT_EQ(StateOf(fFolder.Path()), before);
    EXPECT_EQ(SandboxOf("", kNobody), "landlock " + std::to_string(LandlockVersion()) + ", seccomp, capabilities");
}

TEST_F(SandboxTest, PluginCannotInterruptTheHost) {
    EXPECT_THAT(RunKyrWith({"interrupting"}, "collect"), FieldsAre(0, HasSubstr("TEST_First (3)\n"), ""));
}

TEST_F(SandboxTest, SuperuserStillReadsEveryFile) {
    const std::string kept = fFolder.Path() + "/kept";
    fs::permissions(kept, fs::perms(0));
    if (chown(kept.c_str(), 1, 1) != 0) GTEST_SKIP() << "needs a superuser";
    EXPECT_THAT(ActsIn(Try().out), testing::Contains("read kept: done"));
}

TEST_F(SandboxTest, PluginCannotForgeWhatHeld) {
    const TPluginRoot root({"scribbling"});
    EXPECT_THAT(RunKyr("show --class MOLTA_CollectedPlugin" + root.Option()).out,
                HasSubstr("  Sandbox           " + SandboxOf("") + "\n  State             failed\n"));
}

// Otherwise the other tests would show nothing.
TEST_F(SandboxTest, PluginDoesAllThatWithoutOne) {
    const TLines acts = ActsIn(Try("--sandbox off").out);
    for (const char* act : {"write", "overwrite", "cut", "change mode", "speak", "bind abstract", "execute file",
                            "execute memory", "signal", "signal descriptor", "set limit", "remove"})
        EXPECT_THAT(acts, testing::Contains(std::string(act) + ": done"));
    EXPECT_FALSE(fs::exists(fFolder.Path() + "/kept"));
    EXPECT_TRUE(fs::exists(fFolder.Path() + "/new"));
    EXPECT_EQ(SandboxOf("--sandbox off"), "none: switched off");
    EXPECT_EQ(SandboxOf("--in-process"), "none: in the process of the host");
}

TEST_F(SandboxTest, LayerThatIsNotThereIsToldAndRequired) {
    const std::pair<std::string, std::string> cases[] = {
        {std::string("38 ") + kNoLandlock, "no landlock: ENOSYS"},
        {std::string("95 ") + kNoLandlock, "no landlock: EOPNOTSUPP"},
        {std::string("1 ") + kNoLandlock, "no landlock: EPERM"},
        {"1 landlock_restrict_self -- ", "no landlock: EPERM"},
        {"38 seccomp -- ", "no seccomp: ENOSYS"},
        {"1 capset -- ", "no capabilities: EPERM"},
    };
    for (const auto& [refused, missing] : cases) {
        const std::string launcher = REFUSING " " + refused;
        EXPECT_THAT(SandboxOf("", launcher), HasSubstr(missing)) << refused;
        EXPECT_THAT(Run("--class MOLTA_ComputerSystem", launcher), FieldsAre(0, Not(IsEmpty()), ""));
        EXPECT_THAT(Try("--sandbox require", launcher),
                    FieldsAre(3, "",
                              HasSubstr("kyr: plugin ./trespassing/libtrespassing.pi.so: refused: it was not "
                                        "loaded for want of a sandbox: " +
                                        missing)));
    }
}

// As nobody, too, whose processes could look into each other.
TEST_F(SandboxTest, WithoutLandlockTheFilterStillHolds) {
    for (const std::string& user : {std::string(), CanBecomeNobody() ? kNobody : ""}) {
        EXPECT_EQ(ActsIn(Try("", user + REFUSING " 38 " + kNoLandlock).out), ExpectedActs(0)) << user;
        FillFolder();
    }
}

TEST_F(SandboxTest, WhatAClassNeedsIsGrantedByName) {
    const std::string program = "--class TEST_Program ", needs = "kyr: plugin trespassing, class TEST_";
    EXPECT_THAT(Run(program), FieldsAre(1, "TEST_Program\n  Id  1\n",
                                        needs + "Program: partial: it needs exec, which is not granted (--grant "
                                                "trespassing:exec)\n"));
    EXPECT_THAT(Run(program + "--json").out, HasSubstr("\"reasonCode\": \"not granted\""));
    for (const std::string grant : {"--grant trespassing:exec", "--grant libtrespassing:exec", "--sandbox off"})
        EXPECT_THAT(Run(program + grant), FieldsAre(0, _, "")) << grant;
    EXPECT_THAT(Run("--class TEST_Connection").err,
                StartsWith(needs + "Connection: refused: it needs network, which "));
    EXPECT_THAT(Run("--class TEST_Drive --grant trespassing:exec").err, HasSubstr("refused: it needs rawio, which"));
    EXPECT_THAT(Run("--class TEST_Odd").err, HasSubstr("refused: it needs luck, which"));
}

TEST_F(LandlockTest, GrantLetsPassWhatItNames) {
    const std::tuple<const char*, std::vector<std::string>, std::vector<std::string>> cases[] = {
        {"exec", {"execute file: done", "execute memory: done"}, {"write: EACCES", "connect: EPERM", "signal: EPERM"}},
        {"network",
         {"speak: done", "connect: done", "listen: done", "send datagrams: done"},
         {"speak raw: EAFNOSUPPORT", "write: EACCES", "execute file: EPERM", "mount: EPERM"}},
        {"rawio", {"command device: done"}, {"write: EACCES", "execute file: EPERM", "mount: EPERM"}},
    };
    for (const auto& [need, passed, refused] : cases) {
        const TLines acts = ActsIn(Try(std::string("--grant trespassing:") + need).out);
        for (const auto& lines : {passed, refused})
            for (const std::string& line : lines) EXPECT_THAT(acts, testing::Contains(line)) << need;
    }
}

TEST_F(LandlockTest, ProcessThatLooksIntoOthersChangesNothingEither) {
    const std::string before = StateOf(fFolder.Path()), grant = "--grant trespassing:processes --sandbox require";
    EXPECT_EQ(ActsIn(Try(grant).out), ExpectedActsWithProcesses(geteuid() == 0));
    EXPECT_THAT(Run("--class MOLTA_CollectedPlugin " + grant).out,
                HasSubstr(" no landlock: processes, seccomp, capabilities\n"));
    if (CanBecomeNobody()) {
        EXPECT_EQ(ActsIn(Try(grant, kNobody).out), ExpectedActsWithProcesses(false));
    }
    EXPECT_EQ(StateOf(fFolder.Path()), before);
}

// There is never neither.
TEST_F(LandlockTest, ProcessWithoutAFilterDoesNotLookIntoOthers) {
    const std::string grant = "--grant trespassing:processes", launcher = REFUSING " 38 seccomp -- ";
    EXPECT_THAT(Run("--class MOLTA_CollectedPlugin " + grant, launcher).out, Not(HasSubstr("no landlock")));
    EXPECT_THAT(ActsIn(Try(grant, launcher).out), testing::IsSupersetOf({"write: EACCES", "read memory: EACCES"}));
}

TEST_F(TrespassingTest, InstrumentedBuildSaysThatItHasNoSandbox) {
    EXPECT_EQ(SandboxOf("") == "none: not in an instrumented build", kIsInstrumented);
    const int status = kIsInstrumented || LandlockVersion() < 1 ? 3 : 0;
    EXPECT_EQ(Try("--sandbox require").status, status);
}

TEST_F(TrespassingTest, WrongUseIsTold) {
    const std::pair<const char*, const char*> cases[] = {
        {"--grant trespasing:exec",
         "kyr: --grant trespasing:exec: no plugin 'trespasing'; did you mean 'trespassing'?\n"},
        {"--grant system:exec",
         "kyr: --grant system:exec: the document of ./system/libsystem.pi.so has no class that needs it\n"},
        {"--grant trespassing:exek",
         "kyr: --grant: unknown need 'exek'; did you mean 'exec'? (try 'kyr show --help')\n"},
        {"--grant exec", "kyr: --grant: 'exec' is no PLUGIN:NEED (try 'kyr show --help')\n"},
        {"--sandbox on", "kyr: --sandbox: 'on' is none of auto, require, off (try 'kyr show --help')\n"},
        {"--sandbox require --in-process",
         "kyr: --in-process and --sandbox do not go together: no plugin has a process of its own (try 'kyr show "
         "--help')\n"},
        {"--sandbox off --from a.xml",
         "kyr: --from and --sandbox do not go together: no plugin is asked for a saved collection (try 'kyr show "
         "--help')\n"},
    };
    for (const auto& [arguments, message] : cases) EXPECT_THAT(Run(arguments), FieldsAre(2, "", message));
}

TEST_F(TrespassingTest, GrantForOneOfTwoIsRefused) {
    fs::create_directory_symlink(FIXTURE_PLUGINS "/trespassing", fRoot.Path() + "/other");
    EXPECT_THAT(Run("--grant trespassing:exec"),
                FieldsAre(2, "",
                          "kyr: --grant trespassing:exec: there are two, ./other/libtrespassing.pi.so and "
                          "./trespassing/libtrespassing.pi.so\n"));
}

TEST_F(LandlockTest, MakesNoDifferenceToWhatIsCollected) {
    for (const auto& machine : fs::directory_iterator(MACHINES)) {
        const std::string name = machine.path().filename(), plugins = " --plugins " SYSTEM_PLUGINS;
        const auto collect = [&](const std::string& sandbox) {
            const TRunResult run = RunKyrOn(name, "collect --stable --provenance --sandbox " + sandbox + plugins);
            return std::to_string(run.status) + run.out + run.err;
        };
        EXPECT_EQ(collect("require"), collect("off")) << name;
    }
}
