#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <list>
#include <set>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "check/Allowances.h"
#include "check/Check.h"
#include "check/DocumentRules.h"
#include "check/ReaderTrial.h"
#include "kyr/TOSSpecific.h"
#include "saved/DocumentText.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostBytes = size_t{32} << 20;     // that are checked
constexpr size_t kMostBytesRead = size_t{8} << 20;  // of a plugin's document, by a host
constexpr size_t kMostClasses = 5000;               // the same
constexpr size_t kMostProducts = 50'000'000;        // of classes and what they declare
constexpr size_t kMostNeighbours = 500;

/// Returns false if the reader cannot get it.
bool ReadText(const std::string& path, std::string& text) {
    return ForEachPiece(path, [&text](std::string_view piece) {
        if (text.size() <= kMostBytes) text.append(piece);
    });
}

std::string WhyUnreadable(const std::string& path) {
    if (access(path.c_str(), R_OK) != 0) return std::strerror(errno);
    return "cannot be read to its end: it is damaged, or not what its name says";
}

/// A document that is read before the one that is checked.
struct TNeighbour {
    explicit TNeighbour(const std::string& path) {
        ReadText(path, text);
        TFindings ofNobody;
        markup = ReadMarkup(path, text, ofNobody);
        schema = std::make_unique<TDocumentSchema>(markup);
    }
    std::string text;
    TMarkup markup;
    std::unique_ptr<TDocumentSchema> schema;
};

bool IsOfPlugin(const std::string& path) { return EndsWith(path, TOSSpecific::kSpecificationExtension); }

// The documents in the folders of a plugin folder.
std::set<std::string> DocumentsBelow(const fs::path& plugins) {
    std::set<std::string> documents;
    std::error_code error, ignored;
    for (const fs::directory_entry& folder : fs::directory_iterator(plugins, error))
        for (const fs::directory_entry& file : fs::directory_iterator(folder.path(), ignored))
            if (IsOfPlugin(file.path().string()) && file.is_regular_file(ignored) &&
                file.file_size(ignored) <= kMostBytesRead)
                documents.insert(file.path().string());
    return documents;
}

/// The documents that a host reads beside the one that is checked: first the base document, then those of plugins.
class TNeighbours {
public:
    TNeighbours(const std::string& checked, const TCheckContext& context) {
        fNames.insert(fs::path(checked).filename().string());
        Add(context.schema);
        if (IsOfPlugin(checked)) AddAll(fs::absolute(checked).parent_path().parent_path());
        for (const std::string& folder : context.plugins) AddAll(folder);
    }

    void AddTo(TKnownSchema& known) const {
        for (const TNeighbour& neighbour : fNeighbours) {
            for (const TQualifierDeclaration& declaration : neighbour.schema->qualifiers) known.Add(declaration);
            for (const TClassDeclaration& declaration : neighbour.schema->classes) known.Add(declaration);
        }
    }

    std::vector<std::string> Paths() const {
        std::vector<std::string> paths;
        for (const TNeighbour& neighbour : fNeighbours) paths.push_back(neighbour.markup.file);
        return paths;
    }

private:
    void AddAll(const fs::path& plugins) {
        for (const std::string& document : DocumentsBelow(plugins)) Add(document);
    }

    // Of documents of one name, such as one in the source tree and one that is installed, the first counts.
    void Add(const std::string& path) {
        if (fNeighbours.size() >= kMostNeighbours || fBytes > kMostBytes) return;
        if (!fNames.insert(fs::path(path).filename().string()).second) return;
        fBytes += fNeighbours.emplace_back(path).text.size();
    }

    std::set<std::string> fNames;
    std::list<TNeighbour> fNeighbours;
    size_t fBytes = 0;  // of all of them
};

bool IsBaseDocument(const TDocumentSchema& document) {
    for (const TQualifierDeclaration& declaration : document.qualifiers)
        if (LowerName(declaration.name) == "key") return true;
    return false;
}

// A plugin is not asked for abstract classes.
bool IsEmpty(const TDocumentSchema& document, bool isOfPlugin) {
    const auto isAbstract = [](const TClassDeclaration& cls) { return cls.Is("Abstract"); };
    if (!document.instances.empty() || !document.qualifiers.empty()) return false;
    return isOfPlugin ? std::all_of(document.classes.begin(), document.classes.end(), isAbstract)
                      : document.classes.empty();
}

size_t CountDeclarations(const TDocumentSchema& document) {
    size_t count = 0;
    for (const TClassDeclaration& cls : document.classes) count += 1 + cls.properties.size();
    return count;
}

constexpr const char* kSplit = "split it: kyr reads 8 MiB and 5000 classes at most";

// Returns whether the document is small enough for the rest of the rules.
bool CheckSize(const std::string& path, const std::string& text, const TDocumentSchema& document, TFindings& findings) {
    const size_t classes = document.classes.size(), declarations = CountDeclarations(document);
    const bool isCheckable = classes * declarations <= kMostProducts;
    if (text.size() > kMostBytesRead || classes > kMostClasses || !isCheckable)
        findings.Add("D16", {path},
                     "the document has " + std::to_string(text.size() >> 20) + " MiB, " + std::to_string(classes) +
                         " classes and " + std::to_string(declarations - classes) + " properties" +
                         (isCheckable ? "" : ": too much to check the schema"),
                     kSplit);
    return isCheckable;
}

// The line that the reader names; 0 if none.
size_t LineIn(const std::string& refusal) {
    constexpr std::string_view kWords = "on line ";
    const size_t words = refusal.find(kWords);
    return words == std::string::npos ? 0 : std::strtoul(refusal.c_str() + words + kWords.size(), nullptr, 10);
}

// What it declares, and whether the core's reader takes it.
void CheckMeaning(const TMarkup& markup, const TDocumentSchema& document, const TCheckContext& context,
                  TFindings& findings) {
    TKnownSchema known;
    std::unique_ptr<TNeighbours> neighbours;
    if (!IsBaseDocument(document)) {
        neighbours = std::make_unique<TNeighbours>(markup.file, context);
        neighbours->AddTo(known);
    }
    CheckSchema(markup, document, known, findings);
    CheckValues(markup, document, known, findings);
    if (findings.HasErrorIn(markup.file)) return;
    const std::vector<std::string> others = neighbours ? neighbours->Paths() : std::vector<std::string>();
    const std::string refusal = TryReader(others, markup.file, document.classes.size());
    if (!refusal.empty())
        findings.Add("D17", {markup.file, LineIn(refusal)}, "the reader refuses it: " + refusal, "mend what it names");
}

}  // namespace

void CheckDocument(const std::string& path, const TCheckContext& context, TFindings& findings) {
    if (IsTakenForCompressed(path))
        return findings.Add("D14", {path}, "its path has .gz in it, and it is not compressed: the reader refuses it",
                            "rename the file or its folder");
    std::string text;
    if (!ReadText(path, text)) throw TCommandError(eExitNothing, path + ": " + WhyUnreadable(path));
    // Where the text is cut, anything might look as if it was not closed.
    if (text.size() > kMostBytes)
        return findings.Add("D16", {path}, "the document has more than 32 MiB: too much to check", kSplit);
    const TMarkup markup = ReadMarkup(path, text, findings);
    AddAllowances(markup, findings);
    CheckStructure(markup, findings);
    const TDocumentSchema document(markup);
    if (!CheckSize(path, text, document, findings)) return;
    if (IsEmpty(document, IsOfPlugin(path)) && !findings.HasErrorIn(path))
        findings.Add("D20", {path}, "the document declares no class that can have instances",
                     "declare the classes that the plugin reports, without the qualifier Abstract");
    CheckMeaning(markup, document, context, findings);
}
