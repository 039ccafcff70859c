#include <csignal>

#include "base/Output.h"
#include "command/CommandLine.h"

int main(int argc, char** argv) {
    OpenMissingStandardStreams();
    // Writing to a closed pipe, or beyond the limit of a file's size, then fails like any other write: exit status 4.
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
    return RunCommandLine(argc, argv);
}
