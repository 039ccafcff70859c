#include <CLI/App.hpp>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/Locations.h"
#include "base/PluginFolders.h"
#include "base/Text.h"
#include "command/Command.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples =
    "Makes a folder NAME with a plugin that builds, has a test, and is to be changed to what you want to report. The\n"
    "README.md in it tells the steps.\n\n"
    "Example:\n"
    "  kyr new-plugin raid_controller --language c++\n\n";

struct TLanguage {
    const char* word;
    const char* cmakeLanguage;
    const char* extension;
};

constexpr TLanguage kLanguages[] = {{"c", "C", "c"}, {"c++", "CXX", "cpp"}};

const TLanguage* FindLanguage(const std::string& word) {
    const auto* const found = std::find_if(std::begin(kLanguages), std::end(kLanguages),
                                           [&](const TLanguage& language) { return word == language.word; });
    return found == std::end(kLanguages) ? nullptr : found;
}

std::string CheckLanguage(const std::string& word) {
    return FindLanguage(word) != nullptr ? "" : "'" + word + "' is none of c, c++";
}

bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
bool IsNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// "raid-controller" becomes "raid_controller".
std::string NearestName(std::string name) {
    const auto isWrong = [](char c) { return !IsNameCharacter(c); };
    std::replace_if(name.begin(), name.end(), isWrong, '_');
    return !name.empty() && IsLetter(name.front()) ? "; '" + name + "' would do" : "";
}

std::string CheckPluginName(const std::string& name) {
    constexpr size_t kLongest = 64;
    const bool isName = !name.empty() && IsLetter(name.front()) && name.size() <= kLongest &&
                        std::all_of(name.begin(), name.end(), IsNameCharacter);
    if (!isName)
        return "'" + name + "' is no name for a plugin: a letter, and up to 63 letters, digits and '_'" +
               NearestName(name);
    if (name.find("lib") != std::string::npos)
        return "'" + name + "' holds the letters lib, which are taken away from a library's path to find its document";
    return "";
}

// "EX_RaidController" for "raid_controller".
std::string ClassNameFor(const std::string& name) {
    std::string text = "EX_";
    bool isStart = true;
    for (const char c : name) {
        if (c != '_') text += isStart ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        isStart = c == '_';
    }
    return text;
}

std::string ReplaceAll(std::string text, const std::string& placeholder, const std::string& value) {
    for (size_t at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at + value.size()))
        text.replace(at, placeholder.size(), value);
    return text;
}

[[noreturn]] void Fail(EExit status, const std::string& what, const fs::path& path, int error) {
    throw TCommandError(status, what + " '" + path.string() + "': " + std::strerror(error));
}

std::string ReadTemplate(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) Fail(eExitNothing, "cannot read the template", path, errno);
    return text.str();
}

void WriteFile(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << text).flush()) Fail(eExitOutput, "cannot write", path, errno);
}

class TNewPluginCommand : public TCommand {
public:
    explicit TNewPluginCommand(CLI::App& app)
        : TCommand(app, "new-plugin", "Make a folder with a plugin to begin with", EOptions::eNone) {
        SetExamples(kExamples);
        fApp.add_option("NAME", fName, "The plugin's name, and the folder's")
            ->type_name("")
            ->check(CheckPluginName)
            ->required();
        fApp.add_option("--language", fLanguage, "What it is written in")
            ->type_name("c|c++")
            ->check(CheckLanguage)
            ->capture_default_str();
    }

    void ResolvePaths() override {}

    EExit Run(TOutput& output) override {
        RefuseTakenName();
        const fs::path templates = FindTemplates();
        MakeFolder();
        try {
            WriteFiles(templates);
        } catch (const TCommandError&) {
            std::error_code ignored;
            fs::remove_all(fName, ignored);
            throw;
        }
        output.Write("Made " + fName + ", a plugin in " + (fLanguage == "c" ? "C" : "C++") + ". Next:\n\n  cmake -S " +
                     fName + " -B " + fName + "/build && cmake --build " + fName + "/build\n  ctest --test-dir " +
                     fName + "/build\n  kyr show " + ClassNameFor(fName) + " --plugins " + fName + "/build/plugins\n");
        return eExitComplete;
    }

private:
    // It would take the place of the other plugin wherever its folder is searched first.
    void RefuseTakenName() const {
        std::error_code ignored;
        for (const TPluginFolder& folder : FindPluginFolders({}))
            if (const fs::path taken = fs::path(folder.path) / fName; fs::exists(taken, ignored))
                throw TCommandError(eExitUsage, "there is a plugin '" + fName + "' already, in '" + taken.string() +
                                                    "'; choose another name");
    }

    void MakeFolder() const {
        std::error_code error;
        if (fs::create_directory(fName, error)) return;
        if (error && error != std::errc::file_exists) Fail(eExitOutput, "cannot make the folder", fName, error.value());
        throw TCommandError(eExitUsage, "'" + fName + "' is there already; choose another name or move it away");
    }

    void WriteFiles(const fs::path& templates) const {
        const std::string extension = FindLanguage(fLanguage)->extension;
        const std::pair<std::string, std::string> files[] = {{"CMakeLists.txt", "CMakeLists.txt"},
                                                             {"README.md", "README.md"},
                                                             {"properties.xml", fName + ".properties.xml"},
                                                             {"plugin." + extension, fName + "." + extension},
                                                             {"test.cmake", "test.cmake"}};
        for (const auto& [name, target] : files)
            WriteFile(fs::path(fName) / target, Fill(ReadTemplate(templates / (name + ".in"))));
    }

    std::string Fill(std::string text) const {
        const TLanguage& language = *FindLanguage(fLanguage);
        const std::pair<const char*, std::string> values[] = {{"@NAME@", fName},
                                                              {"@CLASS@", ClassNameFor(fName)},
                                                              {"@EXTENSION@", language.extension},
                                                              {"@CMAKE_LANGUAGE@", language.cmakeLanguage}};
        for (const auto& [placeholder, value] : values) text = ReplaceAll(std::move(text), placeholder, value);
        return text;
    }

    std::string fName;
    std::string fLanguage = "c";
};

}  // namespace

std::unique_ptr<TCommand> MakeNewPluginCommand(CLI::App& app) { return std::make_unique<TNewPluginCommand>(app); }
