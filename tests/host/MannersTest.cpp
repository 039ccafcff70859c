#include <sys/stat.h>

#include <filesystem>

#include "KyrRun.h"

TEST(MannersTest, HelpAndVersionGoToStandardOutput) {
    for (const char* arguments : {"--help", "collect --help", "schema --help", "identity -h", "help", "help show"})
        EXPECT_THAT(RunKyr(arguments), FieldsAre(0, HasSubstr("Usage: kyr"), "")) << arguments;
    EXPECT_EQ(RunKyr("help assoc").out, RunKyr("assoc --help").out);
    for (const char* arguments : {"--version", "collect --version", "show -V"})
        EXPECT_THAT(RunKyr(arguments), FieldsAre(0, "kyr " KYRCORE_VERSION "\n", _)) << arguments;
}

TEST(MannersTest, WrongUseIsToldWithTheNearestRightWord) {
    const std::pair<const char*, const char*> cases[] = {
        {"--", "kyr: no command given (try 'kyr --help')\n"},
        {"colect", "kyr: unknown command 'colect'; did you mean 'collect'? (try 'kyr --help')\n"},
        {"collect --clas X", "kyr: unknown option '--clas'; did you mean '--class'? (try 'kyr collect --help')\n"},
        {"collect --pluginz=X",
         "kyr: unknown option '--pluginz'; did you mean '--plugins'? (try 'kyr collect --help')\n"},
        {"collect --zzz", "kyr: unknown option '--zzz' (try 'kyr collect --help')\n"},
        {"schema A B", "kyr: unexpected argument 'B' (try 'kyr schema --help')\n"},
        {"help shwo", "kyr: unknown command 'shwo'; did you mean 'show'? (try 'kyr --help')\n"},
        {"disks", "kyr: unknown command 'disks'; a file or a thing is printed by: kyr show disks (try 'kyr --help')\n"},
        {"show -- a.xml -b", "kyr: unknown option '-b' (try 'kyr show --help')\n"},
        {"collect identity", "kyr: more than one command given (try 'kyr --help')\n"},
        {"show a.xml --from b.xml", "kyr: --from and FILE do not go together (try 'kyr show --help')\n"},
        {"show a.xml --timeout 3",
         "kyr: FILE and --timeout do not go together: no plugin is asked for a saved collection "
         "(try 'kyr show --help')\n"},
        {"diff - /dev/stdin", "kyr: OLD and NEW are both standard input, which can be read only once\n"},
        {"show ''", "kyr: unexpected argument '' (try 'kyr show --help')\n"},
        {"collect -o ''", "kyr: --output: the name is empty (try 'kyr collect --help')\n"},
        {"show --tree --raw", "kyr: --tree and --raw do not go together (try 'kyr show --help')\n"},
        {"collect --json -o a.xml", "kyr: --output and --json do not go together (try 'kyr collect --help')\n"},
        {"collect --class", "kyr: --class: 1 required NAME missing (try 'kyr collect --help')\n"},
        {"schema CIM_Sistem", "kyr: unknown class 'CIM_Sistem'; did you mean 'CIM_System'?\n"},
        {"collect --class computersistem", "kyr: unknown class 'computersistem'; did you mean 'ComputerSystem'?\n"},
        {"collect --class 4qqqq", "kyr: unknown class '4qqqq'\n"},
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

TEST(MannersTest, LimitOfAFilesSizeIsAnErrorOfOurs) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/a.xml", log = folder.Path() + "/log", out = folder.Path() + "/out";
    const std::pair<std::string, std::string> cases[] = {
        {"show >" + out, "cannot write standard output"},
        {"collect -o " + file, "cannot write '" + file + "'"},
        {"collect -o " + file + ".gz", "cannot write '" + file + ".gz'"},
        {"identity >/dev/null --log " + log, "cannot write the log '" + log + "'"},
    };
    for (const auto& [arguments, message] : cases)
        EXPECT_THAT(RunShell("(ulimit -f 1; " KYR_PROGRAM " " + arguments + ")"), FieldsAre(4, "", HasSubstr(message)))
            << arguments;
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(MannersTest, DeletedCurrentFolderTakesNoRelativePath) {
    const std::pair<const char*, TRunResult> cases[] = {
        {"identity", {0, "", ""}},
        {"show a.xml", {3, "", "kyr: cannot read the collection 'a.xml': No such file or directory\n"}},
        {"collect -o a.xml", {4, "", "kyr: cannot write 'a.xml': "}},
        {"collect --log a.log", {4, "", "kyr: cannot write the log 'a.log': "}},
    };
    for (const auto& [arguments, expected] : cases) {
        const TempFolder folder;
        const std::string gone = folder.Path() + "/gone";
        EXPECT_THAT(RunShell("mkdir " + gone + "; cd " + gone + "; rmdir " + gone + "; " KYR_PROGRAM " " + arguments),
                    FieldsAre(expected.status, _, HasSubstr(expected.err)))
            << arguments;
    }
}

TEST(MannersTest, FileMayStandOnEitherSideOfAName) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/saved.xml";
    ASSERT_EQ(RunKyr("collect -o " + file).status, 0);
    for (const std::string command : {"assoc ComputerSystem ", "get os.Name "}) {
        const std::string word = command.substr(0, command.find(' ') + 1);
        const TRunResult behind = RunKyr(command + file);
        EXPECT_THAT(behind, FieldsAre(0, Not(IsEmpty()), "")) << command;
        EXPECT_EQ(RunKyr(word + file + " " + command.substr(word.size())).out, behind.out) << command;
    }
}

TEST(MannersTest, WhatIsNoFileIsNotRead) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder.Path() + "/fifo").c_str(), 0600), 0);
    for (const std::string& path : {folder.Path(), folder.Path() + "/fifo", std::string("/dev/zero")})
        EXPECT_THAT(RunKyr("show --from " + path),
                    FieldsAre(3, "", "kyr: cannot read the collection '" + path + "': it is no regular file\n"));
    EXPECT_THAT(RunShell("cd " + folder.Path() + "; touch ./-x.xml; " KYR_PROGRAM " show -- -x.xml"),
                FieldsAre(3, "", "kyr: cannot read the collection '" + folder.Path() + "/-x.xml': it is empty\n"));
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
    for (const std::string log : {"/dev/null/log", "/dev/full"})
        EXPECT_THAT(RunKyr("collect --log " + log),
                    FieldsAre(4, "", StartsWith("kyr: cannot write the log '" + log + "': ")));
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

TEST_F(TerminalTest, GetsTextThroughThePagerWhichMayBeLeftEarly) {
    const TPluginRoot root({});
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"PAGER=\"tr a-z A-Z\"", "show os", "MOLTA_OPERATINGSYSTEM\r\n"},
        {"PAGER=\"tr a-z A-Z\"", "schema os", "MOLTA_OPERATINGSYSTEM\r\n"},
        {"PAGER=cat KYR_PAGER=\"tr a-z A-Z\"", "show os", "MOLTA_OPERATINGSYSTEM\r\n"},
        {"PAGER=\"tr a-z A-Z\" KYR_PAGER=", "show os", "MOLTA_OperatingSystem\r\n"},
        {"PAGER=\"tr a-z A-Z\"", "show os --no-pager", "MOLTA_OperatingSystem\r\n"},
        {"PAGER=\"tr a-z A-Z\"", "show os --json", "{\r\n"},
        {"PAGER=\"tr a-z A-Z\" TERM=dumb", "show os", "MOLTA_OperatingSystem\r\n"},
        {"PAGER=true", "schema", "0\r\n"},
        {"PAGER=false", "show os", "4\r\n"},
        {"PAGER=\"head -n 1\"", "schema", "CIM_Component (abstract) (association)\r\n0\r\n"},
    };
    for (const auto& [environment, arguments, start] : cases)
        EXPECT_THAT(RunOnTerminal("NO_COLOR=1 TERM=xterm " + std::string(environment),
                                  KYR_PROGRAM " " + std::string(arguments) + root.Option() + "2>/dev/null; echo $?")
                        .out,
                    StartsWith(start))
            << environment << ' ' << arguments;
    EXPECT_THAT(RunKyr("show os --no-pager", "TERM=xterm PAGER=\"tr a-z A-Z\"").out,
                StartsWith("MOLTA_OperatingSystem\n"));
}

TEST_F(TerminalTest, GetsBoldNamesUnlessColourIsUnwanted) {
    const TPluginRoot root({});
    const std::string command = KYR_PROGRAM " collect" + root.Option() + "2>/dev/null";
    const std::string bold = "\033[1mMOLTA_ComputerSystem\033[0m\r\n", plain = "MOLTA_ComputerSystem\r\n";
    EXPECT_THAT(RunOnTerminal("TERM=xterm NO_COLOR=", command).out, HasSubstr(bold));
    EXPECT_THAT(RunOnTerminal("TERM=xterm NO_COLOR=1", command).out, StartsWith(plain));
    EXPECT_THAT(RunOnTerminal("TERM=dumb", command).out, StartsWith(plain));
}

// The words of the shell: what is saved goes through a pipe, and is read from one.
TEST(MannersTest, CollectionsGoThroughPipes) {
    const TPluginRoot root({});
    const TempFolder folder;
    const std::string file = folder.Path() + "/a.xml.gz", shown = KYR_PROGRAM " show ";
    const std::string choice = " --class MOLTA_ComputerSystem";
    ASSERT_EQ(RunKyr("collect --stable" + root.Option() + "-o " + file).status, 0);
    const std::string expected = RunKyr("show " + file + choice).out;
    EXPECT_THAT(expected, HasSubstr("MOLTA_ComputerSystem"));
    RunShell("cp " + file + " " + folder.Path() + "/plain.xml; zcat " + file + " >" + folder.Path() + "/odd.xml.gz");
    const std::string saving = KYR_PROGRAM " collect --stable" + root.Option() + "-o -";
    for (const std::string& command :
         {saving + " | " + shown + "-" + choice, "zcat " + file + " | " + shown + "-" + choice,
          shown + folder.Path() + "/plain.xml" + choice, shown + folder.Path() + "/odd.xml.gz" + choice,
          shown + "/dev/stdin" + choice + " <" + file, "exec 5<" + file + "; " + shown + "/dev/fd/5" + choice})
        EXPECT_THAT(RunShell(command), FieldsAre(0, expected, "")) << command;
    EXPECT_THAT(RunShell(saving + " | cmp - " + file), FieldsAre(0, "", ""));
}

TEST(MannersTest, StreamThatIsNoCollectionIsRefused) {
    const TPluginRoot root({});
    const TempFolder folder;
    const std::string file = folder.Path() + "/a.xml.gz", shown = " | " KYR_PROGRAM " show -";
    ASSERT_EQ(RunKyr("collect" + root.Option() + "-o " + file).status, 0);
    const std::pair<std::string, const char*> cases[] = {
        {"head -c 1000 " + file + shown, "from standard input: it is damaged or cut off"},
        {"printf ''" + shown, "from standard input: it is empty"},
        {"echo no document" + shown, "it must be a CIM-XML document"},
        {"cat /dev/zero" + shown, "it holds more than 104857600 bytes"}};
    for (const auto& [command, message] : cases)
        EXPECT_THAT(RunShell(command), FieldsAre(3, "", HasSubstr(message))) << command;
    EXPECT_THAT(RunKyr("collect" + root.Option() + "-o - >/dev/full"),
                FieldsAre(4, "", HasSubstr("cannot write standard output: ")));
}
