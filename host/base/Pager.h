#ifndef KYR_HOST_BASE_PAGER_H
#define KYR_HOST_BASE_PAGER_H

#include <memory>

#include "base/ChildProcess.h"
#include "base/Output.h"

/// While it exists, standard output goes to a pager, if it is a terminal: to the command in KYR_PAGER or PAGER, or else
/// to less, which leaves alone what fits the screen. There is none if the command is empty or "cat", or on a terminal
/// that cannot move its cursor. The destructor waits until the user leaves the pager. A pager that fails, as one that
/// is not there, makes the output fail.
class TPager {
public:
    TPager(TOutput& output, bool isWanted);
    ~TPager();
    TPager(const TPager&) = delete;
    TPager& operator=(const TPager&) = delete;

private:
    void Start(const char* command);

    TOutput& fOutput;
    std::unique_ptr<TChildProcess> fProcess;  // null: there is no pager
    int fTerminal = -1;                       // standard output as it was
    // What the keys of the terminal did. Meanwhile they are for the pager alone.
    void (*fInterrupt)(int) = nullptr;
    void (*fQuit)(int) = nullptr;
};

#endif
