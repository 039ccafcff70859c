#include "inventory/Libraries.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <vector>

#include "base/CoreLog.h"
#include "base/Memory.h"
#include "base/Output.h"
#include "isolation/PluginContainer.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "saved/DocumentProbe.h"
#include "saved/DocumentScan.h"
#include "saved/DocumentText.h"

namespace fs = std::filesystem;

namespace {

constexpr double kMostSeconds = 10;
constexpr size_t kMostClasses = 5000;
constexpr size_t kMostBytes = size_t{32} << 20;    // in all documents
constexpr size_t kMostParts = 4;                   // one may have a quarter of what is left of them
constexpr size_t kMostMemory = size_t{512} << 20;  // for all documents, of which one gets at most an eighth: 64 MiB
// The documents of the plugins that come with kyr have a quarter of it, so that others can be beside them.
constexpr TScanLimits kPlainlyHarmless = {500, 2'000'000, size_t{128} << 20};

// A document on which the reader never ends may take only a part of the time that all plugins have together.
TProbeLimits ProbeLimits(const TRunLimits& limits) {
    const double seconds = std::min(limits.timeout, kMostSeconds);
    return {limits.deadline > 0 ? std::min(seconds, limits.deadline / 10) : seconds, limits.Latest(),
            std::min(kMostMemory, AddressSpaceLimit() / 2)};
}

TReason Harmful(const std::string& detail) { return ReasonFor(EReason::eDocumentHarmful, detail); }

TReason TooLarge() {
    return ReasonFor(EReason::eDocumentTooLarge, "at most " + std::to_string(kMostBytes / kMostParts >> 20) +
                                                     " MiB and " + std::to_string(kMostClasses) +
                                                     " classes are read, if they take no more than 64 MiB of memory");
}

// Why the document must not be read, as far as its file tells. One that is missing has no reason here: loading the
// plugin reports it.
TReason FindHarmIn(const std::string& document, const fs::file_status& status, size_t mostBytes) {
    std::error_code error;
    if (!fs::is_regular_file(status)) return Harmful("is no file");
    return fs::file_size(document, error) > mostBytes ? TooLarge() : TReason();
}

// The reader would never end.
TReason FindEndlessValueIn(const std::string& document) {
    const size_t line = LineOfEndlessValue(document, ReadDocumentEnds(document));
    if (line == 0) return {};
    return Harmful("has an attribute value in line " + std::to_string(line) + " that is not closed");
}

using THarms = std::map<std::string, TReason>;

// The documents that may be read as far as their files tell, and why others may not.
std::vector<std::string> FindDocuments(const std::list<TPluginLibrary>& libraries, THarms& harms) {
    std::vector<std::string> documents;
    size_t bytesLeft = kMostBytes;
    for (const TPluginLibrary& library : libraries) {
        const std::string document = library.FullDocumentPath();
        std::error_code error;
        const fs::file_status status = fs::status(document, error);
        if (status.type() == fs::file_type::not_found) continue;
        const TReason harm = error ? Harmful("cannot be read: " + error.message())
                                   : FindHarmIn(document, status, bytesLeft / kMostParts);
        if (harm) {
            harms[document] = harm;
            continue;
        }
        bytesLeft -= fs::file_size(document, error);
        documents.push_back(document);
    }
    return documents;
}

// Whether all of them are plainly harmless, and too small to take more memory than they may.
bool AreHarmless(const std::vector<std::string>& documents) {
    constexpr std::uintmax_t kMostBytesScanned = 2 << 20;
    std::uintmax_t bytes = 0;
    TDocumentScan scan;
    for (const std::string& document : documents) {
        std::error_code error;
        bytes += fs::file_size(document, error);
        const auto add = [&scan](std::string_view piece) { scan.Add(piece); };
        if (error || bytes > kMostBytesScanned || !ForEachPiece(document, add)) return false;
        scan.EndDocument();
    }
    return scan.IsHarmless(kPlainlyHarmless);
}

// Adds those that are endless, or that a child process could not read.
void TryDocuments(std::vector<std::string> documents, TContainer& container, const TRunLimits& limits, THarms& harms) {
    const auto isEndless = [&harms](const std::string& document) {
        const TReason harm = FindEndlessValueIn(document);
        if (harm) harms[document] = harm;
        return bool(harm);
    };
    documents.erase(std::remove_if(documents.begin(), documents.end(), isEndless), documents.end());
    const auto read = [&](const std::string& path) {
        if (container.PopulateContainerFromFile(path).size() > kMostClasses) throw TTooLarge();
    };
    const std::vector<TReason> found = ProbeDocuments(documents, read, ProbeLimits(limits));
    for (size_t i = 0; i < documents.size(); ++i)
        if (found[i]) harms[documents[i]] = found[i].code == EReason::eDocumentTooLarge ? TooLarge() : found[i];
}

// The documents that must not be read, each with the reason.
THarms FindHarm(const std::list<TPluginLibrary>& libraries, TContainer& container, const TRunLimits& limits) {
    THarms harms;
    const std::vector<std::string> documents = FindDocuments(libraries, harms);
    if (!AreHarmless(documents)) TryDocuments(documents, container, limits, harms);
    return harms;
}

std::vector<TCIMClass*> Read(const std::string& document, TContainer& container) {
    try {
        return container.PopulateContainerFromFile(document);
    } catch (const TKYRException&) {
        return {};  // loading the plugin reads the document again, and reports the error
    }
}

bool IsSystem(const TPluginLibrary& library) { return library.Declares(TCIMSchemaHelper::kSystemCreationClassName); }

int RankOf(const TPluginLibrary& library) {
    if (library.isBuiltIn) return 0;
    return library.isOwn ? 1 : 2;
}

// A document that is read has the classes that later ones declare too.
std::vector<TPluginLibrary*> InOrderOfReading(std::list<TPluginLibrary>& libraries) {
    std::vector<TPluginLibrary*> order;
    for (TPluginLibrary& library : libraries) order.push_back(&library);
    std::stable_sort(order.begin(), order.end(),
                     [](const TPluginLibrary* a, const TPluginLibrary* b) { return RankOf(*a) < RankOf(*b); });
    return order;
}

// What has the class in place of the library.
std::string FindTaker(const TPluginLibrary& library, const std::string& className,
                      const std::list<TPluginLibrary>& libraries) {
    for (const TPluginLibrary& other : libraries)
        if (other.Declares(className)) return &other == &library ? "" : other.FullPath();
    return "the base document";
}

// The outcome of the plugin tells of classes that can have instances. An abstract one costs nothing as long as both
// documents declare it alike.
void TellTaken(const TReason& reason, bool isAbstract, TPluginLibrary& library) {
    const std::string text = SentenceOf(reason);
    library.report.messages.push_back({"", kyrLogWarning, text, true});
    if (isAbstract)
        PrintDiagnostic("plugin " + library.report.NameIn(library.path) + ": " + text);
    else
        library.takenClasses.push_back(reason);
}

// Whether classes of the one derive from those of the other. Of a document that could not be read nobody knows.
bool DerivesFrom(const TPluginLibrary& library, const TPluginLibrary& other) {
    const auto derives = [&other](const TCIMClass* cls) {
        for (const TCIMClass* above = cls->GetSuperClass(); above != nullptr; above = above->GetSuperClass())
            if (std::find(other.classes.begin(), other.classes.end(), above) != other.classes.end()) return true;
        return false;
    };
    return library.classes.empty() || std::any_of(library.classes.begin(), library.classes.end(), derives);
}

// When the core loads a library, it reads its document into the schema of its plugin manager. What the document's
// classes derive from must be there then.
void FindPremises(const std::list<TPluginLibrary>& libraries, TPluginLibrary& library) {
    for (const TPluginLibrary& other : libraries)
        if (&other != &library && !other.notLoaded.reason && DerivesFrom(library, other))
            library.premises.push_back(other.FullDocumentPath());
}

}  // namespace

void ReadDocuments(std::list<TPluginLibrary>& libraries, TPluginContainer& container, TContainer& schema,
                   const TRunLimits& limits) {
    const THarms harms = FindHarm(libraries, container, limits);
    for (TPluginLibrary* const each : InOrderOfReading(libraries)) {
        TPluginLibrary& library = *each;
        const std::string document = library.FullDocumentPath();
        if (document.empty() || library.notLoaded.reason) continue;
        if (const auto harm = harms.find(document); harm != harms.end()) {
            library.notLoaded = {eRefused, harm->second};
            library.notLoaded.reason.file = library.FullDocumentPath();
            continue;
        }
        const TLogCapture capture;  // drops the lines: loading the plugin logs them again
        library.classes = Read(document, container);
        library.duplicateClasses = container.TakeDuplicateClasses();
        if (IsSystem(library)) Read(document, schema);
    }
    for (TPluginLibrary& library : libraries) FindPremises(libraries, library);
}

void TellTakenClasses(std::list<TPluginLibrary>& libraries, const TContainer& container) {
    for (TPluginLibrary& library : libraries) {
        for (const std::string& name : library.duplicateClasses) {
            TReason reason = ReasonFor(EReason::eClassNameTaken, library.FullPath());
            reason.className = name;
            reason.file = FindTaker(library, name, libraries);
            const TCIMClass* const cls = container.FindClass(name);
            if (cls != nullptr && !reason.file.empty()) TellTaken(reason, cls->IsAbstract(), library);
        }
    }
}

void ClaimClasses(TPluginLibrary& library, std::list<TPluginLibrary>& libraries) {
    const auto isDuplicate = [&](const TCIMClass* cls) {
        return std::find(library.duplicateClasses.begin(), library.duplicateClasses.end(), cls->GetName()) !=
               library.duplicateClasses.end();
    };
    for (TPluginLibrary& other : libraries) {
        if (&other == &library || other.report.IsLoaded() || other.IsLeftOut()) continue;
        const auto claimed =
            std::stable_partition(other.classes.begin(), other.classes.end(), std::not_fn(isDuplicate));
        library.classes.insert(library.classes.end(), claimed, other.classes.end());
        other.classes.erase(claimed, other.classes.end());
    }
}
