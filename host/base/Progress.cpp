#include "base/Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/Text.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirst(150);
constexpr milliseconds kInterval(100);

bool IsWanted() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::strcmp(terminal, "dumb") != 0 && isatty(STDERR_FILENO) != 0;
}

size_t TerminalWidth() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// "disk" for "./disk/libdisk.pi.so"
std::string ShortName(const std::string& path) {
    const size_t start = path.rfind('/', path.rfind('/') - 1) + 1;
    return VisibleText(path.substr(start, path.rfind('/') - start));
}

std::string Cut(std::string text, size_t width) {
    if (text.size() <= width) return text;
    size_t end = width > 3 ? width - 3 : 0;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end) + "...";
}

void Write(const std::string& text) {
    std::fputs(text.c_str(), stderr);
    std::fflush(stderr);
}

}  // namespace

TProgress::TProgress(size_t count) : fCount(count), fNext(IsWanted() ? fStart + kFirst : TTimePoint::max()) {}

void TProgress::Show(TTimePoint now, const std::vector<std::string>& running) {
    if (now < fNext) return;
    fNext = now + kInterval;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - fStart).count();
    std::string text =
        std::to_string(fDone) + " of " + std::to_string(fCount) + " plugins, " + std::to_string(seconds) + " s";
    for (const std::string& path : running) text += (path == running.front() ? ": " : ", ") + ShortName(path);
    Write("\r" + Cut(text, TerminalWidth() - 1) + "\033[K");
    fShown = true;
}

void TProgress::Erase() {
    if (fShown) Write("\r\033[K");
    fShown = false;
}
