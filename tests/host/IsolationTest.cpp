#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "KyrRun.h"

namespace fs = std::filesystem;

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
    size_t kept;  // instances of its first class
    /// What stands behind "kyr: plugin " on standard error; empty: nothing fails, and nothing stands there.
    const char* message;
};

constexpr THostile kHostile[] = {
    {"loadcrash", "", 0,
     "./loadcrash/libloadcrash.pi.so: failed: SIGSEGV in a load-time constructor (classes TEST_First, TEST_Second)\n"},
    {"initcrash", "", 0,
     "./initcrash/libinitcrash.pi.so: failed: SIGSEGV in its init entry (classes TEST_First, TEST_Second)\n"},
    {"initexit", "", 0,
     "./initexit/libinitexit.pi.so: failed: it ended its process with exit status 3 while it was loaded or in its init "
     "entry (classes TEST_First, TEST_Second)\n"},
    {"datacrash", "", 2, "datacrash: partial: SIGSEGV in its data entry at class TEST_First (class TEST_First)\n"},
    {"datacrash", "", 2, "datacrash, class TEST_Second: failed: SIGSEGV in its data entry at class TEST_First"},
    {"exitcrash", "", 3, "exitcrash: partial: SIGSEGV in a destructor at exit"},
    {"aborting", "", 2, "aborting: partial: SIGABRT in its data entry at class TEST_First"},
    {"exiting", "", 2,
     "exiting: partial: it ended its process with exit status 0 in its data entry at class TEST_First"},
    {"exitingatonce", "", 2,
     "exitingatonce: partial: it ended its process with exit status 3 in its data entry at class TEST_First"},
    {"looping", "--timeout 0.3", 2,
     "looping: partial: no answer within 0.3 s, stopped in its data entry at class TEST_First"},
    {"looping", "--deadline 1", 2,
     "looping: partial: the deadline of 1 s had passed, stopped in its data entry at class TEST_First"},
    {"ignoring", "--timeout 0.3", 2,
     "ignoring: partial: no answer within 0.3 s, stopped in its data entry at class TEST_First"},
#if !defined(__SANITIZE_ADDRESS__)  // which leaves no room for a limit of memory
    {"hoarding", "", 2, "hoarding: partial: SIG"},
#endif
    {"scribbling", "", 0, "./scribbling/libscribbling.pi.so: "},
    {"unclosed", "", 0, "./unclosed/libunclosed.pi.so: refused: its document "},
    {"signalling", "", 2, "signalling: partial: signal 64 in its data entry at class TEST_First"},
    {"escaping", "--timeout 0.3", 2, "escaping: partial: no answer within 0.3 s"},
    {"interrupting", "--sandbox off", 3, "interrupting: partial: it sent SIG"},
    {"imposing", "", 5,
     "imposing: partial: TEST_Shown: not a class of this plugin; it belongs to plugin shown (and 1 more)\n"},
    {"slandering", "", 3, ""},
    {"slandering", "--in-process", 3, ""},
    {"trying", "", 3, ""},
    {"trying", "--log /dev/null 9</etc/passwd 3</etc/passwd", 3, ""},
    {"closing", "", 3, ""},
    {"chattering", "", 3, ""},
    {"shrinking", "", 3, ""},
    {"shrinking", "--sandbox off", 3, ""},
    {"leaving", "", 3, ""},
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
    const bool fails = *hostile.message != '\0';
    EXPECT_EQ(run.status, fails ? 1 : 0) << run.err;
    EXPECT_EQ(run.err.empty(), !fails);
    EXPECT_THAT(run.err, HasSubstr(fails ? std::string("kyr: plugin ") + hostile.message : ""));
    EXPECT_THAT(run.out, AllOf(StartsWith("MOLTA_ComputerSystem\n"), HasSubstr("TEST_Shown (2)\n"),
                               HasSubstr("MOLTA_OperatingSystem\n")));
    EXPECT_EQ(CountIn(run.out, "TEST_First (" + std::to_string(hostile.kept) + ")\n"), hostile.kept != 0) << run.out;
    EXPECT_FALSE(IsAnyoneLeft(mark));
}

INSTANTIATE_TEST_SUITE_P(Plugins, HostilePlugin, ::testing::ValuesIn(kHostile), NameOf);

TEST(IsolationTest, ValueThatIsNotClosedIsToldWithDocumentAndLine) {
    const TPluginRoot root({"unclosed"});
    EXPECT_THAT(RunKyr("collect" + root.Option()).err,
                HasSubstr(root.Path() + "/unclosed/unclosed.properties.xml has an attribute value in line "));
}

// The host may have taken something before; then that stays.
TEST(IsolationTest, WhatSpoilsItsDeliveryIsFailedOrPartial) {
    EXPECT_THAT(RunKyr("collect" + TPluginRoot({"scribbling"}).Option()).err,
                ContainsRegex("libscribbling.pi.so: (failed|partial): it spoilt what it had delivered"));
}

TEST(IsolationTest, LastWordsAndPrintedLinesStandInTheStates) {
    const TPluginRoot root({"datacrash", "chattering"});
    EXPECT_THAT(RunKyr("collect --json" + root.Option()).out,
                AllOf(HasSubstr("\"warning: last words\""), HasSubstr("\"printed: chatter 19999\"")));
    const TRunResult saved = RunKyr("collect -o " + root.Path() + "/out.xml" + root.Option());
    EXPECT_THAT(saved, FieldsAre(1, _, Not(HasSubstr("chatter 19999"))));
    EXPECT_THAT(RunKyr("collect --verbose" + root.Option()).err, HasSubstr("printed: chatter 19999\n"));
}

TEST(IsolationTest, VolumeOfAPluginCostsItsOwnRestAndIsSaved) {
#if defined(__SANITIZE_ADDRESS__)  // which takes terabytes of address space
    const std::vector<std::string> surroundings = {""};
#else
    const std::vector<std::string> surroundings = {"", "ulimit -v 220000; "};
#endif
    for (const std::string plugin : {"flooding", "stuffing"}) {
        for (const std::string& surrounding : surroundings) {
            const TPluginRoot root({plugin.c_str(), "shown"});
            const std::string file = root.Path() + "/out.xml";
            const TRunResult run = RunShell(surrounding + KYR_PROGRAM " collect -o " + file + root.Option());
            EXPECT_EQ(run.status, 1);
            EXPECT_THAT(run.err, ContainsRegex("^kyr: plugin " + plugin +
                                               ": partial: it delivered more than there is "
                                               "room for: the first [0-9]+ instances are kept \\(class TEST_First"));
            EXPECT_THAT(RunKyr("collect --from " + file),
                        FieldsAre(1, AllOf(HasSubstr("TEST_First ("), HasSubstr("TEST_Shown (2)\n")), run.err));
        }
    }
}

TEST(IsolationTest, DocumentThatIsTooLargeCostsItsOwnPlugin) {
    const auto write = [](const std::string& start, const std::string& repeated, int count) {
        std::string text = start;
        for (int i = 0; i < count; ++i)
            text.append(repeated, 0, repeated.find('#'))
                .append(std::to_string(i))
                .append(repeated, repeated.find('#') + 1);
        return text;
    };
    const std::string head = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>",
                      cls = "<VALUE.OBJECT><CLASS NAME=\"TEST_",
                      key =
                          "<PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" "
                          "TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER></PROPERTY>",
                      tail = "</DECLGROUP></DECLARATION></CIM>";
    const std::string many = write(head, cls + "#\">" + key + "</CLASS></VALUE.OBJECT>", 5001) + tail;
    const std::string wide = write(head + cls + "Wide\">" + key, "<PROPERTY NAME=\"P#\" TYPE=\"uint8\"/>", 2000);
    const std::string derived = cls + "#\" SUPERCLASS=\"TEST_Wide\"></CLASS></VALUE.OBJECT>";
    std::vector<std::string> documents = {many};
#if !defined(__SANITIZE_ADDRESS__)  // of whose heap nobody can tell the size
    documents.push_back(write(wide + "</CLASS></VALUE.OBJECT>", derived, 4000) + tail);
#endif
    for (const std::string& document : documents) {
        const TPluginRoot root({"shown"});
        CopyLibrary("shown", root.Path() + "/large/liblarge.pi.so");
        root.Write("large/large.properties.xml", document);
        EXPECT_THAT(RunKyr("collect" + root.Option()),
                    FieldsAre(1, AllOf(HasSubstr("TEST_Shown (2)\n"), HasSubstr("MOLTA_OperatingSystem\n")),
                              StartsWith("kyr: plugin ./large/liblarge.pi.so: refused: its document " + root.Path() +
                                         "/large/large.properties.xml is too large: ")));
    }
}

TEST(IsolationTest, ClassesOfAPluginThatDidNotLoadFallToTheNextThatDeclaresThem) {
    for (const std::string arguments : {"", "--class TEST_First"})
        EXPECT_THAT(RunKyrWith({"initcrash", "leaving"}, "collect " + arguments),
                    FieldsAre(_, HasSubstr("TEST_First (3)\n"),
                              "kyr: plugin ./initcrash/libinitcrash.pi.so: failed: SIGSEGV in its init entry\n"));
}

TEST_F(TerminalTest, ProgressGoesWithoutATrace) {
    const TPluginRoot root({"looping"});
    const std::string command =
        "stty cols 30; " KYR_PROGRAM " collect --timeout 0.4 -o " + root.Path() + "/out.xml" + root.Option();
    EXPECT_THAT(RunOnTerminal("TERM=xterm", command).out,
                AllOf(ContainsRegex("\r1 of 2 plugins, [0-9]+ s: looping\033\\[K\r"),
                      HasSubstr("\033[K\r\033[Kkyr: plugin looping: ")));
    EXPECT_THAT(RunOnTerminal("TERM=dumb", command).out, StartsWith("kyr: plugin looping: "));
}

TEST(IsolationTest, DeadlineLeavesPluginsThatDidNotStartUnasked) {
    const TPluginRoot root({});
    for (int i = 0; i < 200; ++i)
        fs::create_directory_symlink(FIXTURE_PLUGINS "/sleeping", root.Path() + "/sleeping" + std::to_string(i));
#if defined(__SANITIZE_ADDRESS__)
    const std::string seconds = "6";  // to read 200 documents takes longer
#else
    const std::string seconds = "1";
#endif
    const std::string deadline = "the deadline of " + seconds + " s had passed";
    EXPECT_THAT(RunKyr("collect --deadline " + seconds + root.Option()),
                FieldsAre(1, _,
                          AllOf(HasSubstr("kyr: plugin ./sleeping0/libsleeping.pi.so: timed out: " + deadline +
                                          ", stopped in its init entry\n"),
                                HasSubstr("kyr: plugin ./sleeping99/libsleeping.pi.so: not asked: " + deadline))));
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
    EXPECT_THAT(
        run, FieldsAre(1, HasSubstr("TEST_First (2)\n"),
                       HasSubstr("kyr: plugin ignoring: partial: interrupted by SIGINT, stopped in its data entry at "
                                 "class TEST_First (class TEST_First)\n")));
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

TEST(IsolationTest, ProcessThatCannotBeEndedIsGivenUp) {
    const std::string nobody = "setpriv --reuid=65534 --regid=65534 --clear-groups env ";
    const TPluginRoot root({"executing"});
    const std::string program = root.Path() + "/setpriv", mark = "KYR_TEST_ROOT=" + root.Path();
    fs::permissions(root.Path(), fs::perms(0755));
    fs::copy_file("/usr/bin/setpriv", program);
    if (chmod(program.c_str(), 04755) != 0 || RunShell(nobody + KYR_PROGRAM " --version").status != 0)
        GTEST_SKIP() << "needs a superuser who can become nobody";
    const TRunResult run = RunShell(nobody + mark + " KYR_TEST_PROGRAM=" + program +
                                    " " KYR_PROGRAM " collect --sandbox off --timeout 0.3" + root.Option());
    EXPECT_THAT(run, FieldsAre(1, HasSubstr("TEST_First (2)\n"),
                               HasSubstr("kyr: plugin executing: partial: no answer within 0.3 s, stopped in its data "
                                         "entry at class TEST_First, but not ended: it is another user's process")));
    EXPECT_TRUE(IsAnyoneLeft(mark));  // so the host did not wait for it
}
