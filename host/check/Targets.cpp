#include <algorithm>
#include <filesystem>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "check/Check.h"
#include "check/Placement.h"
#include "kyr/TOSSpecific.h"
#include "model/CollectionState.h"
#include "saved/DocumentText.h"
#include "states/LibraryPlace.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void RaiseUnreadable(const std::string& path, const std::string& why) {
    throw TCommandError(eExitNothing, path + ": " + why);
}

// Whether it holds instances that say how a collection went. One that cannot be read is told when it is checked.
bool IsCollection(const std::string& path) {
    if (IsTakenForCompressed(path)) return false;
    const std::string mark = std::string("<INSTANCE CLASSNAME=\"") + kCollectionClass + "\"";
    std::string rest;
    bool isFound = false;
    ForEachPiece(path, [&](std::string_view piece) {
        if (isFound) return;
        rest.append(piece);
        isFound = rest.find(mark) != std::string::npos;
        rest.erase(0, rest.size() - std::min(rest.size(), mark.size()));
    });
    return isFound;
}

TTarget TargetAt(const fs::path& path) {
    if (IsLibraryName(path.filename().string()) || EndsWith(path.string(), ".so"))
        return {TTarget::eLibrary, path.string()};
    return {IsCollection(path.string()) ? TTarget::eCollection : TTarget::eDocument, path.string()};
}

bool IsOfPlugin(const std::string& name) {
    return IsLibraryName(name) || EndsWith(name, TOSSpecific::kSpecificationExtension);
}

void AddTargets(const fs::path& folder, bool withFolders, std::vector<TTarget>& targets) {
    std::error_code error, ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (entry.is_directory(ignored) && withFolders)
            AddTargets(entry.path(), false, targets);
        else if (IsOfPlugin(entry.path().filename().string()))
            targets.push_back(entry.is_regular_file(ignored) ? TargetAt(entry.path())
                                                             : TTarget{TTarget::eNoFile, entry.path().string()});
    }
    if (error) RaiseUnreadable(folder.string(), "cannot be read: " + error.message());
}

}  // namespace

std::vector<TTarget> FindTargets(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) RaiseUnreadable(path, error ? error.message() : "no such file or folder");
    if (fs::is_regular_file(status)) return {TargetAt(path)};
    if (!fs::is_directory(status)) RaiseUnreadable(path, "is neither a file nor a folder");
    std::vector<TTarget> targets;
    AddTargets(path, true, targets);
    if (targets.empty() && FindMisplaced(path).empty())
        RaiseUnreadable(
            path, "neither a document (NAME.properties.xml) nor a library (libNAME.pi.so) is in it or its folders");
    targets.push_back({TTarget::eFolder, path});
    std::sort(targets.begin(), targets.end(), [](const TTarget& a, const TTarget& b) { return a.path < b.path; });
    return targets;
}
