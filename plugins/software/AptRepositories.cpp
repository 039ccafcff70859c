#include <algorithm>

#include "Fields.h"
#include "RepositoryFiles.h"
#include "Text.h"

namespace {

/// What apt is told of one address and one suite.
struct TEntry {
    std::string_view type, url, suite;
    std::vector<std::string_view> components;
    std::string_view signedBy, trusted;
    bool isEnabled = true;
};

void Add(const TEntry& entry, const std::string& file, TRepositories& repositories) {
    if (entry.type != "deb" && entry.type != "deb-src") return;
    const std::string url = WithoutSecrets(entry.url), suite(entry.suite);
    const bool hasSources = entry.type == "deb-src";
    TRepository repository = MakeRepository(eDeb, url + ' ' + suite + (hasSources ? " (source)" : ""), file);
    repository.urls = {url};
    repository.distribution = suite;
    repository.components.assign(entry.components.begin(), entry.components.end());
    repository.signedBy = entry.signedBy;
    repository.isEnabled = entry.isEnabled;
    repository.hasSources = hasSources;
    repository.checksSignatures = !ParseFlag(entry.trusted).value_or(false);
    if (repositories.size() < kMostRepositories) repositories.push_back(std::move(repository));
}

// The words of a line; what stands in square brackets is one word, blanks and all.
std::vector<std::string_view> BracketedWords(std::string_view line) {
    std::vector<std::string_view> words;
    for (size_t at = line.find_first_not_of(" \t"); at < line.size(); at = line.find_first_not_of(" \t", at)) {
        const size_t start = at;
        for (bool isInside = false; at < line.size() && (isInside || (line[at] != ' ' && line[at] != '\t')); ++at)
            if (line[at] == '[' || line[at] == ']') isInside = line[at] == '[';
        words.push_back(line.substr(start, at - start));
    }
    return words;
}

// "[arch=amd64 signed-by=/usr/share/keyrings/example.gpg]"
void TakeOptions(std::string_view options, TEntry& entry) {
    for (const std::string_view option : Words(options.substr(1, options.size() - 2))) {
        const size_t equals = std::min(option.find('='), option.size() - 1);
        const std::string_view name = option.substr(0, equals), value = option.substr(equals + 1);
        if (name == "signed-by") entry.signedBy = value;
        if (name == "trusted") entry.trusted = value;
    }
}

// The value of a field with the lines that continue it. The case of its name does not matter.
std::string_view Whole(std::string_view paragraph, const TFields& fields, std::string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const auto& field) {
        return field.first.size() == name.size() && LowerCase(field.first) == LowerCase(name);
    });
    if (found == fields.end()) return {};
    const auto start = static_cast<size_t>(found->second.data() - paragraph.data());
    size_t end = std::min(paragraph.find('\n', start), paragraph.size());
    while (end + 1 < paragraph.size() && (paragraph[end + 1] == ' ' || paragraph[end + 1] == '\t'))
        end = std::min(paragraph.find('\n', end + 1), paragraph.size());
    return Trim(paragraph.substr(start, end - start));
}

// A comment may stand between the lines of a field.
std::string WithoutComments(std::string_view text) {
    std::string plain;
    for (const std::string_view line : Lines(text))
        if (line.empty() || line[0] != '#') plain.append(line).append("\n");
    return plain;
}

void AddParagraph(std::string_view paragraph, const std::string& file, TRepositories& repositories) {
    const TFields fields = ParseFields(paragraph);
    const auto words = [&](const char* name) { return Words(Whole(paragraph, fields, name)); };
    const auto text = [&](const char* name) { return Whole(paragraph, fields, name); };
    TEntry entry;
    entry.components = words("Components");
    // A key may stand in the file itself.
    entry.signedBy = text("Signed-By");
    if (entry.signedBy.find("BEGIN PGP") != std::string_view::npos) entry.signedBy = file;
    entry.trusted = text("Trusted");
    entry.isEnabled = ParseFlag(text("Enabled")).value_or(true);
    for (const std::string_view type : words("Types"))
        for (const std::string_view url : words("URIs"))
            for (const std::string_view suite : words("Suites")) {
                if (repositories.size() == kMostRepositories) return;
                entry.type = type, entry.url = url, entry.suite = suite;
                Add(entry, file, repositories);
            }
}

}  // namespace

TRepositories ParseAptLines(std::string_view text, const std::string& file) {
    TRepositories repositories;
    for (const std::string_view line : Lines(text)) {
        std::vector<std::string_view> words = BracketedWords(Trim(line.substr(0, line.find('#'))));
        TEntry entry;
        if (words.size() > 1 && words[1].size() > 1 && words[1].front() == '[') {
            TakeOptions(words[1], entry);
            words.erase(words.begin() + 1);
        }
        if (words.size() < 3) continue;
        entry.type = words[0], entry.url = words[1], entry.suite = words[2];
        entry.components.assign(words.begin() + 3, words.end());
        Add(entry, file, repositories);
    }
    return repositories;
}

TRepositories ParseAptParagraphs(std::string_view text, const std::string& file) {
    TRepositories repositories;
    const std::string plain = WithoutComments(text);
    for (text = plain; !text.empty();) AddParagraph(TakeParagraph(text), file, repositories);
    return repositories;
}
