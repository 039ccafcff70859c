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

/// The text about the exit status at the end of every help.
constexpr const char* kExitStatusText =
    "Exit status: 0 complete, 1 usable but something failed, 2 wrong use,\n"
    "3 nothing could be collected or read, 4 the output could not be written.";

/// One command of kyr, such as "kyr show", with its options. A derived class declares its own options in its
/// constructor.
class TCommand {
public:
    virtual ~TCommand() = default;
    TCommand(const TCommand&) = delete;
    TCommand& operator=(const TCommand&) = delete;

    CLI::App& App() const { return fApp; }
    /// Makes the paths among the options absolute. Called once after parsing, since a session may change the
    /// current folder.
    virtual void ResolvePaths();
    /// Runs the command with the parsed options and returns the exit status. Raises TCommandError.
    virtual EExit Run(TOutput& output) = 0;
    /// The names of classes that a name may be the start of, from the documents of the plugins; none is loaded.
    std::vector<std::string> ClassNamesFor(const std::string& start);
    /// The names of the properties of those classes that are among the words, or of all classes if none is.
    std::vector<std::string> PropertyNamesFor(const std::vector<std::string>& words);

protected:
    /// Whether the options are declared that all commands have which work on a collection.
    enum class EOptions { eOfCollections, eNone };
    TCommand(CLI::App& app, const std::string& name, const std::string& description,
             EOptions options = EOptions::eOfCollections);

    // These declare options that several commands have.

    /// The argument FILE, which means the same as --from.
    CLI::Option* AddFile();
    /// The same, and the arguments NAME: those that cannot be a file.
    void AddFileAndNames(std::vector<std::string>& names);
    /// The same, and one argument that cannot be a file and must be there.
    void AddFileAndName(const char* option, std::string& name, const char* words);
    /// --timeout and the others that say how plugins are run.
    void AddCollecting();
    /// --class and the others that say which instances are printed, and how.
    void AddPrinting(std::vector<std::string>& classes, TPrintOptions& options);
    /// --no-pager
    void AddPaging();
    /// Sets the text that follows the options in the command's help.
    void SetExamples(const std::string& examples);

    CLI::App& fApp;
    TSessionOptions fSession;
    std::vector<std::string> fPlugins;  // folders, or kDefaultPlugins
    bool fJson = false;
    bool fPages = true;  // texts go to a pager
};

using TCommands = std::vector<std::unique_ptr<TCommand>>;

/// A check for options that name a file: refuses an empty name, as a script with an unset variable gives it. Otherwise
/// the command would read this machine, or write to standard output, in place of the file.
std::string CheckNotEmpty(const std::string& text);

/// A check for arguments that may be a file or a name: refuses those that are taken for names.
std::string CheckFile(const std::string& argument);

/// Makes a path absolute, unless it is empty or "-", which stands for a standard stream.
void MakeAbsolute(std::string& path);

// Each of these adds its command to the application, which must outlive the object returned.

/// Prints on one screen what machine this is, what is in it, and what is missing of that.
std::unique_ptr<TCommand> MakeSummaryCommand(CLI::App& app);
/// Asks the plugins, and prints all instances or saves them.
std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& app);
/// Prints the instances of this machine or of a saved collection.
std::unique_ptr<TCommand> MakeShowCommand(CLI::App& app);
/// Prints what the instance named by its object path is associated with.
std::unique_ptr<TCommand> MakeAssocCommand(CLI::App& app);
/// Prints the tree of classes, or one class in full, of this machine or of a saved collection.
std::unique_ptr<TCommand> MakeSchemaCommand(CLI::App& app);
/// Prints the facts that identify the machine, such as its model and serial number.
std::unique_ptr<TCommand> MakeIdentityCommand(CLI::App& app);
/// Prints single values.
std::unique_ptr<TCommand> MakeGetCommand(CLI::App& app);
/// Prints what differs between a saved collection and this machine, or another saved collection.
std::unique_ptr<TCommand> MakeDiffCommand(CLI::App& app);
/// Writes this machine, or saved collections of many, as tables of a data base.
std::unique_ptr<TCommand> MakeExportCommand(CLI::App& app);
/// Tells what is wrong with documents, libraries and saved collections.
std::unique_ptr<TCommand> MakeCheckCommand(CLI::App& app);
/// Makes a folder with a plugin to begin with.
std::unique_ptr<TCommand> MakeNewPluginCommand(CLI::App& app);

#endif
