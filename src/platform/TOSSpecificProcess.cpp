#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "platform/CoreLog.h"

namespace {

/// A function of its own, so that tests/leaks.supp can name it: a failure to spawn leaks the array.
[[gnu::noinline]] char** kyriLeakSpawnArgv(std::string& path, std::vector<std::string>& arguments) {
    char** argv = new char*[arguments.size() + 2];
    size_t count = 0;
    argv[count++] = path.data();
    for (std::string& argument : arguments) argv[count++] = argument.data();
    argv[count] = nullptr;
    return argv;
}

/// Runs in the child: only async-signal-safe calls, and _exit, which neither flushes the host's buffers nor runs its
/// destructors.
[[noreturn]] void RunProgram(const int (&ends)[2], char** argv) {
    if (dup2(ends[1], STDOUT_FILENO) != -1 && dup2(ends[1], STDERR_FILENO) != -1 && close(STDIN_FILENO) == 0 &&
        close(ends[0]) == 0)
        execvp(argv[0], argv);
    _exit(1);
}

}  // namespace

std::string TOSSpecific::SpawnProcess(std::string path) { return SpawnProcess(path, {}); }

std::string TOSSpecific::SpawnProcess(std::string path, std::vector<std::string> arguments) {
    std::string output;
    SpawnProcess(path, arguments, output);
    return output;
}

int TOSSpecific::SpawnProcess(std::string path, std::vector<std::string> arguments, std::string& output) {
    LogCore(kyrLogDebug, "SpawnProcess: process " + path);
    char** argv = kyriLeakSpawnArgv(path, arguments);
    int ends[2];
    if (pipe(ends) != 0) LogAndThrow(kyrStatusFail, "ERROR: SpawnProcess - pipe call failed");
    const pid_t child = fork();
    if (child == -1) LogAndThrow(kyrStatusFail, "ERROR: SpawnProcess - fork call failed");
    if (child == 0) RunProgram(ends, argv);

    if (close(ends[1]) != 0) LogAndThrow(kyrStatusFail, "ERROR: SpawnProcess - close pipe call failed");
    output = GetFileContents(ends[0]);
    if (close(ends[0]) != 0) LogAndThrow(kyrStatusFail, "ERROR: SpawnProcess - close pipe call failed");
    int status;
    if (waitpid(child, &status, 0) == -1) LogAndThrow(kyrStatusFail, "ERROR: SpawnProcess - waitpid call failed");
    if (WTERMSIG(status) != 0) LogAndThrow(kyrStatusFail, "ERROR: SpawnProcess - child terminated abnormally");
    delete[] argv;
    return WEXITSTATUS(status);
}

std::string TOSSpecific::GetFileContents(int descriptor) {
    std::string content;
    char block[4096];
    ssize_t count;
    while ((count = read(descriptor, block, sizeof block)) >= 1) content.append(block, static_cast<size_t>(count));
    if (count < 0) LogAndThrow(kyrStatusFileSystemError, "ERROR: GetFileContents failed to read file");
    return content;
}

std::string TOSSpecific::CaptureFile(std::string path) {
    const int descriptor = open(path.c_str(), O_RDONLY);
    if (descriptor == -1) LogAndThrow(kyrStatusFileNotFound, "ERROR: CaptureFile failed to open: " + path);
    return GetFileContents(descriptor);  // the descriptor is never closed; see docs/oddities.md
}
