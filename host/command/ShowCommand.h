#ifndef KYR_HOST_COMMAND_SHOWCOMMAND_H
#define KYR_HOST_COMMAND_SHOWCOMMAND_H

#include <string>
#include <vector>

#include "command/Command.h"
#include "model/InstanceChoice.h"
#include "render/InstanceTable.h"

class TInventory;

/// The command that prints instances: kyr show, and the base of kyr collect, which prints them unless it saves them.
class TShowCommand : public TCommand {
public:
    TShowCommand(CLI::App& app, const std::string& name, const std::string& description)
        : TCommand(app, name, description) {}

    EExit Run(TOutput& output) override;

protected:
    /// What the names choose. To be called before anything is collected.
    TInstanceChoice Choose(TInventory& inventory) const;

    /// Returns whether there was any instance.
    bool Print(const TContainer& container, const TInstanceChoice& choice, TOutput& output) const;
    bool PrintAsTable(const TInstanceChoice& choice, TOutput& output) const;
    /// Tells on standard error which of the names nothing was printed for.
    static void TellOfNone(const TInstanceChoice& choice, bool any);

    std::vector<std::string> fClasses;  // the values of --class
    std::vector<std::string> fNames;    // the arguments that are no files
    TPrintOptions fPrint;
    /// --columns, --table and --csv
    void AddTables();

    TTableOptions fTableOptions;
    bool fTable = false;  // a table is wanted
};

#endif
