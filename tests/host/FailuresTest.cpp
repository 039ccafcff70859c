#include <sys/stat.h>

#include <filesystem>

#include "KyrRun.h"

TEST(FailuresTest, OthersAreCollectedAndEachFailureIsNamed) {
    const TPluginRoot root({"noinit", "baddocument", "givesup", "denied", "keyless", "unregistered"});
    root.Write("broken/libbroken.pi.so", "no library");
    const TRunResult run = RunKyr("collect" + root.Option());
    EXPECT_EQ(run.status, 1);
    for (const char* kept : {"MOLTA_ComputerSystem\n", "MOLTA_OperatingSystem\n", "TEST_Kept\n  Id  1\n"})
        EXPECT_THAT(run.out, HasSubstr(kept));
    const std::string refused = "kyr: plugin baddocument: refused: " + root.Path() + "/baddocument/";
    EXPECT_THAT(run.err,
                HasSubstr(refused + "baddocument.properties.xml:4: the element 'VALUE.OBJECT' is not closed "));
    for (const char* line : {
             "kyr: plugin ./broken/libbroken.pi.so: refused: cannot be opened: ./broken/libbroken.pi.so: ",
             "kyr: plugin noinit: refused: its init entry failed: there is no device\n",
             "kyr: plugin givesup: partial: its data entry returned error collecting class "
             "(kyrStatusErrorCollectingClass) "
             "and logged nothing (class TEST_Kept)\n",
             "kyr: plugin givesup, class TEST_Lost: failed: its data entry returned error collecting class "
             "(kyrStatusErrorCollectingClass) and logged nothing\n",
             "kyr: plugin denied: refused: its data entry returned access denied (kyrStatusAccessDenied) and logged "
             "nothing (class "
             "TEST_Denied)\n",
             "kyr: plugin keyless, class TEST_Keyless: failed: TEST_Keyless.Id: given NULL by kyrAddStringProperty "
             "(and 2 "
             "more)\n",
             "kyr: plugin ./unregistered/libunregistered.pi.so: refused: it registers no plugin\n",
         })
        EXPECT_THAT(run.err, HasSubstr(line));
}

struct TMistake {
    const char* name;
    const char* className;
    const char* reason;
};

// What kyr says to each mistake that the plugin makes in its calls. An empty class: it is said of the plugin alone.
constexpr TMistake kMistakes[] = {
    {"UnknownProperty", "TEST_User", "TEST_User.Shel: no such property; did you mean 'Shell'?"},
    {"UnknownTextProperty", "TEST_User", "TEST_User.Shel: no such property; did you mean 'Shell'?"},
    {"UnknownArray", "TEST_User", "TEST_User.Group: no such property; did you mean 'Groups'?"},
    {"WrongCall", "TEST_User", "TEST_User.Uid: declared uint64, given by kyrAddUint32Property"},
    {"ScalarForArray", "TEST_User", "TEST_User.Groups: declared array of string, given by kyrAddStringProperty"},
    {"WrongElement", "TEST_User", "TEST_User.Groups: declared array of string, given by kyrArrayAddUint32"},
    {"Ignored", "TEST_User", "TEST_User.Uid: declared uint64, given by kyrAddUint32Property (and 1 more)"},
    {"UnknownClass", "", "TEST_Usr: no such class; did you mean 'TEST_User'?"},
    {"EmptyClass", "", "kyrAddClass: the name of the class is empty"},
    {"ForeignClass", "", "TEST_Shown: not a class of this plugin; it belongs to plugin shown"},
    {"NullText", "TEST_User", "TEST_User.Shell: given NULL by kyrAddStringProperty"},
    {"DateText", "TEST_User", "TEST_User.Since: \"2024-01-31\" is no datetime, such as \"20240131120000.000000+060\""},
    {"BadDate", "TEST_User",
     "kyrSetDateTimeString at TEST_User (Since): \"2024-01-31\" is no date-time, such as "
     "\"20240131120000.000000+060\""},
    {"NoDate", "TEST_User", "TEST_User.Since: given a date-time without a value by kyrAddDateTimeProperty"},
    {"ReferenceToUnknownClass", "TEST_UserHome", "TEST_Flder: no such class; did you mean 'TEST_Folder'?"},
    {"ReferenceWithUnknownKey", "TEST_UserHome", "reference to TEST_Folder: no key Ids; did you mean 'Id'?"},
    {"ReferenceToOtherClass", "TEST_UserHome",
     "TEST_UserHome.Home: declared reference to TEST_Folder, given reference to TEST_User"},
    {"ReferenceToNothing", "TEST_UserHome",
     "TEST_UserHome.Home: declared reference to TEST_Folder, given reference to no class"},
    {"ReferenceWithKeyOfOtherType", "TEST_UserHome",
     "reference to TEST_Folder: key Id: declared string, given by kyrReferenceAddUint32"},
    {"ReferenceByPath", "TEST_UserHome",
     "kyrSetReferencePath failed for \"TEST_Folder.Id=root\": not implemented (kyrStatusNotImplemented); use "
     "kyrSetReferenceClassName and kyrReferenceAdd..."},
    {"ReferenceWithoutClass", "TEST_UserHome", "kyrReferenceAddString for Id: the reference has no class"},
    {"EarlyProperty", "", "kyrAddStringProperty for Id: no class was added before"},
};

class Mistakes : public ::testing::TestWithParam<TMistake> {};

TEST_P(Mistakes, AreToldWithClassPropertyAndTheNearestWord) {
    const TMistake& mistake = GetParam();
    const TPluginRoot root({"mistaken", "shown"});
    const std::string environment = std::string("KYR_TEST_MISTAKE=") + mistake.name, none;
    const bool isOfClass = *mistake.className != '\0';
    const std::string line = (isOfClass ? none + ", class " + mistake.className : none) + ": ";
    for (const char* option : {"", " --in-process"}) {
        const TRunResult run = RunKyr("collect --json" + root.Option() + option, environment);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.err, ContainsRegex("kyr: plugin mistaken" + line + "(failed|partial): "));
        EXPECT_THAT(run.err, HasSubstr(none + ": " + mistake.reason + (isOfClass ? "\n" : "")));
        EXPECT_THAT(run.err + run.out, Not(ContainsRegex("[^(]kyrStatus")));
        EXPECT_THAT(run.err, Not(HasSubstr("class TEST_Folder: ")));
    }
}

INSTANTIATE_TEST_SUITE_P(InCalls, Mistakes, ::testing::ValuesIn(kMistakes),
                         [](const auto& mistake) { return std::string(mistake.param.name); });

TEST(FailuresTest, DateThatDoesNotExistIsToldAndKept) {
    const std::string text = "TEST_User.Since: \"20261301000000.000000+000\" is no date that exists: month 13";
    for (const char* option : {"", " --in-process"}) {
        const TRunResult run =
            RunKyr("collect --raw" + TPluginRoot({"mistaken"}).Option() + option, "KYR_TEST_MISTAKE=NoSuchMonth");
        EXPECT_THAT(run, FieldsAre(0, HasSubstr("2026-13-01T"), "kyr: plugin mistaken: " + text + "\n"));
    }
}

TEST(FailuresTest, MistakeInACallHasAReasonForPrograms) {
    const TRunResult run = RunKyr("collect --json" + TPluginRoot({"mistaken"}).Option(), "KYR_TEST_MISTAKE=WrongCall");
    EXPECT_THAT(run.out, HasSubstr("\"reasonCode\": \"wrong type\""));
}

// What kyr says to a mistake that is put into the plugin's document in place of another text.
TEST(FailuresTest, MistakesInDocumentsAreToldWithLineAndTheNearestWord) {
    struct {
        std::string right, wrong, message;
    } const kCases[] = {
        {"TYPE=\"uint64\"", "TYPE=\"integer\"",
         "16: TEST_User.Uid: the type of 'Uid', 'integer', is not known; write uint32"},
        {" TYPE=\"uint64\"", "", "16: TEST_User.Uid: the type of 'Uid' is missing; add TYPE"},
        {" NAME=\"TEST_User\"", "", "12: CLASS has no NAME; "},
        {"\"TEST_User\"", "\"TEST_User\" SUPERCLASS=\"CIM_ManagedElemnt\"",
         "12: the superclass 'CIM_ManagedElemnt' of class TEST_User is not known; did you mean 'CIM_ManagedElement'?"},
        {"REFERENCECLASS=\"TEST_Folder\"", "REFERENCECLASS=\"TEST_Foldr\"",
         "28: class 'TEST_Foldr', which TEST_UserHome.Home refers to, is not known; did you mean 'TEST_Folder'?"},
        {"\"Association\"", "\"Asociation\"",
         "24: the qualifier 'Asociation' of 'TEST_UserHome' is not declared; did you mean 'Association'?"},
        {"\"Key\"", "\"Kee\"", "7: TEST_Folder.Id: the qualifier 'Kee' of 'Id' is not declared; did you mean 'Key'?"},
        {"<VALUE>true</VALUE>", "<VALUE>false</VALUE>", "5: class TEST_Folder has no key; "},
        {"<CIM CIM", "<?xml version=\"1.0\"?>\n<!-- Users. -->\n<CIM CIM", "2: "},
        {"<CIM CIM", "\xEF\xBB\xBF<CIM CIM", "1: the document begins with a byte order mark; "},
        {"<DECLARATION>", "<DECLARATION><![CDATA[x]]>", "2: CDATA: "},
    };
    const TPluginRoot root({});
    CopyLibrary("mistaken", root.Path() + "/mistaken/libmistaken.pi.so");
    for (const auto& [right, wrong, message] : kCases) {
        std::string document = ReadFile(FIXTURE_PLUGINS "/mistaken/mistaken.properties.xml");
        root.Write("mistaken/mistaken.properties.xml", document.replace(document.find(right), right.size(), wrong));
        const TRunResult run = RunKyr("collect --json" + root.Option());
        EXPECT_THAT(run.err, StartsWith("kyr: plugin mistaken: refused: " + root.Path() +
                                        "/mistaken/mistaken.properties.xml:" + message));
        EXPECT_THAT(run.out, HasSubstr("\"reasonCode\": \"document mistake\""));
    }
}

// The reader passes over all of these.
TEST(FailuresTest, MistakeThatTheReaderStoppedAtIsToldAndNotAHarmlessOneInFront) {
    const std::string right = "TYPE=\"uint64\"/>";
    const std::string kHarmless[] = {
        "TYPE=\"UINT64\"/>",
        "TYPE=\"uint64\"><VALUE>many</VALUE></PROPERTY>",
        "TYPE=\"uint64\">Text</PROPERTY>",
        "TYPE=\"uint64\"/><!-- Caf\xE9 -->",
    };
    const TPluginRoot root({});
    CopyLibrary("mistaken", root.Path() + "/mistaken/libmistaken.pi.so");
    for (const std::string& harmless : kHarmless) {
        std::string document = ReadFile(FIXTURE_PLUGINS "/mistaken/mistaken.properties.xml");
        document.replace(document.find(right), right.size(), harmless);
        const std::string name = "\"TEST_UserHome\"";
        document.replace(document.find(name), name.size(), name + " SUPERCLASS=\"CIM_Nothing\"");
        root.Write("mistaken/mistaken.properties.xml", document);
        EXPECT_THAT(RunKyr("collect" + root.Option()).err,
                    StartsWith("kyr: plugin mistaken: refused: " + root.Path() +
                               "/mistaken/mistaken.properties.xml:23: the superclass 'CIM_Nothing'"))
            << harmless;
    }
}

// Its library comes before that of the system plugin, and the class that it declares too has other properties there.
TEST(FailuresTest, ClassesOfABuiltInPluginAreNotTaken) {
    const TPluginRoot root({"grabbing"});
    const std::string taken = " is taken: " + root.Path() + "/system/libsystem.pi.so has it, not " + root.Path() +
                              "/grabbing/libgrabbing.pi.so";
    for (const std::string how : {"", "--in-process "}) {
        const std::string collect = "collect " + how + root.Option() + "--class TEST_Grabbed ";
        EXPECT_THAT(RunKyr(collect + "--class MOLTA_OperatingSystem"),
                    FieldsAre(1, AllOf(HasSubstr("KernelRelease"), HasSubstr("TEST_Grabbed\n  Id  1\n")),
                              "kyr: plugin grabbing: partial: class MOLTA_OperatingSystem" + taken + "\n"));
        EXPECT_THAT(RunKyr(collect), FieldsAre(0, "TEST_Grabbed\n  Id  1\n", ""));
    }
    const TRunResult json = RunKyr("collect --json" + root.Option());
    for (const std::string part :
         {"\"reasonCode\": \"class name taken\"", "\"reason\": \"class MOLTA_OperatingSystem (and 1 more)",
          "\"warning: class MOLTA_MissingSource is taken: the base document has it"})
        EXPECT_THAT(json.out, HasSubstr(part));
}

TEST(FailuresTest, PluginAllOfWhoseClassesAreTakenIsRefused) {
    const TPluginRoot root({"givesup", "two"});
    EXPECT_THAT(RunKyr("schema" + root.Option()),
                FieldsAre(1, _,
                          "kyr: plugin two: refused: class TEST_Kept (and 1 more) is taken: " + root.Path() +
                              "/givesup/libgivesup.pi.so has it, not " + root.Path() + "/two/libtwo.pi.so\n"));
}

TEST(FailuresTest, VersionOfTheInterfaceThatAPluginWasBuiltForIsLookedAt) {
    const std::string builtFor = "it was built for version ", has = " of the plugin interface, and this kyr has 1.0";
    const std::string runs = "TEST_Kept\n  Id  1\n";
    const struct {
        const char* plugin;
        int status;
        std::string out, error;
    } cases[] = {
        {"two", 0, runs, ""},
        {"newminor", 0, runs, "kyr: plugin newminor: " + builtFor + "1.1" + has + "\n"},
        {"newmajor", 3, "",
         "kyr: plugin newmajor: refused: " + builtFor + "2.0" + has +
             " (class TEST_Kept)\nkyr: nothing was collected\n"},
        {"oddversion", 0, runs,
         "kyr: plugin oddversion: '1.0x', for which it was built, is no version of the plugin "
         "interface\n"},
        {"noversion", 0, runs,
         "kyr: plugin noversion: it does not say for which version of the plugin interface it "
         "was built\n"},
    };
    for (const auto& each : cases)
        for (const std::string how : {"", "--in-process "})
            EXPECT_THAT(RunKyrWith({each.plugin}, "collect --class TEST_Kept " + how),
                        FieldsAre(each.status, each.out, each.error));
}

TEST(FailuresTest, PluginWithoutItsDocumentIsNamed) {
    const TPluginRoot root({});
    CopyLibrary("shown", root.Path() + "/alone/libalone.pi.so");
    const std::string message = "kyr: plugin shown: refused: cannot read its document " + root.Path() +
                                "/alone/alone.properties.xml: file not found (kyrStatusFileNotFound)\n";
    EXPECT_THAT(RunKyr("identity" + root.Option()), FieldsAre(1, _, message));
    EXPECT_EQ(RunKyr("show --class TEST_Shown" + root.Option()).err, message + "kyr: unknown class 'TEST_Shown'\n");
}

TEST(FailuresTest, HowADataEntryEndedIsTold) {
    const std::pair<const char*, const char*> kCases[] = {
        {"KYR_TEST_EXCEPTION=''", "was left by an exception"},
        {"KYR_TEST_EXCEPTION='it is gone'", "was left by an exception: it is gone"},
        {"KYR_TEST_STATUS=3", "returned fail (kyrStatusFail) and logged nothing"},
        {"KYR_TEST_STATUS=4711", "returned 4711 (no known status) and logged nothing"},
    };
    const TPluginRoot root({"throwing"});
    for (const auto& [environment, end] : kCases)
        for (const char* option : {"", " --in-process"})
            EXPECT_THAT(RunKyr("collect --class TEST_Kept" + root.Option() + option, environment).err,
                        HasSubstr(std::string("ed: its data entry ") + end + " (class TEST_Kept)\n"))
                << environment;
}

// The class may be the plugin's that was refused.
TEST(FailuresTest, WhatFailedIsToldInFrontOfAnUnknownName) {
    const TPluginRoot root({"baddocument", "shown"});
    for (const char* command : {"show TEST_Third", "get TEST_Third.Size", "assoc TEST_Third"})
        EXPECT_THAT(RunKyr(command + root.Option()),
                    FieldsAre(2, "",
                              AllOf(StartsWith("kyr: plugin baddocument: refused: "),
                                    HasSubstr("\nkyr: nothing is called 'TEST_Third': "))))
            << command;
}

TEST(FailuresTest, SecondPluginOfALibraryIsToldWhoHasItsClasses) {
    EXPECT_THAT(
        RunKyrWith({"pair"}, "collect"),
        FieldsAre(1, _,
                  "kyr: plugin pair: refused: the classes go to plugin pair, which its library registers before it\n"));
}

TEST(FailuresTest, PluginsOfALibraryThatFailAlikeAreToldOfOnce) {
    EXPECT_THAT(RunKyrWith({"crowd"}, "collect").err,
                "kyr: plugin crowd and 88 more of its library: refused: the classes go to plugin crowd, which its "
                "library registers before it\n");
}

TEST(FailuresTest, DocumentWithoutItsLibraryIsNamed) {
    const TPluginRoot root({});
    const std::string document = ReadFile(FIXTURE_PLUGINS "/shown/shown.properties.xml");
    root.Write("alone/alone.properties.xml", document);
    root.Write("ours/libtwo.properties.xml", document);  // of libours/libtwo.pi.so: the core drops the first "lib"
    CopyLibrary("shown", root.Path() + "/libours/libtwo.pi.so");
    EXPECT_THAT(
        RunKyr("collect" + root.Option()),
        FieldsAre(1, HasSubstr("TEST_Shown (2)\n"),
                  "kyr: plugin ./alone/libalone.pi.so: refused: cannot be opened: only its document is there\n"));
}

TEST(FailuresTest, DocumentOfAnotherNameThanItsLibraryIsToldOnce) {
    const TPluginRoot root({});
    root.Write("alone/Alone.properties.xml", ReadFile(FIXTURE_PLUGINS "/shown/shown.properties.xml"));
    CopyLibrary("shown", root.Path() + "/alone/libalone.pi.so");
    EXPECT_EQ(RunKyr("collect" + root.Option()).err,
              "kyr: plugin shown: refused: cannot read its document " + root.Path() +
                  "/alone/alone.properties.xml: file not found (kyrStatusFileNotFound); rename Alone.properties.xml, "
                  "which lies in its place\n");
}

TEST(FailuresTest, CollectionOfNothingIsNoResultAndLeavesTheFileOfAnEarlierOne) {
    const TempFolder root, broken;
    const std::string file = root.Write("a.xml", "earlier"), end = "kyr: nothing was collected\n";
    EXPECT_THAT(RunKyr("collect --plugins " + root.Path() + " -o " + file),
                FieldsAre(3, _, "kyr: no plugins in '" + root.Path() + "'\n" + end));
    EXPECT_EQ(ReadFile(file), "earlier");
    broken.Write("broken/libbroken.pi.so", "no library");
    EXPECT_THAT(RunKyr("collect --plugins " + broken.Path()), FieldsAre(3, "", HasSubstr(end)));
}

TEST(FailuresTest, PipeInPlaceOfALibraryHoldsNothingUp) {
    const TPluginRoot root({});
    std::filesystem::create_directory(root.Path() + "/pipe");
    ASSERT_EQ(mkfifo((root.Path() + "/pipe/libpipe.pi.so").c_str(), 0600), 0);
    EXPECT_EQ(RunKyr("identity" + root.Option()).status, 0);
}

TEST(FailuresTest, LinksThatLeadNowhereCostTheirPluginsAlone) {
    const TPluginRoot root({});
    std::filesystem::create_directory(root.Path() + "/broken");
    std::filesystem::create_symlink("nowhere", root.Path() + "/broken/libbroken.pi.so");
    CopyLibrary("shown", root.Path() + "/loop/libloop.pi.so");
    std::filesystem::create_symlink("loop.properties.xml", root.Path() + "/loop/loop.properties.xml");
    EXPECT_THAT(
        RunKyr("collect" + root.Option()),
        FieldsAre(1, HasSubstr("MOLTA_ComputerSystem\n"),
                  AllOf(StartsWith("kyr: plugin ./broken/libbroken.pi.so: refused: cannot be opened: "),
                        HasSubstr("kyr: plugin ./loop/libloop.pi.so: refused: its document " + root.Path() +
                                  "/loop/loop.properties.xml cannot be read: Too many levels of symbolic links"))));
}

TEST(FailuresTest, BaseDocumentThatCannotBeReadEndsTheCommand) {
    const TempFolder folder;
    const std::string missing = folder.Path() + "/none.xml", bad = folder.Write("bad.xml", "<CIM><NO/></CIM>");
    EXPECT_THAT(RunKyr("schema --schema " + missing), FieldsAre(3, _,
                                                                "kyr: cannot read the base document '" + missing +
                                                                    "': file not found (kyrStatusFileNotFound)\n"));
    EXPECT_THAT(RunKyr("schema --schema " + bad),
                FieldsAre(3, _, HasSubstr("kyr: base document: CIM-XML Parser line 1:Unexpected element no\n")));
}
