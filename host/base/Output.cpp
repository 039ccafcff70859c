#include "base/Output.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/ExitStatus.h"
#include "base/Text.h"

namespace {

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool MayColour() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::strcmp(terminal, "dumb") != 0 && !IsSet("NO_COLOR");
}

// 0 if COLUMNS is unset or is no positive number.
size_t ColumnsGiven() {
    const char* const columns = std::getenv("COLUMNS");
    const long given = columns == nullptr ? 0 : std::strtol(columns, nullptr, 10);
    return given > 0 ? static_cast<size_t>(given) : 0;
}

size_t ColumnsOfTerminal() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

size_t FindWidth() {
    if (const size_t given = ColumnsGiven()) return std::min(given, TOutput::kUnlimited);
    return isatty(STDOUT_FILENO) == 0 ? TOutput::kUnlimited : ColumnsOfTerminal();
}

// A reader that has seen enough, such as head(1), closes the pipe. That is no fault that anybody wants to read about.
[[noreturn]] void FailToWrite() {
    if (errno == EPIPE) throw TCommandError(eExitOutput, "");
    throw TCommandError(eExitOutput, std::string("cannot write standard output: ") + std::strerror(errno));
}

}  // namespace

TOutput::TOutput() : fTerminal(isatty(STDOUT_FILENO) != 0), fColour(fTerminal && MayColour()), fWidth(FindWidth()) {}

void TOutput::Write(std::string_view text) {
    if (fWrite) return fWrite(text);
    if (!fDropping && std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) HandleFailure();
}

void TOutput::WriteWrapped(std::string_view visible, std::string start, size_t columns) {
    const size_t indent = start.size(), width = std::min(columns, fWidth);
    for (const std::string& line : WrapText(visible, width > indent ? width - indent : 1)) {
        Write(start + line + "\n");
        start.assign(indent, ' ');
    }
}

void TOutput::Flush() {
    if (!fWrite && !fDropping && std::fflush(stdout) != 0) HandleFailure();
    if (!fFailure.empty()) throw TCommandError(eExitOutput, fFailure);
}

void TOutput::SetPaged(bool isPaged) {
    if (!isPaged && std::fflush(stdout) != 0) {
        __fpurge(stdout);
        std::clearerr(stdout);
    }
    fPaged = isPaged;
    fDropping = false;
}

void TOutput::HandleFailure() {
    fDropping = fPaged && errno == EPIPE;
    if (!fDropping) FailToWrite();
}

std::string TOutput::Bold(const std::string& text) const { return fColour ? "\033[1m" + text + "\033[0m" : text; }

std::string TOutput::Dim(const std::string& text) const { return fColour ? "\033[2m" + text + "\033[0m" : text; }

void PrintDiagnostic(const std::string& text) { std::fprintf(stderr, "kyr: %s\n", VisibleText(text).c_str()); }

void OpenMissingStandardStreams() {
    // Standard output is opened for reading on purpose: scripts that close it rely on exit status 4, which they would
    // not get if the result went to /dev/null.
    constexpr int kModes[] = {O_RDONLY, O_RDONLY, O_WRONLY};
    for (int descriptor = 0; descriptor < 3; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0) (void)open("/dev/null", kModes[descriptor]);
}
