#include <csignal>
#include <exception>

#include "Collect.h"
#include "Exit.h"
#include "Failures.h"
#include "Identity.h"
#include "Options.h"
#include "Output.h"
#include "Schema.h"

namespace {

EExit RunCommand(const TOptions& options, TOutput& output, TFailures& failures) {
    switch (options.command) {
        case TOptions::eCollect:
            return RunCollect(options, output, failures);
        case TOptions::eSchema:
            return RunSchema(options, output, failures);
        case TOptions::eIdentity:
            return RunIdentity(options, output, failures);
        case TOptions::eShowText:
            break;
    }
    output.Write(options.text);
    return eExitComplete;
}

EExit Run(int argc, char** argv, TFailures& failures) {
    try {
        TOutput output;
        const EExit status = RunCommand(ParseOptions(argc, argv), output, failures);
        output.Flush();
        failures.Print();
        return status;
    } catch (const TCommandError& e) {
        failures.Print();
        Complain(e.what());
        return e.fStatus;
    } catch (const std::exception& e) {
        failures.Print();
        Complain(std::string("unexpected failure: ") + e.what());
        return eExitNothing;
    }
}

}  // namespace

int main(int argc, char** argv) {
    KeepStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a write error like others
    TFailures failures;
    return Run(argc, argv, failures);
}
