#include "command/Completion.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <set>

#include "base/Text.h"

namespace {

enum EKind { eNothing, eFiles, eFolders, eClasses };

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
    {"", "--role", eNothing},
    {"", "--result-role", eNothing},
    {"", "FILE", eFiles},
    {"", "OLD", eFiles},
    {"", "NEW", eFiles},
    {"", "DIR", eFolders},
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
    TCompletion(const CLI::App& app, TCommand& command, TOutput& output)
        : fApp(app), fCommand(command), fOutput(output) {}

    void Write(const TWords& before, const std::string& last) {
        if (std::find(before.begin(), before.end(), "--") != before.end()) return WriteArguments(last);
        if (const CLI::Option* const option = before.empty() ? nullptr : FindOption(before.back()))
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
    void WriteKinds(const std::set<EKind>& kinds, const std::string& start, const std::string& front) {
        if (kinds.count(eFiles) != 0) fOutput.Write(":files\n");
        if (kinds.count(eFolders) != 0) fOutput.Write(":folders\n");
        if (kinds.count(eClasses) != 0) WriteClasses(start, front);
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
    if (command != nullptr) TCompletion(command->App(), *command, output).Write(words, last);
}
