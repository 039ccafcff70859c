#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

#include "kyr/TOSSpecific.h"
#include "support/TestSupport.h"

namespace {

class TOSSpecificFilesTest : public ::testing::Test {
protected:
    std::string In(const std::string& name) const { return fFolder.Path() + "/" + name; }

    TempFolder fFolder;
};

TEST_F(TOSSpecificFilesTest, FilesAndDirectoriesAreToldApart) {
    const std::string file = fFolder.Write("file", "12345");
    enum EKind { eFile, eDirectory, eNeither };
    const std::pair<std::string, EKind> cases[] = {{file, eFile},
                                                   {"/dev/null", eFile},
                                                   {fFolder.Path(), eDirectory},
                                                   {In("missing"), eNeither},
                                                   {file + "/below", eNeither}};
    for (const auto& [path, kind] : cases) {
        EXPECT_EQ(TOSSpecific::FileExists(path), kind == eFile) << path;
        EXPECT_EQ(TOSSpecific::DirExists(path), kind == eDirectory) << path;
        EXPECT_EQ(StatusOf([&, name = path] { TOSSpecific::GetFileSize(name); }),
                  kind == eFile ? kyrStatusOK : kyrStatusFileNotFound);
    }
    EXPECT_EQ(TOSSpecific::GetFileSize(file), 5);
}

TEST_F(TOSSpecificFilesTest, DirectoriesAreMadeOneLevelAtATimeAndListedByBareNames) {
    // clang-format off
    const std::pair<const char*, kyrStatusCode> cases[] = {
        {"a", kyrStatusOK}, {"a", kyrStatusDirectoryAlreadyExists}, {"b/c", kyrStatusFileSystemError},
        {"b", kyrStatusOK}, {"b/c", kyrStatusOK}};
    // clang-format on
    for (const auto& [name, status] : cases)
        EXPECT_EQ(StatusOf([&, path = In(name)] { TOSSpecific::CreateDir(path); }), status) << name;
    EXPECT_THAT(TOSSpecific::ListDir(fFolder.Path()), ::testing::UnorderedElementsAre("a", "b"));
    EXPECT_TRUE(TOSSpecific::ListDir(In("a")).empty());
    EXPECT_EQ(StatusOf([&] { TOSSpecific::ListDir(In("missing")); }), kyrStatusFileSystemError);
}

TEST_F(TOSSpecificFilesTest, ACopyHasContentAndModeOfItsSource) {
    const std::string content = std::string(100000, 'x') + std::string(1, '\0') + "end";
    const std::string source = fFolder.Write("source", content);
    chmod(source.c_str(), 0640);
    TOSSpecific::FileCopy(source, In("target"));
    EXPECT_EQ(ReadFile(In("target")), content);
    struct stat info;
    stat(In("target").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    TOSSpecific::FileCopy(fFolder.Write("empty", ""), In("empty2"));
    EXPECT_EQ(TOSSpecific::GetFileSize(In("empty2")), 0);
}

TEST_F(TOSSpecificFilesTest, AnExistingTargetIsRefusedAndTheSourceClosed) {
    const std::string target = fFolder.Write("target", "old");
    const int next = dup(0);
    close(next);
    EXPECT_EQ(StatusOf([&] { TOSSpecific::FileCopy("/dev/null", target); }), kyrStatusFileSystemError);
    EXPECT_EQ(ReadFile(target), "old");
    EXPECT_EQ(fcntl(next, F_GETFD), -1);
}

/// Copies a file that does not exist, with the given one on standard input.
[[noreturn]] void CopyMissing(const std::string& input, const std::string& target) {
    dup2(open(input.c_str(), O_RDONLY), 0);
    const kyrStatusCode status = StatusOf([&] { TOSSpecific::FileCopy("/missing", target); });
    const bool closed = fcntl(0, F_GETFD) == -1;
    exit(closed && !TOSSpecific::FileExists(target) ? status : 100);
}

TEST_F(TOSSpecificFilesTest, AMissingSourceCopiesStandardInputOntoItself) {
    const std::string text = fFolder.Write("text", "text");
    EXPECT_EXIT(CopyMissing("/dev/null", In("target")), ::testing::ExitedWithCode(kyrStatusOK), "");
    EXPECT_EXIT(CopyMissing(text, In("target")), ::testing::ExitedWithCode(kyrStatusFileSystemError), "");
}

TEST_F(TOSSpecificFilesTest, TheMachineIsNamedAndTheCurrentDirectoryIsNot) {
    char name[256];
    gethostname(name, sizeof name);
    EXPECT_EQ(TOSSpecific::GetMachineName(), name);
    EXPECT_EQ(TOSSpecific::GetOperatingSystemName(), name);
    EXPECT_EQ(TOSSpecific::IsAdmin(), getuid() == 0);
    EXPECT_EQ(StatusOf([] { TOSSpecific::GetCurrentDir(); }), kyrStatusFail);
}

TEST_F(TOSSpecificFilesTest, ADocumentIsNamedAfterItsLibrary) {
    const std::pair<const char*, std::string> cases[] = {
        {"root/disk/libdisk.pi.so", "root/disk/disk.properties.xml"},
        {"/usr/lib/kyr/disk/libdisk.pi.so", "/usr//kyr/disk/libdisk.properties.xml"},
        {"root/disk/libdisk.pi.so.bak", "root/disk/disk.properties.xml"},
        {"root/disk/disk.pi.so", "kyrStatusFail"},
        {"root/disk/libdisk.so", "kyrStatusFail"},
        {"root/x.pi.so.d/libd.pi.so", "kyrStatusFail"}};
    for (const auto& [path, expected] : cases) {
        std::string document;
        const kyrStatusCode status =
            StatusOf([&, name = path] { document = TOSSpecific::BuildSpecificationPath(name); });
        EXPECT_EQ(status == kyrStatusOK ? document : kyrTranslateStatusCode(status), expected) << path;
    }
}

/// The exit status of a process that asks for a key with the given text, if any, waiting on standard input.
[[noreturn]] void AskForKey(const char* text) {
    int ends[2];
    if (pipe(ends) != 0 || write(ends[1], text, strlen(text)) < 0) exit(100);
    dup2(ends[0], 0);
    if (!TOSSpecific::IsKeyWaiting()) exit(101);
    exit(TOSSpecific::GetKeyboardChar());
}

TEST(TOSSpecificConsoleTest, AKeyIsReadFromStandardInput) {
    EXPECT_EXIT(AskForKey("k"), ::testing::ExitedWithCode('k'), "");
    EXPECT_EXIT(AskForKey(""), ::testing::ExitedWithCode(101), "");
    EXPECT_EXIT((close(0), exit(TOSSpecific::IsKeyWaiting() ? 1 : 2)), ::testing::ExitedWithCode(1), "");
}

TEST(TOSSpecificConsoleTest, SleepCountsMilliseconds) {
    const auto before = std::chrono::steady_clock::now();
    TOSSpecific::USleep(5);
    const auto elapsed = std::chrono::steady_clock::now() - before;
    EXPECT_GE(elapsed, std::chrono::milliseconds(5));
    EXPECT_LT(elapsed, std::chrono::seconds(2));
}

}  // namespace
