#include <map>
#include <set>

#include "RepositoryFiles.h"

namespace {

/// A folder of configuration files, and how those with the ending are read.
struct TFolder {
    const char* path;
    const char* ending;
    TRepositories (*parse)(std::string_view text, const std::string& file);
};

constexpr const char* kAptFile = "/etc/apt/sources.list";
constexpr const char* kApkFile = "/etc/apk/repositories";
constexpr const char* kPacmanFile = "/etc/pacman.conf";
constexpr TFolder kFolders[] = {{"/etc/apt/sources.list.d", ".list", ParseAptLines},
                                {"/etc/apt/sources.list.d", ".sources", ParseAptParagraphs},
                                {"/etc/apk/repositories.d", ".list", ParseApkRepositories},
                                {"/etc/yum.repos.d", ".repo", ParseYumRepositories},
                                {"/etc/zypp/repos.d", ".repo", ParseYumRepositories}};

/// Collects what single files say.
class TRepositoryReader {
public:
    explicit TRepositoryReader(const TSystemRoot& root) : fRoot(root) {}

    // Every machine has the folder, even if no package manager is configured.
    void CheckFolder(const char* path) {
        if (const TListing listing = ListingOf(NeverEmpty(fRoot.List(path))); !listing)
            fFound.missing.push_back(listing);
    }

    void AddFile(const std::string& path, TRepositories (*parse)(std::string_view, const std::string&)) {
        const TFact<std::string> text = fRoot.ReadFile(path);
        fFound.NoteUnreadable(ListingOf(text));
        for (TRepository& repository : parse(text.ValueOr(""), path)) fFound.items.push_back(std::move(repository));
    }

    void AddFolder(const TFolder& folder) {
        const TFact<std::vector<std::string>> names = fRoot.List(folder.path);
        fFound.NoteUnreadable(ListingOf(names));
        for (const std::string& name : names.ValueOr({}))
            if (EndsWith(name, folder.ending) && name.front() != '.')
                AddFile(std::string(folder.path) + '/' + name, folder.parse);
    }

    // The mirrors of a repository usually stand in a file of their own.
    void AddPacman() {
        const TFact<std::string> text = fRoot.ReadFile(kPacmanFile);
        fFound.NoteUnreadable(ListingOf(text));
        const auto include = [this](const std::string& path) {
            const TFact<std::string> file = fRoot.ReadFile(path);
            fFound.NoteUnreadable(ListingOf(file));
            return file.ValueOr("");
        };
        for (TRepository& repository : ParsePacmanRepositories(text.ValueOr(""), kPacmanFile, include))
            fFound.items.push_back(std::move(repository));
    }

    TFound<TRepository> Take() { return std::move(fFound); }

private:
    const TSystemRoot& fRoot;
    TFound<TRepository> fFound;
};

// Nothing keeps two files from configuring one repository.
void MakeUnique(TRepositories& repositories) {
    std::map<std::string, int> counts;
    std::set<std::string> names;
    for (TRepository& repository : repositories) {
        const std::string name = repository.name;
        while (!names.insert(repository.name).second)
            repository.name = name + " #" + std::to_string(++counts[name] + 1);
    }
}

}  // namespace

TFound<TRepository> ReadRepositories(const TSystemRoot& root) {
    TRepositoryReader reader(root);
    reader.CheckFolder("/etc");
    reader.AddFile(kAptFile, ParseAptLines);
    for (const TFolder& folder : kFolders) reader.AddFolder(folder);
    reader.AddFile(kApkFile, ParseApkRepositories);
    reader.AddPacman();
    TFound<TRepository> found = reader.Take();
    MakeUnique(found.items);
    return found;
}
