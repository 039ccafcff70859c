#include "check/Check.h"

#include "base/CoreLog.h"
#include "base/ExitStatus.h"
#include "base/Output.h"
#include "check/Allowances.h"
#include "check/RunRules.h"
#include "check/TrialRuns.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "saved/SavedCollection.h"

namespace {

void CheckTarget(const TTarget& target, const TCheckContext& context, TFindings& findings) {
    switch (target.kind) {
        case TTarget::eDocument:
            CheckDocumentName(target.path, findings);
            return CheckDocument(target.path, context, findings);
        case TTarget::eLibrary:
            CheckLibraryName(target.path, findings);
            return CheckLibrary(target.path, findings);
        case TTarget::eFolder:
            return CheckFolder(target.path, findings);
        case TTarget::eNoFile:
            return CheckNoFile(target.path, findings);
        case TTarget::eCollection:
            return CheckCollection(target.path, findings);
    }
}

// Those that can be loaded.
std::vector<std::string> LibrariesAmong(const std::vector<TTarget>& targets, const TFindings& findings) {
    std::vector<std::string> libraries;
    for (const TTarget& target : targets)
        if (target.kind == TTarget::eLibrary && !findings.HasErrorIn(target.path)) libraries.push_back(target.path);
    return libraries;
}

}  // namespace

void CheckCollection(const std::string& path, TFindings& findings) {
    TContainer container;
    ReadCollection(path, container);
    CheckInstances({container, SelectAllClasses(container), path, {}, true}, findings);
}

bool CheckTargets(const std::vector<TTarget>& targets, const TCheckContext& context, TFindings& findings) {
    const TCoreLog log({});
    bool isRead = true;
    const auto attempt = [&isRead](const auto& check) {
        try {
            check();
        } catch (const TCommandError& e) {
            PrintDiagnostic(e.what());
            isRead = false;
        }
    };
    for (const TTarget& target : targets) attempt([&] { CheckTarget(target, context, findings); });
    attempt([&] { CheckRuns(LibrariesAmong(targets, findings), context, findings); });
    findings.AddRest();
    ApplyAllowances(targets, findings);
    findings.Sort();
    return isRead;
}
