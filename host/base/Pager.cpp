#include "base/Pager.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "base/Descriptor.h"

namespace {

constexpr const char* kDefault = "if command -v less >/dev/null; then exec less -FRX; else exec cat; fi";

const char* CommandGiven() {
    for (const char* variable : {"KYR_PAGER", "PAGER"})
        if (const char* const command = std::getenv(variable)) return command;
    return kDefault;
}

bool IsCapableTerminal() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::strcmp(terminal, "dumb") != 0 && isatty(STDOUT_FILENO) != 0;
}

[[noreturn]] void RunPager(int input, const char* command) {
    for (const int signal : {SIGINT, SIGQUIT, SIGPIPE}) std::signal(signal, SIG_DFL);
    setenv("LESS", "FRX", 0);
    if (dup2(input, STDIN_FILENO) >= 0) execl("/bin/sh", "sh", "-c", command, nullptr);
    _exit(127);
}

}  // namespace

TPager::TPager(TOutput& output, bool isWanted) : fOutput(output) {
    const char* const command = CommandGiven();
    const bool isNone = *command == '\0' || std::strcmp(command, "cat") == 0;
    if (isWanted && !isNone && IsCapableTerminal()) Start(command);
}

// Where no process or pipe can be had, the text goes to the terminal as it is.
void TPager::Start(const char* command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    const TDescriptor input(ends[0]), pipe(ends[1]);
    fOutput.Flush();
    fTerminal = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (fTerminal < 0) return;
    try {
        fProcess = std::make_unique<TChildProcess>([&] { RunPager(ends[0], command); });
    } catch (const std::system_error&) {
        return;
    }
    fInterrupt = std::signal(SIGINT, SIG_IGN);
    fQuit = std::signal(SIGQUIT, SIG_IGN);
    dup2(ends[1], STDOUT_FILENO);
    fOutput.SetPaged(true);
}

TPager::~TPager() {
    if (fProcess) {
        fOutput.SetPaged(false);
        dup2(fTerminal, STDOUT_FILENO);
        if (const int status = fProcess->Wait().exitStatus; status != 0)
            fOutput.SetFailure(std::string("the pager '") + CommandGiven() + "' ended with status " +
                               std::to_string(status) + "; --no-pager prints without one");
        std::signal(SIGINT, fInterrupt);
        std::signal(SIGQUIT, fQuit);
    }
    if (fTerminal >= 0) close(fTerminal);
}
