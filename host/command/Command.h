#ifndef KYR_HOST_COMMAND_COMMAND_H
#define KYR_HOST_COMMAND_COMMAND_H

#include <memory>
#include <string>
#include <vector>

#include "base/ExitStatus.h"
#include "base/Output.h"
#include "inventory/SessionOptions.h"
#include "render/InstanceText.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// What the help says of the exit status.
constexpr const char* kExitStatusText =
    "Exit status: 0 complete, 1 usable but something failed, 2 wrong use,\n"
    "3 nothing could be collected or read, 4 the output could not be written.";

/// One command of kyr, with its options. A derived class declares its own options when it is constructed.
class TCommand {
public:
    virtual ~TCommand() = default;
    TCommand(const TCommand&) = delete;
    TCommand& operator=(const TCommand&) = delete;

    CLI::App& App() const { return fApp; }
    /// To be called once the options are parsed: makes their paths absolute, before anything changes the current
    /// folder.
    virtual void ResolvePaths();
    /// Raises TCommandError.
    virtual EExit Run(TOutput& output) = 0;

protected:
    /// Declares the options that all commands have.
    TCommand(CLI::App& app, const std::string& name, const std::string& description);

    // Declare options that several commands have.
    CLI::Option* AddFile();
    void AddCollecting();
    void AddPrinting(std::vector<std::string>& classes, TPrintOptions& options);
    /// The text behind the options in the command's help.
    void SetExamples(const std::string& examples);

    CLI::App& fApp;
    TSessionOptions fSession;
    bool fJson = false;
};

/// For an option's check: refuses the empty name that an unset variable of a script gives. It must not mean this
/// machine, or standard output.
std::string CheckNotEmpty(const std::string& text);

/// Makes a path absolute, unless it is empty.
void MakeAbsolute(std::string& path);

// Each declares its command to the application, which must live longer.

/// Asks the plugins, and prints all instances or saves them.
std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& app);
/// Prints the instances of this machine or of a saved collection.
std::unique_ptr<TCommand> MakeShowCommand(CLI::App& app);
/// Prints what the instance named by its object path is associated with.
std::unique_ptr<TCommand> MakeAssocCommand(CLI::App& app);
/// Prints the tree of classes, or one class in full, of this machine or of a saved collection.
std::unique_ptr<TCommand> MakeSchemaCommand(CLI::App& app);
/// Prints what a report asks about the machine.
std::unique_ptr<TCommand> MakeIdentityCommand(CLI::App& app);

#endif
