#include "command/Options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "Exit.h"
#include "command/Locations.h"
#include "command/NearMatches.h"

namespace {

constexpr const char* kVersionText = "kyr " KYRCORE_VERSION;
constexpr const char* kFooter =
    "Exit status: 0 complete, 1 usable but something failed, 2 wrong use,\n"
    "3 nothing could be collected or read, 4 the output could not be written.";

constexpr const char* kCollectExamples =
    "Examples:\n"
    "  kyr collect -o machine.xml.gz\n"
    "  kyr collect machine.xml.gz --class CIM_DiskDrive -o disks.xml\n\n";
constexpr const char* kShowExamples =
    "Examples:\n"
    "  kyr show --tree\n"
    "  kyr show machine.xml.gz --class CIM_Processor --provenance\n\n";
constexpr const char* kAssocExamples =
    "Some of the keys are enough, if they name one instance. Quotes and blanks need quotes of the shell.\n\n"
    "Examples:\n"
    "  kyr assoc CIM_ComputerSystem --result-class CIM_OperatingSystem\n"
    "  kyr assoc 'MOLTA_Mount.Name=\"/\"' machine.xml.gz\n\n";
constexpr const char* kSchemaExamples =
    "Examples:\n"
    "  kyr schema CIM_ComputerSystem\n"
    "  kyr schema machine.xml.gz --json-schema\n\n";

[[noreturn]] void RefuseUse(const CLI::App& app, const std::string& text) {
    const std::string command = app.get_parent() == nullptr ? "kyr" : "kyr " + app.get_name();
    throw TCommandError(eExitUsage, text + " (try '" + command + " --help')");
}

std::string CheckSeconds(const std::string& text) {
    char* end = nullptr;
    const bool isPositive = std::strtod(text.c_str(), &end) > 0;
    return isPositive && *end == '\0' ? "" : "'" + text + "' is no number of seconds above 0";
}

// As an unset variable of a script gives it: it must not mean this machine, or standard output.
std::string CheckNotEmpty(const std::string& text) { return text.empty() ? "the name is empty" : ""; }

// No class has such a name.
std::string CheckFileName(const std::string& text) {
    return text.find_first_of("./") == std::string::npos ? "'" + text + "' is no file" : "";
}

CLI::Option* AddFile(CLI::App& command, TSessionOptions& session) {
    return command.add_option("FILE", session.from, "A saved collection, as --from")
        ->type_name("")
        ->check(CheckNotEmpty);
}

// Anything that is left over is refused here and not by the parser, which would not name the nearest right word.
CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& description, TOptions& options) {
    TSessionOptions& session = options.session;
    CLI::App* const command = app.add_subcommand(name, description);
    command->allow_extras();
    const auto addPath = [command](const char* option, std::string& path, const char* words, const char* type) {
        command->add_option(option, path, words)->type_name(type)->check(CheckNotEmpty);
    };
    addPath("--from", session.from, "A saved collection in place of this machine", "FILE");
    command->add_flag("--json", options.json, "Print JSON");
    addPath("--plugins", session.plugins, "Folder with a folder for each plugin", "DIR");
    addPath("--schema", session.schema, "The base document", "FILE");
    addPath("--log", session.log, "Write a log to this file", "FILE");
    command->add_flag("--verbose", session.verbose, "Tell every step on standard error, and more in the log");
    return command;
}

void AddCollecting(CLI::App& command, TSessionOptions& session) {
    command.add_option("--timeout", session.timeout, "Time for each plugin")
        ->type_name("SECONDS")
        ->check(CheckSeconds)
        ->capture_default_str();
    command.add_option("--deadline", session.deadline, "Time for all plugins together")
        ->type_name("SECONDS")
        ->check(CheckSeconds);
    command.add_flag("--in-process", session.inProcess,
                     "Run the plugins in this process, one after another, with no limit of time");
}

void AddPrinting(CLI::App& command, TOptions& options) {
    command.add_option("--class", options.classes, "Only this class and its subclasses; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_flag("--raw", options.raw, "Plain values in place of display text");
    command.add_flag("--null", options.null, "Properties without a value too");
    command.add_flag("--references", options.references, "Show for each instance what it is tied to");
    command.add_flag("--provenance", options.provenance, "Show where values came from, and why others are missing");
    command.add_flag("--stable", options.stable, "Leave out what changes by itself, such as times and counters");
}

void AddCollect(CLI::App& app, TOptions& options) {
    CLI::App* const collect = AddCommand(app, "collect", "Ask the plugins and print or save what they report", options);
    collect->footer(std::string(kCollectExamples) + kFooter);
    AddFile(*collect, options.session);
    collect->add_option("-o,--output", options.output, "Save the collection: FILE.xml or FILE.xml.gz")
        ->type_name("FILE")
        ->check(CheckNotEmpty);
    AddPrinting(*collect, options);
    AddCollecting(*collect, options.session);
}

void AddShow(CLI::App& app, TOptions& options) {
    CLI::App* const show = AddCommand(app, "show", "Print a saved collection, or this machine's", options);
    show->footer(std::string(kShowExamples) + kFooter);
    AddFile(*show, options.session);
    AddPrinting(*show, options);
    show->add_flag("--tree", options.tree, "Each instance below the one that it belongs to");
    AddCollecting(*show, options.session);
}

void AddAssoc(CLI::App& app, TOptions& options) {
    CLI::App* const assoc = AddCommand(app, "assoc", "Print what an instance is tied to", options);
    assoc->footer(std::string(kAssocExamples) + kFooter);
    assoc->add_option("PATH", options.path, "The instance: Class.Key=\"value\",Other=\"value\"")
        ->type_name("")
        ->required();
    AddFile(*assoc, options.session);
    assoc->add_option("--assoc-class", options.assocClass, "Only ties of this class")->type_name("NAME");
    assoc->add_option("--result-class", options.resultClass, "Only results of this class")->type_name("NAME");
    assoc->add_option("--role", options.role, "Only ties in which the instance has this role")->type_name("NAME");
    assoc->add_option("--result-role", options.resultRole, "Only results in this role")->type_name("NAME");
    AddCollecting(*assoc, options.session);
}

void AddCommands(CLI::App& app, TOptions& options) {
    AddCollect(app, options);
    AddShow(app, options);
    AddAssoc(app, options);

    CLI::App* const schema = AddCommand(app, "schema", "Print the tree of classes, or one class", options);
    schema->footer(std::string(kSchemaExamples) + kFooter);
    schema->validate_positionals();
    AddFile(*schema, options.session)->check(CheckFileName);
    schema->add_option("CLASS", options.className, "The class to describe")->type_name("")->check(CheckNotEmpty);
    schema->add_flag("--json-schema", options.jsonSchema, "Print a JSON Schema of all that --json prints");

    CLI::App* const identity = AddCommand(app, "identity", "Print what machine this is", options);
    AddFile(*identity, options.session);
    AddCollecting(*identity, options.session);
}

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

std::vector<std::string> CommandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

void RefuseLeftOver(const CLI::App& app, const std::string& word) {
    if (word.size() > 1 && word[0] == '-') {
        const std::string option = word.substr(0, word.find('='));
        RefuseUse(app, "unknown option '" + option + "'" + DidYouMean(option, OptionNames(app)));
    }
    if (app.get_parent() == nullptr)
        RefuseUse(app, "unknown command '" + word + "'" + DidYouMean(word, CommandNames(app)));
    RefuseUse(app, "unexpected argument '" + word + "'");
}

void RefuseLeftOvers(const CLI::App& app) {
    const std::vector<std::string> words = app.remaining();
    if (!words.empty()) RefuseLeftOver(app, words.front());
}

/// Options that together make no sense, or of which one would be lost.
struct TRivals {
    const char* option;
    std::vector<const char*> others;
    std::string why = {};
};

const std::vector<const char*> kOfCollecting = {"--timeout", "--deadline", "--in-process", "--plugins", "--schema"};
const std::string kNothingIsCollected = ": no plugin is asked for a saved collection";

const TRivals kRivals[] = {
    {"--from", {"FILE"}},
    {"--from", kOfCollecting, kNothingIsCollected},
    {"FILE", kOfCollecting, kNothingIsCollected},
    {"--tree", {"--json", "--raw", "--null", "--references", "--provenance"}},
    {"--output", {"--json", "--raw", "--null", "--references", "--provenance"}},
    {"--json-schema", {"--json", "CLASS"}},
};

bool IsGiven(const CLI::App& command, const char* name) {
    const CLI::Option* const option = command.get_option_no_throw(name);
    return option != nullptr && option->count() > 0;
}

void RefuseRivals(const CLI::App& command) {
    for (const TRivals& rivals : kRivals)
        for (const char* other : rivals.others)
            if (IsGiven(command, rivals.option) && IsGiven(command, other))
                RefuseUse(command, std::string(rivals.option) + " and " + other + " do not go together" + rivals.why);
}

std::string MakeAbsolute(const std::string& path, const std::string& option) {
    if (path.empty()) throw TCommandError(eExitUsage, "no " + option + " given, and none found beside the program");
    return std::filesystem::absolute(path).string();
}

void MakeAbsoluteIfGiven(std::string& path) {
    if (!path.empty()) path = std::filesystem::absolute(path).string();
}

// The folder that plugins take for the machine.
void MakeSystemRootAbsolute() {
    constexpr const char* kVariable = "KYR_SYSTEM_ROOT";
    const char* const root = std::getenv(kVariable);
    if (root != nullptr && *root != '\0') setenv(kVariable, std::filesystem::absolute(root).c_str(), 1);
}

// Before anything changes the current folder.
void ResolvePaths(TOptions& options) {
    TSessionOptions& session = options.session;
    MakeAbsoluteIfGiven(session.from);
    MakeAbsoluteIfGiven(session.log);
    MakeAbsoluteIfGiven(options.output);
    if (!session.from.empty()) return;
    MakeSystemRootAbsolute();
    if (session.plugins.empty()) session.plugins = FindDefaultPlugins();
    if (session.schema.empty()) session.schema = FindDefaultSchema();
    session.plugins = MakeAbsolute(session.plugins, "--plugins");
    session.schema = MakeAbsolute(session.schema, "--schema");
}

constexpr std::pair<const char*, TOptions::ECommand> kCommands[] = {
    {"collect", TOptions::eCollect}, {"show", TOptions::eShow},         {"assoc", TOptions::eAssoc},
    {"schema", TOptions::eSchema},   {"identity", TOptions::eIdentity},
};

TOptions::ECommand CommandNamed(const std::string& name) {
    for (const auto& [word, command] : kCommands)
        if (name == word) return command;
    return TOptions::eShowText;
}

TOptions ShowText(const std::string& text) {
    TOptions options;
    options.text = text;
    if (text.empty() || text.back() != '\n') options.text += '\n';
    return options;
}

}  // namespace

TOptions ParseOptions(int argc, char** argv) {
    TOptions options;
    CLI::App app("Tells what this machine is, as its plugins see it.", "kyr");
    app.set_version_flag("-V,--version", kVersionText);
    app.footer(kFooter);
    app.allow_extras();
    AddCommands(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return ShowText(app.help());
    } catch (const CLI::CallForVersion&) {
        return ShowText(kVersionText);
    } catch (const CLI::ParseError& e) {
        RefuseUse(app.get_subcommands().empty() ? app : *app.get_subcommands().front(), e.what());
    }
    RefuseLeftOvers(app);
    const std::vector<CLI::App*> commands = app.get_subcommands();
    if (commands.empty()) RefuseUse(app, "no command given");
    if (commands.size() > 1) RefuseUse(app, "more than one command given");
    RefuseLeftOvers(*commands.front());
    RefuseRivals(*commands.front());
    options.command = CommandNamed(commands.front()->get_name());
    ResolvePaths(options);
    return options;
}
