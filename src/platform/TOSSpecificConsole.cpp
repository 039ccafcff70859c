#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

#include "kyr/TOSSpecific.h"

namespace {

/// Puts the terminal on standard input into raw mode and restores it at the end.
class TRawTerminal {
public:
    TRawTerminal() : fSaved() {
        tcgetattr(STDIN_FILENO, &fSaved);
        termios raw = fSaved;
        raw.c_lflag = 0;
        tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    }
    ~TRawTerminal() { tcsetattr(STDIN_FILENO, TCSANOW, &fSaved); }
    TRawTerminal(const TRawTerminal&) = delete;
    TRawTerminal& operator=(const TRawTerminal&) = delete;

private:
    termios fSaved;
};

}  // namespace

void TOSSpecific::USleep(unsigned int milliseconds) { usleep(milliseconds * 1000); }

bool TOSSpecific::IsKeyWaiting() {
    const TRawTerminal terminal;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(STDIN_FILENO, &readable);
    timeval timeout = {0, 0};
    return select(STDIN_FILENO + 1, &readable, nullptr, nullptr, &timeout) == -1 || FD_ISSET(STDIN_FILENO, &readable);
}

int TOSSpecific::GetKeyboardChar() {
    const TRawTerminal terminal;
    return getc(stdin);
}
