#include <csignal>
#include <exception>

#include "Exit.h"
#include "command/Assoc.h"
#include "command/Collect.h"
#include "command/Identity.h"
#include "command/Options.h"
#include "command/Schema.h"
#include "command/Show.h"
#include "text/Output.h"

namespace {

EExit RunCommand(const TOptions& options, TOutput& output) {
    switch (options.command) {
        case TOptions::eCollect:
            return RunCollect(options, output);
        case TOptions::eShow:
            return RunShow(options, output);
        case TOptions::eAssoc:
            return RunAssoc(options, output);
        case TOptions::eSchema:
            return RunSchema(options, output);
        case TOptions::eIdentity:
            return RunIdentity(options, output);
        case TOptions::eShowText:
            break;
    }
    output.Write(options.text);
    return eExitComplete;
}

EExit Run(int argc, char** argv) {
    try {
        TOutput output;
        const EExit status = RunCommand(ParseOptions(argc, argv), output);
        output.Flush();
        return status;
    } catch (const TCommandError& e) {
        Complain(e.what());
        return e.fStatus;
    } catch (const std::exception& e) {
        Complain(std::string("unexpected failure: ") + e.what());
        return eExitNothing;
    }
}

}  // namespace

int main(int argc, char** argv) {
    KeepStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a write error like others
    return Run(argc, argv);
}
