#include <csignal>

#include "base/Output.h"
#include "command/CommandLine.h"

int main(int argc, char** argv) {
    OpenMissingStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // writing to a closed pipe then fails like any other write: exit status 4
    return RunCommandLine(argc, argv);
}
