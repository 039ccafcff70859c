#include <algorithm>

#include "difference/ClassStates.h"
#include "export/CycloneDxModel.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "render/SummaryPieces.h"

namespace {

/// From the best to the worst.
enum EAggregate { eAllThere, eNotTold, eNotAllThere };
constexpr const char* kAggregates[] = {"complete", "unknown", "incomplete"};

// A collection without states, as that of another program, does not say what was looked at.
EAggregate AggregateOf(const TClassState& state) {
    if (!state.IsWhole()) return eNotAllThere;
    return state.HasState() ? eAllThere : eNotTold;
}

EAggregate AggregateOf(const TClassStates& states, const std::vector<std::string>& classes) {
    EAggregate worst = eAllThere;
    for (const std::string& name : classes) worst = std::max(worst, AggregateOf(states.StateOf(name)));
    return worst;
}

// A package that is not installed as a whole is no component, and yet files of it may be there.
bool HasPackageInPart(const TContainer& container) {
    const std::vector<TCIMInstance*> packages = InstancesOf(container, kPackageClass);
    return std::any_of(packages.begin(), packages.end(),
                       [](const TCIMInstance* package) { return HowInstalled(*package) == EInstalled::eInPart; });
}

std::string StateText(const TClassState& state) {
    if (state.word.empty()) return "unknown";
    return state.word + (state.code.empty() ? "" : ": " + state.code);
}

void AddState(const TClassStates& states, const std::string& name, TBom& bom) {
    constexpr size_t kPrefix = sizeof "MOLTA_" - 1;
    bom.fProperties.push_back({"kyr:state:" + name.substr(kPrefix), StateText(states.StateOf(name))});
}

}  // namespace

// What the machine consists of, and which packages its system has, are their dependencies in the document. What a
// package or a device depends on besides is not collected, so nothing is claimed of that.
void AddCompleteness(const TContainer& container, TBom& bom) {
    const TClassStates states(container);
    std::vector<std::string> classes = HardwareClasses();
    classes.emplace_back(kOperatingSystemClass);
    const EAggregate machine = AggregateOf(states, classes);
    std::vector<std::string> software = {kPackageClass};
    // Collections of earlier versions have none.
    if (container.FindClass(kLanguagePackageClass) != nullptr) software.emplace_back(kLanguagePackageClass);
    const EAggregate packages = HasPackageInPart(container) ? eNotAllThere : AggregateOf(states, software);
    const bool hasSystem = bom.HasRef(kSystemRef);
    bom.fCompositions.push_back({kAggregates[hasSystem ? machine : std::max(machine, packages)], kMachineRef});
    if (hasSystem) bom.fCompositions.push_back({kAggregates[packages], kSystemRef});
    classes.insert(classes.end(), software.begin(), software.end());
    for (const std::string& name : classes) AddState(states, name, bom);
}
