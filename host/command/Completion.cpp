#include "command/Completion.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <iterator>
#include <set>

#include "base/PluginFolders.h"
#include "base/Text.h"
#include "check/Rules.h"
#include "command/IdentityFacts.h"

namespace {

enum EKind { eNothing, eFiles, ePluginFolders, eClasses, eTables, eProperties, eExpressions, eRules };

/// What may stand in a place: the first row counts that has the command, or none, and the name of the option, or the
/// word that the help has for its value or for the argument.
struct TPlace {
    const char* command;
    const char* name;
    EKind kind;
};

constexpr TPlace kPlaces[] = {
    {"new-plugin", "NAME", eNothing},
    {"check", "PATH", eFiles},
    {"check", "RULE", eRules},
    {"export", "--csv", eTables},
    {"", "--role", eNothing},
    {"", "--result-role", eNothing},
    {"", "--columns", eProperties},
    {"", "EXPR", eExpressions},
    {"", "FILE", eFiles},
    {"", "OLD", eFiles},
    {"", "NEW", eFiles},
    {"", "DIR", ePluginFolders},
    {"", "COLLECTION", eFiles},
    {"", "CLASS", eClasses},
    {"", "NAME", eClasses},
};

using TWords = std::vector<std::string>;

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

EKind KindOf(const std::string& command, const std::string& name, const std::string& word) {
    for (const TPlace& place : kPlaces)
        if ((*place.command == '\0' || command == place.command) && (name == place.name || word == place.name))
            return place.kind;
    return eNothing;
}

/// The arguments of one command as far as they are typed, and what the last one may become.
class TCompletion {
public:
    TCompletion(const TWords& before, TCommand& command, TOutput& output)
        : fBefore(before), fApp(command.App()), fCommand(command), fOutput(output) {}

    void Write(const std::string& last) {
        if (std::find(fBefore.begin(), fBefore.end(), "--") != fBefore.end()) return WriteArguments(last);
        if (const CLI::Option* const option = fBefore.empty() ? nullptr : FindOption(fBefore.back()))
            if (TakesValue(*option)) return WriteValues(*option, last, "");
        const size_t equals = last.find('=');
        if (const CLI::Option* const option =
                equals == std::string::npos ? nullptr : FindOption(last.substr(0, equals)))
            return WriteValues(*option, last.substr(equals + 1), last.substr(0, equals + 1));
        if (StartsWith(last, "-")) return WriteOptions(last);
        WriteArguments(last);
    }

private:
    const CLI::Option* FindOption(const std::string& word) const {
        return StartsWith(word, "-") ? fApp.get_option_no_throw(word) : nullptr;
    }
    void Offer(const std::string& text, const std::string& start, const std::string& words = "") {
        if (StartsWith(text, start)) fOutput.Write(text + "\t" + words + "\n");
    }
    void WriteOptions(const std::string& start) {
        for (const CLI::Option* option : fApp.get_options())
            for (const std::string& name : option->get_lnames()) Offer("--" + name, start, option->get_description());
    }
    void WriteClasses(const std::string& start, const std::string& front) {
        for (const std::string& name : fCommand.ClassNamesFor(start)) Offer(front + name, front + start);
    }
    void WriteProperties(const TWords& words, const std::string& start, const std::string& front) {
        for (const std::string& name : fCommand.PropertyNamesFor(words)) Offer(front + name, front + start);
    }
    // In "Name,Dri" the last name is completed.
    void WriteColumns(const std::string& start, const std::string& front) {
        const size_t last = start.rfind(',') + 1;
        TWords words;
        std::copy_if(fBefore.begin(), fBefore.end(), std::back_inserter(words),
                     [](const std::string& word) { return !StartsWith(word, "-"); });
        WriteProperties(words, start.substr(last), front + start.substr(0, last));
    }
    // "os.Vers", or "os", which a dot follows.
    void WriteExpressions(const std::string& start) {
        const size_t dot = start.rfind('.');
        if (dot != std::string::npos)
            return WriteProperties({start.substr(0, dot)}, start.substr(dot + 1), start.substr(0, dot + 1));
        for (const std::string& name : FactNames()) Offer(name, start);
        for (const std::string& name : fCommand.ClassNamesFor(start)) Offer(name + ".", start);
    }
    void WritePluginFolders(const std::string& start, const std::string& front) {
        Offer(front + kDefaultPlugins, front + start);
        fOutput.Write(":folders\n");
    }
    void WriteKinds(const std::set<EKind>& kinds, const std::string& start, const std::string& front) {
        if (kinds.count(eFiles) != 0) fOutput.Write(":files\n");
        if (kinds.count(ePluginFolders) != 0) WritePluginFolders(start, front);
        if (kinds.count(eClasses) + kinds.count(eTables) != 0) WriteClasses(start, front);
        if (kinds.count(eTables) != 0)
            for (const char* const table : {"class_state", "change"}) Offer(front + table, front + start);
        if (kinds.count(eRules) != 0)
            for (const TRule& rule : AllRules()) Offer(front + rule.id, front + start, rule.title);
        if (kinds.count(eProperties) != 0) WriteColumns(start, front);
        if (kinds.count(eExpressions) != 0) WriteExpressions(start);
    }
    void WriteValues(const CLI::Option& option, const std::string& start, const std::string& front) {
        const std::string words = option.get_type_name();
        WriteKinds({KindOf(fApp.get_name(), option.get_name(), words)}, start, front);
        if (words.find('|') == std::string::npos) return;
        for (size_t from = 0, to = 0; to != std::string::npos; from = to + 1) {
            to = words.find('|', from);
            Offer(front + words.substr(from, to - from), front + start);
        }
    }
    void WriteArguments(const std::string& start) {
        std::set<EKind> kinds;
        for (const CLI::Option* option : fApp.get_options())
            if (option->get_positional()) kinds.insert(KindOf(fApp.get_name(), "", option->get_name(true)));
        WriteKinds(kinds, start, "");
    }

    const TWords& fBefore;
    const CLI::App& fApp;
    TCommand& fCommand;
    TOutput& fOutput;
};

void OfferCommands(const CLI::App& app, const std::string& start, TOutput& output) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (StartsWith(command->get_name(), start))
            output.Write(command->get_name() + "\t" + command->get_description() + "\n");
}

TCommand* FindCommand(const TCommands& commands, const std::string& name) {
    for (const auto& command : commands)
        if (command->App().get_name() == name) return command.get();
    return nullptr;
}

}  // namespace

void WriteCompletions(const CLI::App& app, const TCommands& commands, std::vector<std::string> words, TOutput& output) {
    if (words.empty()) words.emplace_back();
    const std::string last = words.back();
    words.pop_back();
    if (words.empty() && StartsWith(last, "-"))
        for (const char* option : {"--help", "--version"}) output.Write(std::string(option) + "\t\n");
    if (words.empty() || words == TWords{"help"}) return OfferCommands(app, last, output);
    TCommand* const command = FindCommand(commands, words.front());
    words.erase(words.begin());
    if (command != nullptr) TCompletion(words, *command, output).Write(last);
}
