#include "command/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <exception>
#include <utility>

#include "base/NearMatches.h"
#include "command/Command.h"
#include "command/Completion.h"
#include "command/Manual.h"

namespace {

constexpr const char* kVersionText = "kyr " KYRCORE_VERSION;

[[noreturn]] void RefuseUse(const CLI::App& app, const std::string& text) {
    const std::string command = app.get_parent() == nullptr ? "kyr" : "kyr " + app.get_name();
    throw TCommandError(eExitUsage, text + " (try '" + command + " --help')");
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

void RefuseUnknownArgument(const CLI::App& app, const std::string& word) {
    if (word.size() > 1 && word[0] == '-') {
        const std::string option = word.substr(0, word.find('='));
        RefuseUse(app, "unknown option '" + option + "'" + DidYouMean(option, OptionNames(app)));
    }
    if (app.get_parent() == nullptr) {
        const std::string near = DidYouMean(word, CommandNames(app));
        RefuseUse(app, "unknown command '" + word + "'" +
                           (near.empty() ? "; a file or a thing is printed by: kyr show " + word : near));
    }
    RefuseUse(app, "unexpected argument '" + word + "'");
}

// The parser leaves "--" among what it does not know, though it obeys it.
void RefuseUnknownArguments(const CLI::App& app) {
    for (const std::string& word : app.remaining())
        if (word != "--") RefuseUnknownArgument(app, word);
}

/// An option that cannot be used together with others, because one of them would have no effect.
struct TConflict {
    const char* option;
    std::vector<const char*> others;
    std::string why = {};           // added to the message
    const char* command = nullptr;  // of this command only
};

const std::vector<const char*> kOfCollecting = {"--timeout", "--deadline", "--in-process", "--sandbox",
                                                "--grant",   "--also",     "--plugins",    "--schema"};
const std::string kNothingIsCollected = ": no plugin is asked for a saved collection";

const std::vector<const char*> kNoTable = {"--json", "--null", "--references", "--provenance", "--keys", "--tree"};

const TConflict kConflicts[] = {
    {"--from", {"FILE", "NEW"}},
    {"--from", kOfCollecting, kNothingIsCollected},
    {"FILE", kOfCollecting, kNothingIsCollected},
    {"NEW", kOfCollecting, kNothingIsCollected},
    {"COLLECTION", kOfCollecting, kNothingIsCollected},
    {"--sqlite", {"--postgres", "--jsonl", "--csv", "--output"}},
    {"--postgres", {"--jsonl", "--csv"}},
    {"--jsonl", {"--csv"}},
    {"--cyclonedx", {"--sqlite", "--postgres", "--jsonl", "--csv", "--class", "--keep-runs"}},
    {"--keep-runs", {"--jsonl", "--csv"}, ": only a data base keeps runs"},
    {"--csv", {"--class"}, "", "export"},
    {"--in-process", {"--sandbox", "--grant"}, ": no plugin has a process of its own"},
    {"--tree", {"--json", "--raw", "--null", "--references", "--provenance"}},
    {"--output", {"--columns", "--table", "--csv"}, "", "collect"},
    {"--output", {"--json", "--raw", "--null", "--references", "--provenance"}},
    {"--quiet", {"--json"}},
    {"--json-schema", {"--json", "CLASS"}},
    {"--columns", kNoTable},
    {"--table", kNoTable},
    {"--csv", kNoTable},
    {"--table", {"--columns"}, ": --columns alone prints a table"},
    {"--sarif", {"--json"}},
    {"--rules", {"PATH", "--explain", "--json", "--sarif"}},
    {"--explain", {"PATH", "--json", "--sarif"}},
    {"--deep", {"--json", "--assoc-class", "--result-class", "--role", "--result-role"}},
};

bool IsGiven(const CLI::App& command, const char* name) {
    const CLI::Option* const option = command.get_option_no_throw(name);
    return option != nullptr && option->count() > 0;
}

void RefuseConflicts(const CLI::App& command) {
    const auto isOfCommand = [&command](const TConflict& conflict) {
        return conflict.command == nullptr || command.get_name() == conflict.command;
    };
    for (const TConflict& conflict : kConflicts)
        for (const char* other : conflict.others)
            if (isOfCommand(conflict) && IsGiven(command, conflict.option) && IsGiven(command, other))
                RefuseUse(command,
                          std::string(conflict.option) + " and " + other + " do not go together" + conflict.why);
}

TCommands MakeCommands(CLI::App& app) {
    TCommands commands;
    for (const auto make : {MakeSummaryCommand, MakeCollectCommand, MakeShowCommand, MakeAssocCommand,
                            MakeSchemaCommand, MakeIdentityCommand, MakeGetCommand, MakeDiffCommand, MakeExportCommand,
                            MakeCheckCommand, MakeNewPluginCommand}) {
        commands.push_back(make(app));
        commands.back()->App().set_version_flag("-V,--version", kVersionText);
    }
    app.add_subcommand("help", "Print this help, or that of the command named behind it");
    return commands;
}

// In the order of the command line, without the program. None at all stand for "summary". "help" is written as the
// option of the command that it names.
std::vector<std::string> ArgumentsFor(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + std::max(argc, 1));
    if (arguments.empty()) return {"summary"};
    if (arguments.front() != "help") return arguments;
    arguments.erase(arguments.begin());
    const std::vector<std::string> known = CommandNames(app);
    if (!arguments.empty() && std::find(known.begin(), known.end(), arguments.front()) == known.end())
        RefuseUnknownArgument(app, arguments.front());
    arguments.emplace_back("--help");
    return arguments;
}

void Parse(CLI::App& app, std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the end
    app.parse(std::move(arguments));
}

// The command that the arguments name, after a check that nothing among the arguments would be ignored.
TCommand& GetGivenCommand(const CLI::App& app, const TCommands& commands) {
    RefuseUnknownArguments(app);
    const std::vector<CLI::App*> given = app.get_subcommands();
    if (given.empty()) RefuseUse(app, "no command given");
    if (given.size() > 1) RefuseUse(app, "more than one command given");
    RefuseUnknownArguments(*given.front());
    RefuseConflicts(*given.front());
    for (const auto& command : commands)
        if (&command->App() == given.front()) return *command;
    throw std::logic_error("command without an object");
}

EExit Print(std::string text, TOutput& output) {
    if (text.empty() || text.back() != '\n') text += '\n';
    output.Write(text);
    return eExitComplete;
}

// What the build and the shells call, and no help tells of: "__manual FOLDER DATE" and "__complete WORD...".
bool RunHidden(const CLI::App& app, const TCommands& commands, const std::vector<std::string>& words, TOutput& output) {
    if (words.size() == 3 && words[0] == "__manual")
        WriteManual(app, words[1], words[2]);
    else if (!words.empty() && words[0] == "__complete")
        WriteCompletions(app, commands, {words.begin() + 1, words.end()}, output);
    else
        return false;
    return true;
}

EExit Run(int argc, char** argv, TOutput& output) {
    CLI::App app("Tells what this machine is, as its plugins see it.", "kyr");
    app.set_version_flag("-V,--version", kVersionText);
    app.footer(kExitStatusText);
    app.allow_extras();
    const TCommands commands = MakeCommands(app);
    if (RunHidden(app, commands, {argv + std::min(argc, 1), argv + argc}, output)) return eExitComplete;
    try {
        Parse(app, ArgumentsFor(app, argc, argv));
    } catch (const CLI::CallForHelp&) {
        return Print(app.help(), output);
    } catch (const CLI::CallForVersion&) {
        return Print(kVersionText, output);
    } catch (const CLI::ParseError& e) {
        RefuseUse(app.get_subcommands().empty() ? app : *app.get_subcommands().front(), e.what());
    }
    TCommand& command = GetGivenCommand(app, commands);
    command.ResolvePaths();
    return command.Run(output);
}

}  // namespace

EExit RunCommandLine(int argc, char** argv) {
    try {
        TOutput output;
        const EExit status = Run(argc, argv, output);
        output.Flush();
        return status;
    } catch (const TCommandError& e) {
        if (*e.what() != '\0') PrintDiagnostic(e.what());
        return e.fStatus;
    } catch (const std::exception& e) {
        PrintDiagnostic(std::string("unexpected failure: ") + e.what());
        return eExitNothing;
    }
}
