#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "KyrRun.h"

namespace fs = std::filesystem;

namespace {

const std::string kNobody = "setpriv --reuid=65534 --regid=65534 --clear-groups env ";

void CopyDocument(const std::string& target) {
    fs::create_directories(fs::path(target).parent_path());
    fs::copy_file(FIXTURE_PLUGINS "/shown/shown.properties.xml", target);
}

// A plugin folder with the fixture plugin "shown" and no other.
class TShownFolder : public TempFolder {
public:
    TShownFolder() {
        CopyLibrary("shown", Path() + kShown);
        CopyDocument(Path() + "/shown/shown.properties.xml");
    }
    std::string Library() const { return Path() + kShown; }

private:
    static constexpr const char* kShown = "/shown/libshown.pi.so";
};

const std::string kList = "show --class TEST_Shown --raw ";

TEST(PluginFoldersTest, FoldersThatAreGivenReplaceTheDefaultOnesUnlessTheseAreNamed) {
    const TShownFolder one;
    const TPluginRoot two({});
    const std::string system = "schema MOLTA_ComputerSystem", shown = "schema TEST_Shown";
    const std::string path = "KYR_PLUGIN_PATH=:/nowhere:" + one.Path() + ":";
    const struct {
        std::string options, environment;
        bool hasShown, hasSystem;
    } cases[] = {
        {"", "", false, true},
        {"", path, true, true},
        {" --plugins " + one.Path(), "", true, false},
        {" --plugins " + two.Path(), path, false, true},
        {" --plugins " + one.Path() + " --plugins " + two.Path(), "", true, true},
        {" --plugins " + one.Path() + " --plugins default", "", true, true},
        {" --plugins default --plugins default", path, true, true},
    };
    for (const auto& each : cases) {
        const TRunResult foundShown = RunKyr(shown + each.options, each.environment);
        EXPECT_EQ(foundShown.status, each.hasShown ? 0 : 2) << each.options << each.environment << foundShown.err;
        const TRunResult foundSystem = RunKyr(system + each.options, each.environment);
        EXPECT_EQ(foundSystem.status, each.hasSystem ? 0 : 2) << each.options << each.environment << foundSystem.err;
    }
}

TEST(PluginFoldersTest, FirstOfPluginsWithOneNameIsTakenWhichIsTold) {
    const TShownFolder one, two;
    const std::string line = "plugin shown: " + one.Library() + " is taken, and not " + two.Library();
    const TRunResult run = RunKyr(kList + "--json --plugins " + one.Path() + " --plugins " + two.Path());
    EXPECT_EQ(run.err, "kyr: " + line + "\n");
    EXPECT_THAT(run.out, HasSubstr("\"folder\": \"" + one.Path() + "\""));
    EXPECT_THAT(run.out, Not(HasSubstr("\"folder\": \"" + two.Path() + "\"")));
    EXPECT_THAT(run.out, HasSubstr("warning: " + one.Library() + " is taken"));
    EXPECT_EQ(RunKyr(kList + "--plugins " + one.Path() + " --plugins " + one.Path() + "/.").err, "");
}

TEST(PluginFoldersTest, FolderThatIsGivenMustBeThere) {
    const TShownFolder folder;
    EXPECT_THAT(RunKyr("collect --plugins /nowhere --plugins " + folder.Path()),
                FieldsAre(3, "", "kyr: cannot read the plugin folder '/nowhere': No such file or directory\n"));
    EXPECT_THAT(RunKyr("identity", "KYR_PLUGIN_PATH=" + folder.Library()),
                FieldsAre(0, _, "kyr: cannot read the plugin folder '" + folder.Library() + "': Not a directory\n"));
}

TEST(PluginFoldersTest, PluginsRunInTheirOwnFolderWhereverTheOthersAre) {
    const TShownFolder one;
    for (const std::string how : {"", "--in-process "})
        EXPECT_THAT(RunKyr("collect --class TEST_Shown --class MOLTA_ComputerSystem " + how + "--plugins " +
                           one.Path() + TPluginRoot({}).Option()),
                    FieldsAre(0, AllOf(HasSubstr("TEST_Shown"), HasSubstr("MOLTA_ComputerSystem")), ""));
}

TEST(PluginFoldersTest, UsersOwnFolderIsSearchedForUsersOnly) {
    if (RunShell(kNobody + KYR_PROGRAM " --version").status != 0)
        GTEST_SKIP() << "needs a superuser who can become nobody";
    const TempFolder data;
    chmod(data.Path().c_str(), 0755);
    const std::string folder = data.Path() + "/kyrcore/plugins/shown";
    CopyLibrary("shown", folder + "/libshown.pi.so");
    CopyDocument(folder + "/shown.properties.xml");
    const std::string variable = "XDG_DATA_HOME=" + data.Path() + " ";
    EXPECT_EQ(RunKyr("schema TEST_Shown", variable).status, 2);
    EXPECT_EQ(RunKyr("schema TEST_Shown", kNobody + variable).status, 0);
    fs::create_directories(data.Path() + "/.local");
    fs::create_directory_symlink(data.Path(), data.Path() + "/.local/share");
    EXPECT_EQ(RunKyr("schema TEST_Shown", kNobody + "-u XDG_DATA_HOME HOME=" + data.Path()).status, 0);
}

TEST(PluginFoldersTest, SuperuserIsToldWhatOthersCanWrite) {
    if (geteuid() != 0) GTEST_SKIP() << "needs a superuser";
    const TShownFolder root;
    const auto complaint = [&](const std::string& path) {
        return "kyr: others than the superuser can write '" + path + "', from which " + root.Library() +
               " runs as the superuser\n";
    };
    const std::string document = root.Path() + "/shown/shown.properties.xml";
    for (const std::string& path : {root.Path(), root.Path() + "/shown", root.Library(), document}) {
        const std::string run = kList + "--plugins " + root.Path();
        EXPECT_EQ(RunKyr(run).err, "");
        chmod(path.c_str(), 0777);
        EXPECT_EQ(RunKyr(run).err, complaint(path));
        chmod(path.c_str(), 0755);
        ASSERT_EQ(chown(path.c_str(), 65534, 0), 0);
        EXPECT_EQ(RunKyr(run).err, complaint(path));
        ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
    }
}

// By kyr collect and by kyr check, in the same words.
TEST(PluginFoldersTest, LibraryInTheWrongPlaceIsToldTheRightOne) {
    const struct {
        const char *library, *document, *text, *rule, *right;
    } cases[] = {
        {"libshown.pi.so", "shown.properties.xml", "it lies in the plugin folder itself", "L09",
         "shown/libshown.pi.so"},
        {"a/b/libshown.pi.so", "a/b/shown.properties.xml", "it lies too deep", "L09", "shown/libshown.pi.so"},
        {"shown/build/libshown.pi.so", "shown/shown.properties.xml", "it lies too deep", "L09", "shown/libshown.pi.so"},
        {"shown/libshown.so", "shown/shown.properties.xml", "its name does not end in .pi.so", "L10",
         "shown/libshown.pi.so"},
        {"shown/shown.pi.so", "shown/shown.properties.xml", "its name does not begin with lib", "L11",
         "shown/libshown.pi.so"},
        {"libshown/libshown.pi.so", "libshown/shown.properties.xml", "the letters lib stand in the name of its folder",
         "L04", "shown/libshown.pi.so"},
        {"mylibs/liblib.pi.so", "mylibs/lib.properties.xml", "the letters lib stand in the name of its folder", "L04",
         "plugin/liblib.pi.so"},
    };
    for (const auto& each : cases) {
        const TPluginRoot root({});
        CopyLibrary("shown", root.Path() + "/" + each.library);
        CopyDocument(root.Path() + "/" + each.document);
        const std::string text = each.text, remedy = "it belongs at " + root.Path() + "/" + each.right +
                                                     ", with its document beside it\n";
        EXPECT_THAT(RunKyr("identity" + root.Option()),
                    FieldsAre(1, _, "kyr: plugin ./" + (each.library + (": refused: " + text + "; " + remedy))));
        EXPECT_THAT(
            RunKyr("check " + root.Path()).out,
            HasSubstr(root.Path() + "/" + each.library + ": error: " + text + " [" + each.rule + "]\n    " + remedy));
    }
}

TEST(PluginFoldersTest, CopiesOfALibraryInItsPlaceAreNoMistake) {
    const TShownFolder root;
    CopyLibrary("shown", root.Path() + "/libshown.pi.so");
    CopyLibrary("shown", root.Path() + "/shown/old/libshown.pi.so");
    CopyLibrary("shown", root.Path() + "/shown/libhelper.so");
    EXPECT_EQ(RunKyr(kList + "--plugins " + root.Path()).err, "");
}

}  // namespace
