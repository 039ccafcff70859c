#include <csignal>

#include "base/Output.h"
#include "command/CommandLine.h"

int main(int argc, char** argv) {
    OpenMissingStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a write error like others
    return RunCommandLine(argc, argv);
}
