#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "KyrRun.h"

namespace fs = std::filesystem;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

// Whether a process is left that has the text in its environment.
bool IsAnyoneLeft(const std::string& mark) {
    for (const auto& process : fs::directory_iterator("/proc")) {
        std::ifstream file(process.path() / "environ");
        const std::string environment{std::istreambuf_iterator<char>(file), {}};
        if (environment.find(mark) != std::string::npos) return true;
    }
    return false;
}

struct THostile {
    const char* plugin;
    const char* arguments;
    int status;
    size_t kept;          // instances of its first class
    const char* message;  // a line on standard error; empty: there is none at all
};

constexpr THostile kHostile[] = {
    {"loadcrash", "", 1, 0,
     "kyr: plugin ./loadcrash/libloadcrash.pi.so: failed: SIGSEGV in a load-time constructor (classes TEST_First, "
     "TEST_Second)\n"},
    {"initcrash", "", 1, 0,
     "kyr: plugin ./initcrash/libinitcrash.pi.so: failed: SIGSEGV in its init entry (classes TEST_First, "
     "TEST_Second)\n"},
    {"initexit", "", 1, 0,
     "kyr: plugin ./initexit/libinitexit.pi.so: failed: it ended its process with exit status 3 while it was loaded or "
     "in its init entry (classes TEST_First, TEST_Second)\n"},
    {"datacrash", "", 1, 2,
     "kyr: plugin datacrash: partial: SIGSEGV in its data entry at class TEST_First (class TEST_First)\n"},
    {"datacrash", "", 1, 2,
     "kyr: plugin datacrash, class TEST_Second: failed: SIGSEGV in its data entry at class TEST_First"},
    {"exitcrash", "", 1, 3, "kyr: plugin exitcrash: partial: SIGSEGV in a destructor at exit"},
    {"aborting", "", 1, 2, "kyr: plugin aborting: partial: SIGABRT in its data entry at class TEST_First"},
    {"exiting", "", 1, 2,
     "kyr: plugin exiting: partial: it ended its process with exit status 0 in its data entry at class TEST_First"},
    {"exitingatonce", "", 1, 2,
     "kyr: plugin exitingatonce: partial: it ended its process with exit status 3 in its data entry at class "
     "TEST_First"},
    {"looping", "--timeout 0.3", 1, 2,
     "kyr: plugin looping: partial: no answer within 0.3 s, stopped in its data entry at class TEST_First"},
    {"looping", "--deadline 1", 1, 2,
     "kyr: plugin looping: partial: the deadline of 1 s had passed, stopped in its data entry at class TEST_First"},
    {"ignoring", "--timeout 0.3", 1, 2,
     "kyr: plugin ignoring: partial: no answer within 0.3 s, stopped in its data entry at class TEST_First"},
#if !defined(__SANITIZE_ADDRESS__)  // which leaves no room for a limit of memory
    {"hoarding", "", 1, 2, "kyr: plugin hoarding: partial: SIG"},
#endif
    {"unclosed", "--timeout 0.3", 1, 0,
     "kyr: plugin ./unclosed/libunclosed.pi.so: refused: its document ./unclosed/unclosed.properties.xml "},
    {"scribbling", "", 1, 0, "kyr: plugin ./scribbling/libscribbling.pi.so: failed: it spoilt what it had delivered"},
    {"unclosed", "--deadline 1", 1, 0,
     "kyr: plugin ./unclosed/libunclosed.pi.so: refused: its document ./unclosed/unclosed.properties.xml not read "
     "within 0.1 s"},
    {"signalling", "", 1, 2, "kyr: plugin signalling: partial: signal 64 in its data entry at class TEST_First"},
    {"escaping", "--timeout 0.3", 1, 2, "kyr: plugin escaping: partial: no answer within 0.3 s"},
    {"interrupting", "", 1, 3, "kyr: plugin interrupting: partial: it sent SIG"},
    {"imposing", "", 1, 5,
     "kyr: plugin imposing: partial: kyrAddClass: Allocate instance (CIM class TEST_Shown) threw exception "
     "kyrStatusAccessDenied (and 1 more)\n"},
    {"trying", "", 0, 3, ""},
    {"closing", "", 0, 3, ""},
    {"chattering", "", 0, 3, ""},
    {"shrinking", "", 0, 3, ""},
    {"leaving", "", 0, 3, ""},
};

void PrintTo(const THostile& hostile, std::ostream* stream) {
    *stream << hostile.plugin << " " << hostile.arguments << ": " << hostile.message;
}

std::string NameOf(const ::testing::TestParamInfo<THostile>& info) {
    return info.param.plugin + std::to_string(info.index);
}

}  // namespace

class HostilePlugin : public ::testing::TestWithParam<THostile> {};

TEST_P(HostilePlugin, CostsItsOwnClassesAndNothingElse) {
    const THostile& hostile = GetParam();
    const TPluginRoot root({hostile.plugin, "shown"});
    const std::string mark = "KYR_TEST_ROOT=" + root.Path();
    const TRunResult run = RunKyr(std::string("collect ") + hostile.arguments + root.Option(), mark);
    EXPECT_EQ(run.status, hostile.status) << run.err;
    EXPECT_THAT(run.out, StartsWith("MOLTA_ComputerSystem\n"));
    EXPECT_THAT(run.out, HasSubstr("TEST_Shown (2)\n"));
    EXPECT_THAT(run.out, HasSubstr("MOLTA_InstalledOS\n"));
    EXPECT_EQ(CountIn(run.out, "TEST_First (" + std::to_string(hostile.kept) + ")\n"), hostile.kept != 0) << run.out;
    EXPECT_THAT(run.err, HasSubstr(hostile.message));
    EXPECT_EQ(run.err.empty(), hostile.status == 0) << run.err;
    EXPECT_FALSE(IsAnyoneLeft(mark));
}

INSTANTIATE_TEST_SUITE_P(Plugins, HostilePlugin, ::testing::ValuesIn(kHostile), NameOf);

TEST(IsolationTest, LastWordsAndPrintedLinesStandInTheStates) {
    const TPluginRoot root({"datacrash", "chattering"});
    const TRunResult run = RunKyr("collect --json" + root.Option());
    EXPECT_THAT(run.out, HasSubstr("\"warning: last words\""));
    EXPECT_THAT(run.out, HasSubstr("\"printed: chatter 19999\""));
    EXPECT_EQ(RunKyr("collect -o " + root.Path() + "/out.xml" + root.Option()).status, 1);
}

TEST(IsolationTest, ClassesOfAPluginThatDidNotLoadFallToTheNextThatDeclaresThem) {
    const TPluginRoot root({"initcrash", "leaving"});
    for (const std::string arguments : {"", "--class TEST_First"}) {
        const TRunResult run = RunKyr("collect " + arguments + root.Option());
        EXPECT_THAT(run.out, HasSubstr("TEST_First (3)\n"));
        EXPECT_EQ(run.err, "kyr: plugin ./initcrash/libinitcrash.pi.so: failed: SIGSEGV in its init entry\n");
    }
}

TEST(IsolationTest, ProgressGoesWithoutATrace) {
    if (RunShell("script -qec true /dev/null </dev/null").status != 0)
        GTEST_SKIP() << "needs a pseudo-terminal, which cannot be had here";
    const TPluginRoot root({"looping"});
    const std::string command = KYR_PROGRAM " collect --timeout 0.4 -o " + root.Path() + "/out.xml" + root.Option();
    const std::string terminal = " script -qec 'stty cols 30; " + command + "' /dev/null </dev/null";
    const TRunResult run = RunShell("TERM=xterm" + terminal);
    EXPECT_THAT(run.out, ContainsRegex("\r1 of 2 plugins, [0-9]+ s: looping\033\\[K\r"));
    EXPECT_THAT(run.out, HasSubstr("\033[K\r\033[Kkyr: plugin looping: "));
    EXPECT_THAT(RunShell("TERM=dumb" + terminal).out, StartsWith("kyr: plugin looping: "));
}

TEST(IsolationTest, DeadlineLeavesPluginsThatDidNotStartUnasked) {
    const TPluginRoot root({});
    for (int i = 0; i < 200; ++i)
        fs::create_directory_symlink(FIXTURE_PLUGINS "/sleeping", root.Path() + "/sleeping" + std::to_string(i));
    const TRunResult run = RunKyr("collect --deadline 1" + root.Option());
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("kyr: plugin ./sleeping0/libsleeping.pi.so: timed out: the deadline of 1 s had "
                                   "passed, stopped in its init entry\n"));
    EXPECT_THAT(run.err, HasSubstr("kyr: plugin ./sleeping99/libsleeping.pi.so: not asked: the deadline of 1 s had "
                                   "passed"));
}

TEST(IsolationTest, BothWaysGiveTheSame) {
    const TPluginRoot root(
        {"noinit", "baddocument", "givesup", "denied", "keyless", "unregistered", "shown", "imposing"});
    const std::string file = root.Path() + "/collection.xml", machine = "virtual";
    const auto collect = [&](const std::string& arguments) {
        const TRunResult run = RunKyrOn(machine, "collect --stable " + arguments + root.Option());
        return std::to_string(run.status) + run.out + run.err;
    };
    for (const std::string arguments : {"", "--json", "--class CIM_System --json"})
        EXPECT_EQ(collect(arguments), collect(arguments + " --in-process")) << arguments;
    collect("-o " + file);
    const std::string isolated = ReadFile(file);
    collect("--in-process -o " + file);
    EXPECT_EQ(ReadFile(file), isolated);
}

TEST(IsolationTest, InterruptionLeavesAValidPartialResult) {
    const TPluginRoot root({"ignoring"});
    const std::string file = root.Path() + "/out.xml", mark = "KYR_TEST_ROOT=" + root.Path();
    const TRunResult run = RunShell("env " + mark + " timeout -s INT 1.5 " KYR_PROGRAM " collect -o " + file +
                                    root.Option() + "; " KYR_PROGRAM " show " + file + " --class TEST_First");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("TEST_First (2)\n"));
    EXPECT_THAT(run.err, HasSubstr("kyr: plugin ignoring: partial: interrupted by SIGINT, stopped in its data entry at "
                                   "class TEST_First (class TEST_First)\n"));
    EXPECT_FALSE(IsAnyoneLeft(mark));
}

TEST(IsolationTest, SignalThatIsIgnoredInterruptsNothing) {
    const TPluginRoot root({"sleeping"});
    const TRunResult run = RunShell("trap '' HUP; " KYR_PROGRAM " collect --timeout 0.6" + root.Option() +
                                    "& sleep 0.3; kill -HUP $!; wait $!");
    EXPECT_THAT(run.err, StartsWith("kyr: plugin ./sleeping/libsleeping.pi.so: timed out: no answer within 0.6 s"));
}

TEST(IsolationTest, SecondInterruptionEndsAtOnceAndLeavesNothing) {
    const TPluginRoot root({"ignoring"});
    const std::string mark = "KYR_TEST_ROOT=" + root.Path();
    const TRunResult run = RunShell(mark + " " KYR_PROGRAM " collect -o " + root.Path() + "/out.xml" + root.Option() +
                                    "& sleep 1; kill -INT $!; sleep 0.05; kill -INT $!; wait $!; echo $?");
    EXPECT_EQ(run.out, "130\n");
    EXPECT_FALSE(fs::exists(root.Path() + "/out.xml"));
    EXPECT_FALSE(IsAnyoneLeft(mark));
}
