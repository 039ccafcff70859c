#include "KyrRun.h"

TEST(MannersTest, HelpAndVersionGoToStandardOutput) {
    for (const char* arguments : {"--help", "collect --help", "schema --help", "identity -h"})
        EXPECT_THAT(RunKyr(arguments), FieldsAre(0, HasSubstr("Usage: kyr"), "")) << arguments;
    EXPECT_THAT(RunKyr("--version"), FieldsAre(0, "kyr 1.0.0\n", _));
}

TEST(MannersTest, WrongUseIsToldWithTheNearestRightWord) {
    const std::pair<const char*, const char*> cases[] = {
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
    for (const auto& [arguments, message] : cases)
        EXPECT_THAT(RunKyr(arguments), FieldsAre(2, "", message)) << arguments;
}

TEST(MannersTest, OutputThatCannotBeWrittenIsAnErrorOfOurs) {
    const char* const full = "kyr: cannot write standard output: No space left on device\n";
    for (const std::string arguments : {"collect", "show --tree", "schema", "identity", "--help"}) {
        EXPECT_THAT(RunKyr(arguments + " >/dev/full"), FieldsAre(4, _, full)) << arguments;
        EXPECT_EQ(RunKyr(arguments + " >&-").status, 4) << arguments;
    }
}

TEST(MannersTest, ClosedPipeIsAnErrorWithoutAWord) {
    EXPECT_EQ(RunShell("{ sleep 0.2; " KYR_PROGRAM " collect; echo $? >&2; } | true").err, "4\n");
}

TEST(MannersTest, ClosedStandardInputAndErrorDoNoHarm) {
    EXPECT_THAT(RunKyr("collect <&- 2>&-"), FieldsAre(0, HasSubstr("MOLTA_ComputerSystem\n"), _));
}

TEST(MannersTest, LogIsFramedAndVerboseTellsEachStep) {
    const TempFolder folder;
    const std::string log = folder.Path() + "/log";
    EXPECT_THAT(RunKyr("collect --verbose --log " + log),
                FieldsAre(0, _, HasSubstr("kyr: [core] debug: Asking plugin system for MOLTA_ComputerSystem\n")));
    EXPECT_THAT(ReadFile(log), AllOf(StartsWith("-- ORQ Log Opened ----------------------------\n"),
                                     HasSubstr("KYR_system: [Verbose] kyrAddClass(MOLTA_ComputerSystem)\n"),
                                     testing::EndsWith("-- ORQ Log Closed ----------------------------\n")));
}

TEST(MannersTest, LogThatCannotBeWrittenIsToldAtOnce) {
    EXPECT_THAT(RunKyr("collect --log /dev/null/log"),
                FieldsAre(4, _, StartsWith("kyr: cannot write the log '/dev/null/log': ")));
}

TEST(MannersTest, PathsAreThoseOfTheCallersFolder) {
    const TPluginRoot root({});
    EXPECT_THAT(RunShell("cd " + root.Path() + " && " KYR_PROGRAM " identity --plugins . --log log"),
                FieldsAre(0, _, _));
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

TEST_F(TerminalTest, LinesAreNoWiderThanTheTerminal) {
    const TPluginRoot root({});
    for (const char* command : {"show --references", "show --tree", "collect --provenance --null", "schema"}) {
        const TRunResult run = RunOnTerminal("-u COLUMNS TERM=dumb",
                                             "stty cols 40; " KYR_PROGRAM " " + std::string(command) + root.Option());
        EXPECT_THAT(run.out, HasSubstr("MOLTA_ComputerSystem")) << command;
        EXPECT_FALSE(HasLineOver(41, run.out)) << command << "\n" << run.out;  // with the carriage return
    }
}

TEST_F(TerminalTest, GetsBoldNamesUnlessColourIsUnwanted) {
    const TPluginRoot root({});
    const std::string command = KYR_PROGRAM " collect" + root.Option() + "2>/dev/null";
    const std::string bold = "\033[1mMOLTA_ComputerSystem\033[0m\r\n", plain = "MOLTA_ComputerSystem\r\n";
    EXPECT_THAT(RunOnTerminal("TERM=xterm NO_COLOR=", command).out, HasSubstr(bold));
    EXPECT_THAT(RunOnTerminal("TERM=xterm NO_COLOR=1", command).out, StartsWith(plain));
    EXPECT_THAT(RunOnTerminal("TERM=dumb", command).out, StartsWith(plain));
}
