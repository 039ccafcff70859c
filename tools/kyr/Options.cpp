#include "Options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <filesystem>

#include "Exit.h"
#include "Locations.h"
#include "NearMatches.h"

namespace {

constexpr const char* kVersionText = "kyr " KYRCORE_VERSION;
constexpr const char* kFooter =
    "Exit status: 0 complete, 1 usable but something failed, 2 wrong use,\n"
    "3 nothing could be collected or read, 4 the output could not be written.";

[[noreturn]] void RefuseUse(const CLI::App& app, const std::string& text) {
    const std::string command = app.get_parent() == nullptr ? "kyr" : "kyr " + app.get_name();
    throw TCommandError(eExitUsage, text + " (try '" + command + " --help')");
}

// Anything that is left over is refused here and not by the parser, which would not name the nearest right word.
CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& description, TSessionOptions& session) {
    CLI::App* const command = app.add_subcommand(name, description);
    command->allow_extras();
    command->add_option("--plugins", session.plugins, "Folder with a folder for each plugin")->type_name("DIR");
    command->add_option("--schema", session.schema, "The base document")->type_name("FILE");
    command->add_option("--log", session.log, "Write a log to this file")->type_name("FILE");
    command->add_flag("--verbose", session.verbose, "Tell every step on standard error, and more in the log");
    return command;
}

void AddCommands(CLI::App& app, TOptions& options) {
    CLI::App* const collect = AddCommand(app, "collect", "Ask the plugins and print what they report", options.session);
    collect->add_option("--class", options.classes, "Only this class and its subclasses; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    collect->add_flag("--raw", options.raw, "Plain values in place of display text");
    collect->add_flag("--references", options.references, "Show for each instance what it is tied to");

    CLI::App* const schema = AddCommand(app, "schema", "Print the tree of classes, or one class", options.session);
    schema->add_option("CLASS", options.className, "The class to describe");

    AddCommand(app, "identity", "Print what machine this is", options.session);
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

std::string MakeAbsolute(const std::string& path, const std::string& option) {
    if (path.empty()) throw TCommandError(eExitUsage, "no " + option + " given, and none found beside the program");
    return std::filesystem::absolute(path).string();
}

// Before anything changes the current folder.
void ResolvePaths(TSessionOptions& session) {
    if (session.plugins.empty()) session.plugins = FindDefaultPlugins();
    if (session.schema.empty()) session.schema = FindDefaultSchema();
    session.plugins = MakeAbsolute(session.plugins, "--plugins");
    session.schema = MakeAbsolute(session.schema, "--schema");
    if (!session.log.empty()) session.log = MakeAbsolute(session.log, "--log");
}

TOptions::ECommand CommandNamed(const std::string& name) {
    if (name == "collect") return TOptions::eCollect;
    return name == "schema" ? TOptions::eSchema : TOptions::eIdentity;
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
    options.command = CommandNamed(commands.front()->get_name());
    ResolvePaths(options.session);
    return options;
}
