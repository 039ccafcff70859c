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
    for (const char* line : {
             "kyr: plugin ./broken/libbroken.pi.so: refused: cannot be opened: ./broken/libbroken.pi.so: ",
             "kyr: plugin noinit: refused: its init entry failed: there is no device\n",
             "kyr: plugin baddocument: refused: cannot read its document ./baddocument/baddocument.properties.xml: "
             "kyrStatusInvalidSpecificationDocument: CIM-XML Parser line 10:Unexpected element no.such.element\n",
             "kyr: plugin givesup: partial: its answer ended with kyrStatusErrorCollectingClass (class TEST_Kept)\n",
             "kyr: plugin givesup, class TEST_Lost: failed: its answer ended with kyrStatusErrorCollectingClass\n",
             "kyr: plugin denied: refused: its answer ended with kyrStatusAccessDenied (class TEST_Denied)\n",
             "kyr: plugin keyless, class TEST_Keyless: failed: Instance TEST_Keyless: key property Id is NULL (and 1 "
             "more)\n",
             "kyr: plugin ./unregistered/libunregistered.pi.so: refused: it registers no plugin\n",
         })
        EXPECT_THAT(run.err, HasSubstr(line));
}

TEST(FailuresTest, PluginWithoutItsDocumentIsNamed) {
    const TPluginRoot root({});
    std::filesystem::create_directory(root.Path() + "/alone");
    std::filesystem::copy_file(FIXTURE_PLUGINS "/shown/libshown.pi.so", root.Path() + "/alone/libalone.pi.so");
    const std::string message =
        "kyr: plugin shown: refused: cannot read its document ./alone/alone.properties.xml: kyrStatusFileNotFound\n";
    EXPECT_THAT(RunKyr("identity" + root.Option()), FieldsAre(1, _, message));
    EXPECT_EQ(RunKyr("show --class TEST_Shown" + root.Option()).err, message + "kyr: unknown class 'TEST_Shown'\n");
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
    std::filesystem::create_directory(root.Path() + "/libours");
    std::filesystem::copy_file(FIXTURE_PLUGINS "/shown/libshown.pi.so", root.Path() + "/libours/libtwo.pi.so");
    EXPECT_THAT(
        RunKyr("collect" + root.Option()),
        FieldsAre(1, HasSubstr("TEST_Shown (2)\n"),
                  "kyr: plugin ./alone/libalone.pi.so: refused: cannot be opened: only its document is there\n"));
}

TEST(FailuresTest, NothingButFailuresIsNoResult) {
    const TempFolder root;
    root.Write("broken/libbroken.pi.so", "no library");
    EXPECT_THAT(RunKyr("collect --plugins " + root.Path()),
                FieldsAre(3, "", HasSubstr("kyr: nothing was collected\n")));
}

TEST(FailuresTest, EmptyPluginFolderIsNoResult) {
    const TempFolder root;
    EXPECT_THAT(RunKyr("collect --plugins " + root.Path()),
                FieldsAre(3, _, "kyr: no plugins in '" + root.Path() + "'\nkyr: nothing was collected\n"));
}

TEST(FailuresTest, PipeInPlaceOfALibraryHoldsNothingUp) {
    const TPluginRoot root({});
    std::filesystem::create_directory(root.Path() + "/pipe");
    ASSERT_EQ(mkfifo((root.Path() + "/pipe/libpipe.pi.so").c_str(), 0600), 0);
    EXPECT_EQ(RunKyr("identity" + root.Option()).status, 0);
}

TEST(FailuresTest, LinksThatLeadNowhereCostTheirPluginsAlone) {
    const TPluginRoot root({});
    std::filesystem::create_directory(root.Path() + "/loop");
    std::filesystem::create_directory(root.Path() + "/broken");
    std::filesystem::create_symlink("nowhere", root.Path() + "/broken/libbroken.pi.so");
    std::filesystem::copy_file(FIXTURE_PLUGINS "/shown/libshown.pi.so", root.Path() + "/loop/libloop.pi.so");
    std::filesystem::create_symlink("loop.properties.xml", root.Path() + "/loop/loop.properties.xml");
    EXPECT_THAT(
        RunKyr("collect" + root.Option()),
        FieldsAre(1, HasSubstr("MOLTA_ComputerSystem\n"),
                  AllOf(StartsWith("kyr: plugin ./broken/libbroken.pi.so: refused: cannot be opened: "),
                        HasSubstr("kyr: plugin ./loop/libloop.pi.so: refused: its document ./loop/loop.properties.xml "
                                  "cannot be read: Too many levels of symbolic links"))));
}

TEST(FailuresTest, CollectionOfNothingLeavesTheFileOfAnEarlierOne) {
    const TempFolder root;
    const std::string file = root.Write("a.xml", "earlier");
    EXPECT_EQ(RunKyr("collect --plugins " + root.Path() + " -o " + file).status, 3);
    EXPECT_EQ(ReadFile(file), "earlier");
}

TEST(FailuresTest, BaseDocumentThatCannotBeReadEndsTheCommand) {
    const TempFolder folder;
    const std::string missing = folder.Path() + "/none.xml", bad = folder.Write("bad.xml", "<CIM><NO/></CIM>");
    EXPECT_THAT(RunKyr("schema --schema " + missing),
                FieldsAre(3, _, "kyr: cannot read the base document '" + missing + "': kyrStatusFileNotFound\n"));
    EXPECT_THAT(RunKyr("schema --schema " + bad),
                FieldsAre(3, _, HasSubstr("kyr: base document: CIM-XML Parser line 1:Unexpected element no\n")));
}
