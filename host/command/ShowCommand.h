#ifndef KYR_HOST_COMMAND_SHOWCOMMAND_H
#define KYR_HOST_COMMAND_SHOWCOMMAND_H

#include <string>
#include <vector>

#include "command/Command.h"

/// The command that prints instances: kyr show, and the base of kyr collect, which prints them unless it saves them.
class TShowCommand : public TCommand {
public:
    TShowCommand(CLI::App& app, const std::string& name, const std::string& description)
        : TCommand(app, name, description) {}

    EExit Run(TOutput& output) override;

protected:
    std::vector<std::string> fClasses;  // printed with their subclasses; empty: all
    TPrintOptions fPrint;
};

#endif
