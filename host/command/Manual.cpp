#include "command/Manual.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cctype>
#include <sstream>
#include <vector>

#include "base/OutputFile.h"
#include "base/Text.h"

namespace {

struct TVariable {
    const char* name;
    const char* words;
};

constexpr TVariable kEnvironment[] = {
    {"COLUMNS", "How wide tables and texts may be, in place of the width of the terminal."},
    {"KYR_PAGER", "What texts are handed to on a terminal. Nothing or \"cat\": they are printed at once."},
    {"KYR_PLUGIN_PATH", "Plugin folders, separated by colons, that are searched before the others."},
    {"KYR_SYSTEM_ROOT", "A folder with a copy of another machine's files, which plugins read in place of this one's."},
    {"NO_COLOR", "If it is not empty, nothing is printed in bold."},
    {"PAGER", "The same as KYR_PAGER, if that is not set. Without both, less is used."},
};

constexpr size_t kWidth = 78;  // of a line in the source of a page

constexpr const char* kExamplesHead = "Examples:\n";
constexpr const char* kExitStatusHead = "Exit status: ";

std::vector<std::string> SplitAt(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t end = 0; end != std::string::npos; start = end + separator.size()) {
        end = text.find(separator, start);
        if (end != start && start < text.size()) parts.push_back(text.substr(start, end - start));
    }
    return parts;
}

std::string WithoutFinalStop(std::string text) {
    if (EndsWith(text, ".")) text.pop_back();
    return text;
}

// A hyphen that is copied from a page must be one.
std::string Escaped(const std::string& line) {
    std::string text = StartsWith(line, ".") || StartsWith(line, "'") ? "\\&" : "";
    for (const char c : line) text += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    return text;
}

/// A page in the making.
class TPage {
public:
    TPage(const std::string& name, const std::string& date) {
        std::string title = name;
        for (char& c : title) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        Macro("Dd " + date);
        Macro("Dt " + title + " 1");
        Macro("Os kyr " KYRCORE_VERSION);
    }

    void Macro(const std::string& line) { fText += "." + line + "\n"; }
    void Section(const std::string& title) { Macro("Sh " + title); }
    void Line(const std::string& line) { fText += Escaped(line) + "\n"; }
    // A new sentence is a new line.
    void Words(const std::string& words) {
        for (const std::string& line : SplitAt(words, "\n")) {
            const std::vector<std::string> sentences = SplitAt(line, ". ");
            for (const std::string& sentence : sentences)
                for (const std::string& part : WrapText(sentence + (&sentence == &sentences.back() ? "" : "."), kWidth))
                    Line(part);
        }
    }
    void Item(const std::string& head, const std::string& words) {
        Macro("It " + head);
        Words(words);
    }
    void List(const std::string& width = "Ds") { Macro("Bl -tag -width " + width); }
    void EndList() { Macro("El"); }
    const std::string& Text() const { return fText; }

private:
    std::string fText;
};

void WriteName(TPage& page, const std::string& name, std::string description) {
    description[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(description[0])));
    page.Section("NAME");
    page.Macro("Nm " + name);
    page.Macro("Nd " + WithoutFinalStop(description));
}

/// The text behind the options of a help, by what stands at the head of its paragraphs.
struct TFooter {
    std::vector<std::string> notes;
    std::string examples;
    std::string exitStatus;

    explicit TFooter(const CLI::App& app) {
        for (const std::string& paragraph : SplitAt(app.get_footer(), "\n\n")) Add(paragraph);
    }

private:
    void Add(const std::string& paragraph) {
        if (StartsWith(paragraph, kExamplesHead))
            examples = paragraph.substr(std::string(kExamplesHead).size());
        else if (StartsWith(paragraph, kExitStatusHead))
            exitStatus = paragraph.substr(std::string(kExitStatusHead).size());
        else
            notes.push_back(paragraph);
    }
};

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

std::string ValueOf(const CLI::Option& option) {
    return option.get_type_name().empty() || !TakesValue(option) ? "" : " Ar " + option.get_type_name();
}

std::string HeadOf(const CLI::Option& option) {
    std::string head;
    for (const std::string& name : option.get_snames()) head += " , Fl " + name;
    for (const std::string& name : option.get_lnames()) head += " , Fl -" + name;
    return head.substr(3) + ValueOf(option);
}

std::string WordsOf(const CLI::Option& option) {
    std::string words = WithoutFinalStop(option.get_description()) + ".";
    if (!option.get_default_str().empty()) words += " Without it: " + option.get_default_str() + ".";
    for (const CLI::Option* other : option.get_needs()) words += " Together with " + other->get_name() + ".";
    return words;
}

void WriteOptions(TPage& page, const CLI::App& app) {
    page.Section("OPTIONS");
    page.List();
    for (const CLI::Option* option : app.get_options())
        if (option->nonpositional()) page.Item(HeadOf(*option), WordsOf(*option));
    page.EndList();
}

std::string ArgumentOf(const CLI::Option& option) {
    const bool isRepeated = option.get_items_expected_max() > 1;
    return (option.get_required() ? "Ar " : "Op Ar ") + option.get_name(true) + (isRepeated ? " ..." : "");
}

std::vector<const CLI::Option*> ArgumentsOf(const CLI::App& app) {
    std::vector<const CLI::Option*> arguments;
    for (const CLI::Option* option : app.get_options())
        if (option->get_positional()) arguments.push_back(option);
    return arguments;
}

void WriteDescription(TPage& page, const CLI::App& app, const TFooter& footer) {
    page.Section("DESCRIPTION");
    page.Words(WithoutFinalStop(app.get_description()) + ".");
    const std::vector<const CLI::Option*> arguments = ArgumentsOf(app);
    if (!arguments.empty()) {
        page.List();
        for (const CLI::Option* argument : arguments)
            page.Item("Ar " + argument->get_name(true), WithoutFinalStop(argument->get_description()) + ".");
        page.EndList();
    }
    for (const std::string& note : footer.notes) {
        page.Macro("Pp");
        page.Words(note);
    }
}

bool IsStatus(const std::string& text, size_t at) {
    return std::isdigit(static_cast<unsigned char>(text[at])) != 0 && at + 1 < text.size() && text[at + 1] == ' ';
}

// "0 complete, 1 usable but something failed" has an item for each number.
void WriteExitStatus(TPage& page, std::string text) {
    for (char& c : text)
        if (c == '\n') c = ' ';
    page.Section("EXIT STATUS");
    page.List();
    for (size_t at = 0; at < text.size();) {
        size_t end = text.find(", ", at);
        while (end != std::string::npos && !IsStatus(text, end + 2)) end = text.find(", ", end + 2);
        page.Item(text.substr(at, 1), WithoutFinalStop(text.substr(at + 2, end - at - 2)));
        at = end == std::string::npos ? text.size() : end + 2;
    }
    page.EndList();
}

void WriteExamples(TPage& page, const std::string& examples) {
    if (examples.empty()) return;
    page.Section("EXAMPLES");
    page.Macro("Bd -literal");
    for (const std::string& line : SplitAt(examples, "\n")) page.Line(line.substr(line.find_first_not_of(' ')));
    page.Macro("Ed");
}

void WriteSeeAlso(TPage& page, const std::string& first) {
    page.Section("SEE ALSO");
    page.Macro("Xr " + first + " 1 ,");
    page.Macro("Xr kyr-collection 5 ,");
    page.Macro("Xr kyr-json 5 ,");
    page.Macro("Xr kyr-exit-status 7 ,");
    page.Macro("Xr kyr-plugin 7");
}

std::string PageOf(const CLI::App& command) { return "kyr-" + command.get_name(); }

std::string CommandPage(const CLI::App& command, const std::string& date) {
    const TFooter footer(command);
    TPage page(PageOf(command), date);
    WriteName(page, PageOf(command), command.get_description());
    page.Section("SYNOPSIS");
    page.Macro("Nm kyr Cm " + command.get_name());
    page.Macro("Op Ar options");
    for (const CLI::Option* argument : ArgumentsOf(command)) page.Macro(ArgumentOf(*argument));
    WriteDescription(page, command, footer);
    WriteOptions(page, command);
    WriteExitStatus(page, footer.exitStatus);
    WriteExamples(page, footer.examples);
    WriteSeeAlso(page, "kyr");
    return page.Text();
}

using TCommandApps = std::vector<const CLI::App*>;

// "help" has nothing of its own.
TCommandApps CommandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return command->get_name() != "help"; });
}

void WriteCommands(TPage& page, const TCommandApps& commands) {
    page.Macro("Pp");
    page.Words("Each command has a page of its own:");
    page.List("kyr-new-plugin");
    for (const CLI::App* command : commands)
        page.Item("Xr " + PageOf(*command) + " 1", WithoutFinalStop(command->get_description()) + ".");
    page.EndList();
}

void WriteEnvironment(TPage& page) {
    page.Section("ENVIRONMENT");
    page.List();
    for (const TVariable& variable : kEnvironment) page.Item(std::string("Ev ") + variable.name, variable.words);
    page.EndList();
}

std::string MainPage(const CLI::App& app, const std::string& date) {
    TPage page("kyr", date);
    WriteName(page, "kyr", app.get_description());
    page.Section("SYNOPSIS");
    page.Macro("Nm kyr");
    page.Macro("Op Ar command Op Ar argument ...");
    WriteDescription(page, app, TFooter(app));
    WriteCommands(page, CommandsOf(app));
    WriteOptions(page, app);
    WriteEnvironment(page);
    WriteExitStatus(page, TFooter(app).exitStatus);
    WriteSeeAlso(page, PageOf(*CommandsOf(app).front()));
    return page.Text();
}

void WritePage(const std::string& folder, const std::string& name, const std::string& text) {
    TOutputFile file(folder + "/" + name + ".1", false);
    file.Write(text);
    file.Finish();
}

}  // namespace

void WriteManual(const CLI::App& app, const std::string& folder, const std::string& date) {
    WritePage(folder, "kyr", MainPage(app, date));
    for (const CLI::App* command : CommandsOf(app)) WritePage(folder, PageOf(*command), CommandPage(*command, date));
}
