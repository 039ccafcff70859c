#include "saved/SavedCollection.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/CoreLog.h"
#include "base/ExitStatus.h"
#include "base/OutputFile.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "saved/CimXmlWriter.h"
#include "saved/DocumentProbe.h"

namespace {

constexpr const char* kHead =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION>\n<DECLGROUP>\n";
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

// For a message: leaving out the class with the most instances makes the collection smaller.
std::string DescribeLargest(const std::vector<TCIMClass*>& classes) {
    std::pair<size_t, std::string> largest;
    for (const TCIMClass* cls : classes)
        if (const size_t count = cls->EnumerateInstances(false).size(); count > largest.first)
            largest = {count, cls->GetName()};
    return "the most instances, " + std::to_string(largest.first) + ", are of " + largest.second;
}

[[noreturn]] void RefuseReading(const std::string& path, const std::string& reason) {
    throw TCommandError(eExitNothing, "cannot read the collection '" + path + "': " + reason);
}

void RequireFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) RefuseReading(path, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) RefuseReading(path, "it is no regular file");
    if (status.st_size == 0) RefuseReading(path, "it is empty");
}

// The errors that the core has logged about a document. Its last one only adds the path, which the message has already.
std::string ErrorsIn(const std::vector<TLogLine>& lines) {
    std::vector<std::string> errors;
    for (const TLogLine& line : lines)
        if (line.severity == kyrLogError) errors.push_back(line.text);
    if (!errors.empty()) errors.pop_back();
    return Join(errors, "; ");
}

std::string Explain(const std::string& path, const TKYRException& e, const std::string& errors) {
    if (!errors.empty()) return errors + "; it must be a CIM-XML document, as kyr collect -o writes it";
    if (e.fCode == kyrStatusInvalidGzipFile && !EndsWith(path, ".gz"))
        return "with '.gz' in its path it is taken for a compressed file, which it is not; move it";
    if (e.fCode == kyrStatusInvalidGzipFile) return "it is not compressed; take the '.gz' out of its path";
    if (e.fCode == kyrStatusCorruptGzipFile) return "it is damaged or cut off; take another copy of it";
    if (e.fCode == kyrStatusInvalidSpecificationDocument)
        return "it holds more than " + std::to_string(TCimXmlWriter::kLargestDocument) +
               " bytes, or is a damaged compressed file; save fewer classes";
    return e.what();
}

}  // namespace

void RequireSavablePath(const std::string& path) {
    RequireReadableName(path);
    if (!TOutputFile::IsSpecial(path)) TOutputFile(path, false);  // creates and removes the temporary file
}

void SaveCollection(const TContainer& container, const std::string& path, bool stable,
                    const std::vector<TCIMClass*>* classes) {
    RequireReadableName(path);
    TOutputFile file(path, EndsWith(path, ".gz"));
    TCimXmlWriter writer(container, file);
    writer.Raw(kHead);
    WriteSchema(container, writer);
    const std::vector<TCIMClass*> written = classes == nullptr ? AllClasses(container) : *classes;
    WriteInstances(written, stable, writer);
    writer.Raw(kTail);
    const size_t size = writer.Finish();
    if (size > TCimXmlWriter::kLargestDocument)
        throw TCommandError(eExitOutput,
                            "cannot write '" + path + "': the collection takes " + std::to_string(size) +
                                " bytes, and no more than " + std::to_string(TCimXmlWriter::kLargestDocument) +
                                " can be read back; choose fewer classes with --class; " + DescribeLargest(written));
    file.Finish();
}

void ReadCollection(const std::string& path, TContainer& container) {
    RequireFile(path);
    const auto read = [&](const std::string& file) { container.PopulateContainerFromFile(file); };
    const std::string harm = ProbeDocuments({path}, read).front();
    if (!harm.empty()) RefuseReading(path, harm + "; it is damaged, or was made to do harm");
    TLogCapture capture;
    try {
        read(path);
    } catch (const TKYRException& e) {
        RefuseReading(path, Explain(path, e, ErrorsIn(capture.Take())));
    }
    if (container.GetRootClass()->EnumerateSubClasses(false).empty())
        RefuseReading(path, "there is no class in it; it must be a file that kyr collect -o wrote");
}
