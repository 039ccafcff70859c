#include <gmock/gmock.h>

#include "KyrRun.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(MannersTest, HelpAndVersionGoToStandardOutput) {
    for (const char* arguments : {"--help", "collect --help", "schema --help", "identity -h"}) {
        const TRunResult run = RunKyr(arguments);
        EXPECT_EQ(run.status, 0) << arguments;
        EXPECT_THAT(run.out, HasSubstr("Usage: kyr")) << arguments;
        EXPECT_EQ(run.err, "") << arguments;
    }
    const TRunResult run = RunKyr("--version");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "kyr 1.0.0\n");
}

TEST(MannersTest, WrongUseIsToldWithTheNearestRightWord) {
    const struct {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"", "kyr: no command given (try 'kyr --help')\n"},
        {"colect", "kyr: unknown command 'colect'; did you mean 'collect'? (try 'kyr --help')\n"},
        {"collect --clas X", "kyr: unknown option '--clas'; did you mean '--class'? (try 'kyr collect --help')\n"},
        {"collect --pluginz=X",
         "kyr: unknown option '--pluginz'; did you mean '--plugins'? (try 'kyr collect --help')\n"},
        {"collect --zzz", "kyr: unknown option '--zzz' (try 'kyr collect --help')\n"},
        {"schema A B", "kyr: unexpected argument 'B' (try 'kyr schema --help')\n"},
        {"collect identity", "kyr: more than one command given (try 'kyr --help')\n"},
        {"show a.xml --from b.xml", "kyr: --from and FILE do not go together (try 'kyr show --help')\n"},
        {"show a.xml --timeout 3",
         "kyr: FILE and --timeout do not go together: no plugin is asked for a saved collection "
         "(try 'kyr show --help')\n"},
        {"show ''", "kyr: FILE: the name is empty (try 'kyr show --help')\n"},
        {"collect -o ''", "kyr: --output: the name is empty (try 'kyr collect --help')\n"},
        {"show --tree --raw", "kyr: --tree and --raw do not go together (try 'kyr show --help')\n"},
        {"collect --json -o a.xml", "kyr: --output and --json do not go together (try 'kyr collect --help')\n"},
        {"collect --class", "kyr: --class: 1 required NAME missing (try 'kyr collect --help')\n"},
        {"schema CIM_Sistem", "kyr: unknown class 'CIM_Sistem'; did you mean 'CIM_System'?\n"},
        {"collect --class computersystem",
         "kyr: unknown class 'computersystem'; did you mean 'CIM_ComputerSystem' or 'MOLTA_ComputerSystem'?\n"},
        {"collect --class 4bad", "kyr: unknown class '4bad'\n"},
    };
    for (const auto& c : cases) {
        const TRunResult run = RunKyr(c.arguments);
        EXPECT_EQ(run.status, 2) << c.arguments;
        EXPECT_EQ(run.out, "") << c.arguments;
        EXPECT_EQ(run.err, c.message) << c.arguments;
    }
}

TEST(MannersTest, OutputThatCannotBeWrittenIsAnErrorOfOurs) {
    for (const char* arguments : {"collect", "show --tree", "schema", "identity", "--help"}) {
        const TRunResult full = RunKyr(std::string(arguments) + " >/dev/full");
        EXPECT_EQ(full.status, 4) << arguments;
        EXPECT_EQ(full.err, "kyr: cannot write standard output: No space left on device\n") << arguments;
        EXPECT_EQ(RunKyr(std::string(arguments) + " >&-").status, 4) << arguments;
    }
}

TEST(MannersTest, ClosedPipeIsAnErrorOfOurs) {
    const TRunResult run = RunShell("{ sleep 0.2; " KYR_PROGRAM " collect; echo $? >&2; } | true");
    EXPECT_EQ(run.err, "kyr: cannot write standard output: Broken pipe\n4\n");
}

TEST(MannersTest, ClosedStandardInputAndErrorDoNoHarm) {
    const TRunResult run = RunKyr("collect <&- 2>&-");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("MOLTA_ComputerSystem\n"));
}

TEST(MannersTest, LogIsFramedAndVerboseTellsEachStep) {
    const TempFolder folder;
    const std::string log = folder.Path() + "/log";
    const TRunResult run = RunKyr("collect --verbose --log " + log);
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("kyr: [core] debug: Asking plugin system for MOLTA_ComputerSystem\n"));
    const std::string text = ReadFile(log);
    EXPECT_THAT(text, StartsWith("-- ORQ Log Opened ----------------------------\n"));
    EXPECT_THAT(text, HasSubstr("KYR_system: [Verbose] kyrAddClass(MOLTA_ComputerSystem)\n"));
    EXPECT_THAT(text, ::testing::EndsWith("-- ORQ Log Closed ----------------------------\n"));
}

TEST(MannersTest, LogThatCannotBeWrittenIsToldAtOnce) {
    const TRunResult run = RunKyr("collect --log /dev/null/log");
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(run.err, StartsWith("kyr: cannot write the log '/dev/null/log': "));
}

TEST(MannersTest, PathsAreThoseOfTheCallersFolder) {
    const TPluginRoot root({});
    const TRunResult run = RunShell("cd " + root.Path() + " && " KYR_PROGRAM " identity --plugins . --log log");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(ReadFile(root.Path() + "/log"), HasSubstr("Asking plugin system for MOLTA_ORQProduct"));
    EXPECT_THAT(RunShell("cd " MACHINES " && KYR_SYSTEM_ROOT=server " KYR_PROGRAM " identity").out,
                HasSubstr("db01.example.net\n"));
}

TEST(MannersTest, LocaleMakesNoDifference) {
    const TPluginRoot root({"machine"});
    const std::string shown = RunKyr("show --class TEST_Disk" + root.Option()).out;
    EXPECT_THAT(shown, HasSubstr("Example Disk 4000 \xc3\xa4"));
    for (const char* locale : {"LC_ALL=C", "LC_ALL=de_DE.ISO-8859-1", "LANG= LC_ALL="})
        EXPECT_EQ(RunKyr("show --class TEST_Disk" + root.Option(), locale).out, shown) << locale;
}

TEST(MannersTest, LinesAreNoWiderThanTheTerminal) {
    if (RunShell("script -qec true /dev/null </dev/null").status != 0)
        GTEST_SKIP() << "needs a pseudo-terminal, which cannot be had here";
    const TPluginRoot root({});
    for (const char* command : {"show --references", "show --tree", "collect --provenance --null", "schema"}) {
        const std::string script = "stty cols 40; " KYR_PROGRAM " " + std::string(command) + root.Option();
        const TRunResult run = RunShell("env -u COLUMNS TERM=dumb script -qec '" + script + "' /dev/null </dev/null");
        EXPECT_THAT(run.out, HasSubstr("MOLTA_ComputerSystem")) << command;
        EXPECT_FALSE(HasLineOver(41, run.out)) << command << "\n" << run.out;  // with the carriage return
    }
}

TEST(MannersTest, TerminalGetsBoldNamesUnlessColourIsUnwanted) {
    if (RunShell("script -qec true /dev/null </dev/null").status != 0)
        GTEST_SKIP() << "needs a pseudo-terminal, which cannot be had here";
    const TPluginRoot root({});
    const std::string onTerminal =
        " script -qec '" KYR_PROGRAM " collect" + root.Option() + "2>/dev/null' /dev/null </dev/null";
    const std::string bold = "\033[1mMOLTA_ComputerSystem\033[0m\r\n", plain = "MOLTA_ComputerSystem\r\n";
    EXPECT_THAT(RunShell("TERM=xterm NO_COLOR=" + onTerminal).out, HasSubstr(bold));
    EXPECT_THAT(RunShell("TERM=xterm NO_COLOR=1" + onTerminal).out, StartsWith(plain));
    EXPECT_THAT(RunShell("TERM=dumb" + onTerminal).out, StartsWith(plain));
}
