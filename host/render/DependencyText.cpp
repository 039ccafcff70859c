#include "render/DependencyText.h"

#include <unordered_map>
#include <vector>

#include "base/Output.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/Associations.h"
#include "render/TreeLine.h"

namespace {

class TDependencies {
public:
    TDependencies(const TContainer& container, TOutput& output)
        : fIndex(container),
          fSystem(container.FindClass("CIM_System")),
          fMember(container.FindClass("MOLTA_NetworkAdapterMember")),
          fOutput(output) {}

    /// Prints what the instance leads to under a heading, or nothing. Upwards leads to what it depends on.
    void Print(const TCIMInstance& start, bool upwards, const char* heading) {
        fLines = {{&start, 0}};
        std::vector<TStep> open = StepsFrom(start, upwards, 1);
        if (!open.empty()) fOutput.Write(std::string("\n") + heading + "\n");
        while (!open.empty()) {
            const TStep step = open.back();
            open.pop_back();
            const auto [line, isNew] = fLines.emplace(step.instance, fLines.size());
            if (!isNew && line->second > fLines[step.from]) continue;  // it stands below that already
            PrintTreeLine(*step.instance, step.depth, isNew ? "" : " (above)", fOutput);
            if (!isNew) continue;
            const std::vector<TStep> next = StepsFrom(*step.instance, upwards, step.depth + 1);
            open.insert(open.end(), next.begin(), next.end());
        }
    }

private:
    struct TStep {
        const TCIMInstance* from;
        const TCIMInstance* instance;
        size_t depth;
    };

    // The last one is to be told first.
    std::vector<TStep> StepsFrom(const TCIMInstance& instance, bool upwards, size_t depth) const {
        std::vector<TStep> steps;
        for (const TAssociationLink& link : fIndex.LinksOf(instance))
            if (IsWanted(link, instance, upwards)) steps.push_back({&instance, link.other.instance, depth});
        return {steps.rbegin(), steps.rend()};
    }

    bool IsWanted(const TAssociationLink& link, const TCIMInstance& from, bool upwards) const {
        if (link.other.instance == nullptr || link.other.instance == &from) return false;
        if (fSystem != nullptr && link.other.instance->GetClass()->IsSubclassOf(fSystem)) return false;
        const std::vector<TAssociationEnd> ends = EndsOf(*link.association);
        const TCIMInstance* const owner = ends[OwnerAmong(*link.association, ends)].instance;
        return owner == (upwards == NeedsItsParts(*link.association) ? &from : link.other.instance);
    }

    // A bond or a bridge is the owner of the adapters that are part of it, and it is what depends on them.
    bool NeedsItsParts(const TCIMInstance& association) const {
        return fMember != nullptr && association.GetClass()->IsSubclassOf(fMember);
    }

    const TAssociationIndex fIndex;
    const TCIMClass* const fSystem;
    const TCIMClass* const fMember;
    TOutput& fOutput;
    std::unordered_map<const TCIMInstance*, size_t> fLines;  // on which line an instance was told
};

}  // namespace

void PrintDependencies(const TContainer& container, const TCIMInstance& instance, TOutput& output) {
    PrintTreeLine(instance, 0, "", output);
    TDependencies dependencies(container, output);
    dependencies.Print(instance, true, "It depends on");
    dependencies.Print(instance, false, "On it depend");
}
