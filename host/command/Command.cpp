#include "command/Command.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "base/Locations.h"
#include "base/NearMatches.h"
#include "base/Text.h"
#include "inventory/Inventory.h"
#include "model/ClassNames.h"
#include "model/InstanceChoice.h"
#include "model/Needs.h"
#include "model/SpokenNames.h"

namespace {

std::string CheckSeconds(const std::string& text) {
    char* end = nullptr;
    const bool isPositive = std::strtod(text.c_str(), &end) > 0;
    return isPositive && *end == '\0' ? "" : "'" + text + "' is no number of seconds above 0";
}

struct TSandboxWord {
    const char* word;
    ESandbox sandbox;
};

constexpr TSandboxWord kSandboxWords[] = {
    {"auto", ESandbox::eAuto}, {"require", ESandbox::eRequire}, {"off", ESandbox::eOff}};

const TSandboxWord* FindSandboxWord(const std::string& text) {
    const auto* const found = std::find_if(std::begin(kSandboxWords), std::end(kSandboxWords),
                                           [&](const TSandboxWord& word) { return text == word.word; });
    return found == std::end(kSandboxWords) ? nullptr : found;
}

std::string CheckSandbox(const std::string& text) {
    return FindSandboxWord(text) != nullptr ? "" : "'" + text + "' is none of auto, require, off";
}

std::string CheckGrant(const std::string& text) {
    const std::string need = text.substr(text.rfind(':') + 1);
    if (text.find(':') == std::string::npos) return "'" + text + "' is no PLUGIN:NEED";
    return NeedFor(need) != 0 ? "" : "unknown need '" + need + "'" + DidYouMean(need, NeedWords());
}

// Device files are names of devices, except those that stand for what this process has open.
bool IsDeviceName(const std::string& argument) {
    return StartsWith(argument, "/dev/") && argument != "/dev/stdin" && !StartsWith(argument, "/dev/fd/");
}

bool IsThereAsFile(const std::string& path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

// A file that is not there is told by what files of collections are called, so that a misspelt one is no unknown name.
bool IsFileArgument(const std::string& argument) {
    for (const char* start : {"./", "../", "/dev/fd/"})
        if (StartsWith(argument, start)) return true;
    for (const char* end : {".xml", ".gz"})
        if (EndsWith(argument, end)) return true;
    return argument == "-" || argument == "/dev/stdin" || (!IsDeviceName(argument) && IsThereAsFile(argument));
}

std::string CheckName(const std::string& argument) {
    const bool isOption = StartsWith(argument, "-");
    return argument.empty() || isOption || IsFileArgument(argument) ? "'" + argument + "' is no name" : "";
}

std::string FindSchema(std::string path) {
    if (path.empty()) path = FindDefaultSchema();
    if (path.empty()) throw TCommandError(eExitUsage, "no --schema given, and none found beside the program");
    MakeAbsolute(path);
    return path;
}

// Plugins read below the folder in KYR_SYSTEM_ROOT in place of the machine's root folder. They run in the plugin
// folder, so a relative path would mean another place there.
void MakeSystemRootAbsolute() {
    constexpr const char* kVariable = "KYR_SYSTEM_ROOT";
    const char* const root = std::getenv(kVariable);
    if (root == nullptr || *root == '\0') return;
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(root, error);
    if (error)
        throw TCommandError(eExitNothing, "cannot find the current folder, for KYR_SYSTEM_ROOT: " + error.message());
    setenv(kVariable, path.c_str(), 1);
}

}  // namespace

// The parser must let unknown arguments pass: CommandLine.cpp refuses them, and names similar options.
TCommand::TCommand(CLI::App& app, const std::string& name, const std::string& description, EOptions options)
    : fApp(*app.add_subcommand(name, description)) {
    fApp.allow_extras();
    if (options == EOptions::eNone) return;
    const auto addPath = [this](const char* option, std::string& path, const char* words, const char* type) {
        fApp.add_option(option, path, words)->type_name(type)->check(CheckNotEmpty);
    };
    addPath("--from", fSession.from, "A saved collection in place of this machine", "FILE");
    fApp.add_flag("--json", fJson, "Print JSON");
    fApp.add_option("--plugins", fPlugins,
                    "Folder with a folder for each plugin; may be repeated; 'default' for those used without it")
        ->type_name("DIR")
        ->allow_extra_args(false)
        ->check(CheckNotEmpty);
    addPath("--schema", fSession.schema, "The base document", "FILE");
    addPath("--log", fSession.log.file, "Write a log to this file", "FILE");
    fApp.add_flag("--verbose", fSession.log.verbose, "Tell every step on standard error, and more in the log");
}

void TCommand::ResolvePaths() {
    MakeAbsolute(fSession.from);
    MakeAbsolute(fSession.log.file);
    if (!fSession.from.empty()) return;
    MakeSystemRootAbsolute();
    fSession.plugins = FindPluginFolders(fPlugins);
    fSession.schema = FindSchema(fSession.schema);
}

std::vector<std::string> TCommand::ClassNamesFor(const std::string& start) {
    ResolvePaths();
    const TInventory inventory(fSession);
    return NamesLike(inventory.Container(), start);
}

std::vector<std::string> TCommand::PropertyNamesFor(const std::vector<std::string>& words) {
    ResolvePaths();
    const TInventory inventory(fSession);
    const std::vector<TCIMClass*> named = TInstanceChoice(inventory.Container(), {}, words).Classes();
    return PropertyNamesOf(named.empty() ? SelectAllClasses(inventory.Container()) : named);
}

CLI::Option* TCommand::AddFile() {
    return fApp.add_option("FILE", fSession.from, "A saved collection, as --from; - for standard input")
        ->type_name("")
        ->check(CheckNotEmpty);
}

// The parser gives an argument to the first option whose check takes it.
void TCommand::AddFileAndNames(std::vector<std::string>& names) {
    fApp.validate_positionals();
    AddFile()->check(CheckFile);
    fApp.add_option("NAME", names, "What to print: a class such as disks, or an instance such as sda")
        ->type_name("")
        ->check(CheckName);
}

void TCommand::AddFileAndName(const char* option, std::string& name, const char* words) {
    fApp.validate_positionals();
    AddFile()->check(CheckFile);
    fApp.add_option(option, name, words)->type_name("")->check(CheckName)->required();
}

void TCommand::AddCollecting() {
    fApp.add_option("--timeout", fSession.limits.timeout, "Time for each plugin")
        ->type_name("SECONDS")
        ->check(CheckSeconds)
        ->capture_default_str();
    fApp.add_option("--deadline", fSession.limits.deadline, "Time for all plugins together")
        ->type_name("SECONDS")
        ->check(CheckSeconds);
    fApp.add_flag("--in-process", fSession.inProcess,
                  "Run the plugins in this process, one after another, with no limit of time and no sandbox");
    const auto setSandbox = [this](const std::string& word) { fSession.sandbox = FindSandboxWord(word)->sandbox; };
    fApp.add_option_function<std::string>(
            "--sandbox", setSandbox,
            "Keep each plugin from all but reading: as far as possible, or only run it so, or not")
        ->type_name("auto|require|off")
        ->check(CheckSandbox);
    fApp.add_option("--grant", fSession.grants,
                    "Let a plugin do what its document NEEDS: exec, network, rawio or processes; may be repeated")
        ->type_name("PLUGIN:NEED")
        ->allow_extra_args(false)
        ->check(CheckGrant);
    fApp.add_option("--also", fSession.also,
                    "Collect this class too, which is left out unless it is named, such as updates; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(CheckName);
}

void TCommand::AddPrinting(std::vector<std::string>& classes, TPrintOptions& options) {
    fApp.add_option("--class", classes, "Only this class and its subclasses; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    fApp.add_flag("--raw", options.raw, "Plain values in place of display text; times as in ISO 8601");
    fApp.add_flag("--null", options.null, "Properties without a value too");
    fApp.add_flag("--references", options.references, "Show for each instance what it is tied to");
    fApp.add_flag("--provenance", options.provenance, "Show where values came from, and why others are missing");
    fApp.add_flag("--stable", options.stable, "Leave out what changes by itself, such as times and counters");
    fApp.add_flag("--keys", options.keys, "Keys that only tell the system and the class of an instance, too");
    AddPaging();
}

void TCommand::AddPaging() {
    fApp.add_flag_callback(
        "--no-pager", [this] { fPages = false; }, "Print all at once, and not in $KYR_PAGER, $PAGER or less");
}

void TCommand::SetExamples(const std::string& examples) { fApp.footer(examples + kExitStatusText); }

std::string CheckFile(const std::string& argument) {
    return IsFileArgument(argument) ? "" : "'" + argument + "' is no file";
}

std::string CheckNotEmpty(const std::string& text) { return text.empty() ? "the name is empty" : ""; }

// Without a current folder, as when somebody has deleted it, opening the path tells that nothing is there.
void MakeAbsolute(std::string& path) {
    if (path == "-") return;
    std::error_code error;
    const std::string absolute = std::filesystem::absolute(path, error).string();
    if (!path.empty() && !error) path = absolute;
}
