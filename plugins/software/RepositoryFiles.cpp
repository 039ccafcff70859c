#include "RepositoryFiles.h"

#include <algorithm>

#include "Text.h"

namespace {

/// A section "[name]" with its settings "name = value". A line that begins with a blank goes on with the value before.
struct TSection {
    std::string_view name;
    std::vector<std::pair<std::string_view, std::string>> settings;

    /// The first value that a setting of the name has; empty if there is none.
    std::string_view Find(std::string_view wanted) const {
        for (const auto& [setting, value] : settings)
            if (setting == wanted) return value;
        return {};
    }
};

void AddSetting(std::string_view line, TSection& section) {
    const std::string_view plain = Trim(line);
    const size_t equals = std::min(plain.find('='), plain.size());
    if ((line[0] == ' ' || line[0] == '\t') && !section.settings.empty())
        section.settings.back().second += '\n' + std::string(plain);
    else
        section.settings.emplace_back(Trim(plain.substr(0, equals)),
                                      Trim(plain.substr(std::min(equals + 1, plain.size()))));
}

std::vector<TSection> ParseSections(std::string_view text) {
    std::vector<TSection> sections;
    for (const std::string_view line : Lines(text)) {
        const std::string_view plain = Trim(line);
        if (plain.empty() || plain[0] == '#' || plain[0] == ';') continue;
        if (plain.front() == '[' && plain.back() == ']') {
            if (sections.size() == kMostRepositories) break;
            sections.push_back({Trim(plain.substr(1, plain.size() - 2)), {}});
        } else if (!sections.empty()) {
            AddSetting(line, sections.back());
        }
    }
    return sections;
}

std::string Replaced(std::string text, std::string_view variable, std::string_view value) {
    for (size_t at = text.find(variable); at != std::string::npos; at = text.find(variable, at + value.size()))
        text.replace(at, variable.size(), value);
    return text;
}

// pacman checks signatures of packages unless it is told never to. "DatabaseNever" is about the list of packages.
std::optional<bool> ChecksSignatures(std::string_view level) {
    if (level.empty()) return std::nullopt;
    const std::vector<std::string_view> words = Words(level);
    return std::none_of(words.begin(), words.end(),
                        [](std::string_view word) { return word == "Never" || word == "PackageNever"; });
}

// dnf config-manager makes both of the address that it is given, user and password included.
std::string NameOf(const TSection& section) { return std::string(section.name.substr(section.name.rfind('@') + 1)); }
std::string TitleOf(const TSection& section) {
    const std::string_view title = section.Find("name");
    return title.find("://") == std::string_view::npos ? std::string(title) : WithoutSecrets(title);
}

/// The servers of a section, its own and those of the files that it includes.
std::vector<std::string> ServersOf(const TSection& section,
                                   const std::function<std::string(const std::string&)>& include) {
    std::vector<std::string> servers;
    const auto add = [&](std::string_view setting, const std::string& value) {
        if (setting == "Server" && servers.size() < kMostRepositories)
            servers.push_back(WithoutSecrets(Replaced(value, "$repo", section.name)));
    };
    for (const auto& [setting, value] : section.settings) {
        add(setting, value);
        if (setting != "Include") continue;
        const std::string text = "[included]\n" + include(value);
        for (const TSection& included : ParseSections(text))
            for (const auto& [inner, server] : included.settings) add(inner, server);
    }
    return servers;
}

}  // namespace

std::optional<bool> ParseFlag(std::string_view text) {
    const std::string word = LowerCase(text);
    for (const char* yes : {"1", "yes", "true", "on", "enable", "with"})
        if (word == yes) return true;
    for (const char* no : {"0", "no", "false", "off", "disable", "without"})
        if (word == no) return false;
    return std::nullopt;
}

TRepository MakeRepository(EPackageFormat format, const std::string& name, const std::string& file) {
    TRepository repository;
    repository.format = format;
    repository.name = name;
    repository.file = file;
    return repository;
}

TRepositories ParseYumRepositories(std::string_view text, const std::string& file) {
    TRepositories repositories;
    for (const TSection& section : ParseSections(text)) {
        if (section.name.empty() || section.name == "main") continue;
        TRepository repository = MakeRepository(eRpm, NameOf(section), file);
        repository.title = TitleOf(section);
        for (const char* setting : {"baseurl", "mirrorlist", "metalink"})
            for (const std::string_view url : Words(section.Find(setting)))
                if (const size_t end = url.find_last_not_of(','); end != std::string_view::npos)
                    repository.urls.push_back(WithoutSecrets(url.substr(0, end + 1)));
        repository.isEnabled = ParseFlag(section.Find("enabled")).value_or(true);
        repository.checksSignatures = ParseFlag(section.Find("gpgcheck"));
        if (const auto keys = Words(section.Find("gpgkey")); !keys.empty())
            repository.signedBy = WithoutSecrets(keys.front());
        repositories.push_back(std::move(repository));
    }
    return repositories;
}

// "@edge https://dl.example.org/alpine/edge/main": packages of it are installed by name and tag.
TRepositories ParseApkRepositories(std::string_view text, const std::string& file) {
    TRepositories repositories;
    for (const std::string_view line : Lines(text)) {
        const std::vector<std::string_view> words = Words(line);
        if (words.empty() || words[0][0] == '#' || repositories.size() == kMostRepositories) continue;
        const std::string url = WithoutSecrets(words.back());
        repositories.push_back(MakeRepository(eApk, url, file));
        repositories.back().urls = {url};
    }
    return repositories;
}

TRepositories ParsePacmanRepositories(std::string_view text, const std::string& file,
                                      const std::function<std::string(const std::string&)>& include) {
    TRepositories repositories;
    std::optional<bool> common;
    for (const TSection& section : ParseSections(text)) {
        const std::optional<bool> checks = ChecksSignatures(section.Find("SigLevel"));
        if (section.name == "options") {
            common = checks;
            continue;
        }
        TRepository repository = MakeRepository(ePacman, std::string(section.name), file);
        repository.urls = ServersOf(section, include);
        repository.checksSignatures = checks ? checks : common;
        repositories.push_back(std::move(repository));
    }
    return repositories;
}
