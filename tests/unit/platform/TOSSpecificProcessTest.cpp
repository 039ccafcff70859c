#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "kyr/TOSSpecific.h"
#include "support/TestSupport.h"

namespace {

class TOSSpecificProcessTest : public LoggedTest {};

TEST_F(TOSSpecificProcessTest, OutputAndExitCodeAreThoseOfTheProgram) {
    // A program, its arguments, its exit code and what it prints.
    const std::tuple<std::string, std::vector<std::string>, int, std::string> cases[] = {
        {"echo", {"a  b", "\"c\" 'd' $e *", ""}, 0, "a  b \"c\" 'd' $e * \n"},
        {"/bin/sh", {"-c", "echo one; echo two >&2; echo three"}, 0, "one\ntwo\nthree\n"},
        {"sh", {"-c", "printf only >&2; exit 3"}, 3, "only"},
        {"sh", {"-c", "exit 255"}, 255, ""},
        {"sh", {"-c", "test -e /proc/self/fd/0 || echo no input"}, 0, "no input\n"},
        {"printf", {"a\\000b"}, 0, std::string("a\0b", 3)},
        {"/no/such/program", {}, 1, ""},
        {"no-such-program", {}, 1, ""},
        {"head", {"-c", "1048576", "/dev/zero"}, 0, std::string(1048576, '\0')},
    };
    printf("text in the parent's buffer, which no child may write");
    for (const auto& [path, arguments, exitCode, printed] : cases) {
        std::string output = "before";
        EXPECT_EQ(TOSSpecific::SpawnProcess(path, arguments, output), exitCode) << path;
        EXPECT_TRUE(output == printed) << path << ": " << output.substr(0, 200);
        EXPECT_EQ(fLog.TakeLines(), TLines{"3:SpawnProcess: process " + path});
    }
    printf("\n");
    EXPECT_EQ(TOSSpecific::SpawnProcess("false"), "");
    EXPECT_EQ(TOSSpecific::SpawnProcess("echo", {"a"}), "a\n");
}

TEST_F(TOSSpecificProcessTest, AChildThatLeavesNoExitCodeIsAFailure) {
    std::string output;
    const auto spawn = [&] { TOSSpecific::SpawnProcess("sh", {"-c", "echo before; kill -9 $$"}, output); };
    EXPECT_EQ(StatusOf(spawn), kyrStatusFail);
    EXPECT_EQ(output, "before\n");
    EXPECT_EQ(fLog.TakeLines().back(), "0:ERROR: SpawnProcess - child terminated abnormally");
    const auto previous = signal(SIGCHLD, SIG_IGN);  // the system reaps it
    EXPECT_EQ(StatusOf(spawn), kyrStatusFail);
    signal(SIGCHLD, previous);
    EXPECT_EQ(fLog.TakeLines().back(), "0:ERROR: SpawnProcess - waitpid call failed");
}

TEST_F(TOSSpecificProcessTest, FilesAreReadWhole) {
    TempFolder folder;
    const std::string content = std::string(10000, 'x') + std::string(2, '\0') + "end";
    const std::string path = folder.Write("file", content);
    const int next = open(path.c_str(), O_RDONLY);
    EXPECT_TRUE(TOSSpecific::GetFileContents(next) == content);
    EXPECT_EQ(close(next), 0);
    EXPECT_TRUE(TOSSpecific::CaptureFile(path) == content);
    EXPECT_EQ(close(next), 0);  // the capture has left its descriptor open
    EXPECT_TRUE(fLog.TakeLines().empty());

    EXPECT_EQ(StatusOf([&] { TOSSpecific::CaptureFile(folder.Path() + "/missing"); }), kyrStatusFileNotFound);
    EXPECT_EQ(StatusOf([&] { TOSSpecific::CaptureFile(folder.Path()); }), kyrStatusFileSystemError);
    EXPECT_EQ(fLog.TakeLines(), TLines({"0:ERROR: CaptureFile failed to open: " + folder.Path() + "/missing",
                                        "0:ERROR: GetFileContents failed to read file"}));
}

}  // namespace
