#include "render/SummaryStorage.h"

#include <unordered_set>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/Associations.h"
#include "model/ClassNames.h"
#include "render/SummaryPieces.h"

namespace {

/// How something is told on which nothing else stands.
struct TContentKind {
    const char* className;
    std::vector<TSummaryPiece> pieces;  // none: as "swap"
};

const TContentKind kContentKinds[] = {
    {"MOLTA_Mount", {{"MountPoint"}}},
    {"MOLTA_SwapArea", {}},
    {"MOLTA_FileSystem", {{"FileSystemType"}, {"Caption", " on ", " (no mount known)"}}},
    {"MOLTA_DiskDrive", {{"ContentType", "", "", "content"}}},
    {"CIM_StorageExtent", {{"ContentType", "", "", "content"}, {"Name", " on "}}},
};

std::string ContentText(const TCIMInstance& content) {
    for (const TContentKind& kind : kContentKinds) {
        const TCIMClass* const cls = content.GetContainer()->FindClass(kind.className);
        if (cls != nullptr && (content.GetClass() == cls || content.GetClass()->IsSubclassOf(cls)))
            return kind.pieces.empty() ? "swap" : SummaryText(content, kind.pieces);
    }
    return "";
}

}  // namespace

TStorageContents::TStorageContents(const TContainer& container) {
    for (const char* name : kStorageAssociations)
        for (const TCIMInstance* association : InstancesOf(container, name)) {
            const TCIMInstance *antecedent = nullptr, *dependent = nullptr;
            for (const TAssociationEnd& end : EndsOf(*association))
                (IsSameName(end.role, "Antecedent") ? antecedent : dependent) = end.instance;
            if (antecedent != nullptr && dependent != nullptr) fDependents[antecedent].push_back(dependent);
        }
}

// Associations may form a cycle, and several ways may lead to one volume.
std::vector<std::string> TStorageContents::ContentsOf(const TCIMInstance& disk) const {
    std::vector<std::string> texts;
    std::unordered_set<const TCIMInstance*> seen;
    std::vector<const TCIMInstance*> waiting{&disk};
    while (!waiting.empty()) {
        const TCIMInstance* const content = waiting.back();
        waiting.pop_back();
        if (!seen.insert(content).second) continue;
        const auto found = fDependents.find(content);
        if (found != fDependents.end())
            waiting.insert(waiting.end(), found->second.rbegin(), found->second.rend());
        else if (std::string text = ContentText(*content); !text.empty())
            texts.push_back(std::move(text));
    }
    return texts;
}
