#include "saved/SavedCollection.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <utility>

#include "base/CoreLog.h"
#include "base/ExitStatus.h"
#include "base/Gzip.h"
#include "base/OutputFile.h"
#include "base/StatusWords.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/CollectionState.h"
#include "saved/CimXmlWriter.h"
#include "saved/DocumentProbe.h"
#include "saved/DocumentText.h"
#include "saved/EndMark.h"
#include "saved/StreamedFile.h"
#include "states/StateInstances.h"

namespace {

constexpr const char* kXmlDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
constexpr const char* kHead = "\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION>\n<DECLGROUP>\n";
constexpr const char* kTail = "</DECLGROUP>\n</DECLARATION>\n</CIM>\n";

[[noreturn]] void RefusePath(const std::string& path, const std::string& reason, const std::string& better) {
    throw TCommandError(eExitUsage, "cannot save to '" + path + "': " + reason + "; write '" + better + "'");
}

// The core's reader decides by the path whether a file is compressed: ".gz" anywhere in it counts.
void RequireReadableName(const std::string& path) {
    if (TOutputFile::IsSpecial(path)) return;
    const bool isCompressed = EndsWith(path, ".xml.gz");
    if (!isCompressed && !EndsWith(path, ".xml")) {
        const bool isHalfNamed = EndsWith(path, ".gz");
        RefusePath(path, "a saved collection is named .xml or .xml.gz",
                   isHalfNamed ? path.substr(0, path.size() - 3) + ".xml.gz" : path + ".xml");
    }
    if (!isCompressed && path.find(".gz") != std::string::npos)
        RefusePath(path, "with '.gz' in its path the file would be read as a compressed one", path + ".gz");
}

std::vector<TCIMClass*> AllClasses(const TContainer& container) {
    std::vector<TCIMClass*> classes = container.GetRootClass()->EnumerateSubClasses(true);
    classes.insert(classes.begin(), container.GetRootClass());
    return classes;
}

size_t CountInstances(const std::vector<TCIMClass*>& classes) {
    const auto add = [](size_t sum, const TCIMClass* cls) { return sum + cls->EnumerateInstances(false).size(); };
    return std::accumulate(classes.begin(), classes.end(), size_t(0), add);
}

TContents ContentsOf(const TContainer& container) {
    const std::vector<TCIMClass*> classes = AllClasses(container);
    return {classes.size() - 1, CountInstances(classes)};  // no document brings the root class
}

// For a message: leaving out the class with the most instances makes the collection smaller.
std::string DescribeLargest(const std::vector<TCIMClass*>& classes) {
    std::pair<size_t, std::string> largest;
    for (const TCIMClass* cls : classes)
        if (const size_t count = cls->EnumerateInstances(false).size(); count > largest.first)
            largest = {count, cls->GetName()};
    return "the most instances, " + std::to_string(largest.first) + ", are of " + largest.second;
}

[[noreturn]] void RefuseReading(const std::string& name, const std::string& reason) {
    throw TCommandError(eExitNothing, "cannot read the collection " + name + ": " + reason);
}

void RequireFile(const std::string& path, const std::string& name) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) RefuseReading(name, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) RefuseReading(name, "it is no regular file");
}

// Whether the file is compressed if its path says so to the core's reader, and only then.
bool IsNamedAsItIs(const std::string& path) {
    char start[2] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    return IsGzip({start, sizeof start}) == (path.find(".gz") != std::string::npos);
}

// "1 of 3 instances", or nothing if as many are there as were saved.
std::string DescribeLoss(size_t found, size_t saved, const char* what) {
    return found >= saved ? "" : std::to_string(found) + " of " + std::to_string(saved) + " " + what;
}

// Files of earlier versions have no mark, and tell how complete the collection is.
TReason FindBreakOff(const TContainer& container) {
    for (const char* name : {kCollectionClass, kCollectedPluginClass, kCollectedClassClass}) {
        const TCIMClass* const cls = container.FindClass(name);
        if (cls != nullptr && cls->EnumerateInstances(false).empty())
            return ReasonFor(EReason::eFileChanged, "it breaks off before it tells how complete the collection is");
    }
    return {};
}

TReason FindChange(const TDocumentEnds& ends, const TContainer& container) {
    if (ends.start.empty()) return ReasonFor(EReason::eFileChanged, "it cannot be uncompressed without an error");
    const TEndMark mark = FindEndMark(ends);
    if (mark.state == TEndMark::eIntact) return {};
    if (mark.state == TEndMark::eNone) return FindBreakOff(container);
    if (mark.state == TEndMark::eDamaged)
        return ReasonFor(EReason::eFileChanged, "its last line is missing or damaged");
    const TContents found = ContentsOf(container);
    const std::string instances = DescribeLoss(found.instances, mark.contents.instances, "instances");
    const std::string classes = DescribeLoss(found.classes, mark.contents.classes, "classes");
    const std::string left = instances + (instances.empty() || classes.empty() ? "" : " and ") + classes;
    return ReasonFor(EReason::eFileChanged, left.empty() ? "" : left + " are left");
}

// The errors that the core has logged about a document. Its last one only adds the path, which the message has already.
std::string ErrorsIn(const std::vector<TLogLine>& lines) {
    std::vector<std::string> errors;
    for (const TLogLine& line : lines)
        if (line.severity == kyrLogError) errors.push_back(WithStatusInWords(line.text));
    if (!errors.empty()) errors.pop_back();
    return Join(errors, "; ");
}

std::string Explain(const TKYRException& e, const std::string& errors) {
    if (!errors.empty()) return errors + "; it must be a CIM-XML document, as kyr collect -o writes it";
    if (e.fCode == kyrStatusCorruptGzipFile) return "it is damaged or cut off; take another copy of it";
    if (e.fCode == kyrStatusInvalidSpecificationDocument)
        return "it holds more than " + std::to_string(TCimXmlWriter::kLargestDocument) +
               " bytes, or is a damaged compressed file; save fewer classes";
    return WithStatusInWords(e.what());
}

}  // namespace

void RequireSavablePath(const std::string& path) {
    RequireReadableName(path);
    if (!TOutputFile::IsSpecial(path)) TOutputFile(path, false);  // creates and removes the temporary file
}

void SaveCollection(const TContainer& container, const std::string& path, bool stable,
                    const std::vector<TCIMClass*>* classes) {
    RequireReadableName(path);
    TOutputFile file(path, path == TOutputFile::kStandardOutput || EndsWith(path, ".gz"));
    TCimXmlWriter writer(container, file);
    writer.Raw(kXmlDeclaration);
    writer.Raw(kEndMarkAnnouncement);
    writer.Raw(kHead);
    WriteSchema(container, writer);
    const std::vector<TCIMClass*> written = classes == nullptr ? AllClasses(container) : *classes;
    WriteInstances(written, stable, writer);
    writer.Raw(kTail);
    const size_t size = writer.Finish({ContentsOf(container).classes, CountInstances(written)});
    if (size > TCimXmlWriter::kLargestDocument)
        throw TCommandError(eExitOutput,
                            "cannot write '" + path + "': the collection takes " + std::to_string(size) +
                                " bytes, and no more than " + std::to_string(TCimXmlWriter::kLargestDocument) +
                                " can be read back; choose fewer classes with --class; " + DescribeLargest(written));
    file.Finish();
}

namespace {

// Tries to read a file of which it is not plain that the reader gets to its end.
void RefuseHarm(const std::string& path, const std::string& name, const TDocumentEnds& ends, TContainer& container) {
    if (const size_t line = LineOfEndlessValue(path, ends); line != 0)
        RefuseReading(name, "the value of an attribute in line " + std::to_string(line) +
                                " is not closed; take another copy of it");
    const auto read = [&](const std::string& file) { container.PopulateContainerFromFile(file); };
    const TReason harm = ProbeDocuments({path}, read).front();
    if (harm) RefuseReading(name, harm.detail + "; it is damaged, or was made to do harm");
}

// The name is what messages call the file.
TReason ReadNamed(const std::string& path, const std::string& name, TContainer& container) {
    if (std::filesystem::file_size(path) == 0) RefuseReading(name, "it is empty");
    const TDocumentEnds ends = ReadDocumentEnds(path);
    if (!ends.isHarmless) RefuseHarm(path, name, ends, container);
    TLogCapture capture;
    try {
        container.PopulateContainerFromFile(path);
    } catch (const TKYRException& e) {
        RefuseReading(name, Explain(e, ErrorsIn(capture.Take())));
    }
    if (container.GetRootClass()->EnumerateSubClasses(false).empty())
        RefuseReading(name, "there is no class in it; it must be a file that kyr collect -o wrote");
    return FindChange(ends, container);
}

// What is left of a damaged schema may take no states.
void KeepFileChange(const TReason& change, TContainer& container) {
    const TLogCapture capture;
    try {
        StoreFileChange(container, change);
    } catch (const std::exception&) {
    }
}

}  // namespace

TReason ReadCollection(const std::string& path, TContainer& container) {
    const bool isStream = TStreamedFile::IsStream(path);
    const std::string name = isStream ? "from " + TStreamedFile::NameOf(path) : "'" + path + "'";
    if (!isStream) RequireFile(path, name);
    if (!isStream && IsNamedAsItIs(path)) return ReadNamed(path, name, container);
    const TStreamedFile file(path);
    return ReadNamed(file.Path(), name, container);
}

TReason ReadCollectionWithStates(const std::string& path, TContainer& container) {
    const TReason change = ReadCollection(path, container);
    CheckInstanceCounts(container);
    if (change) KeepFileChange(change, container);
    return change;
}
