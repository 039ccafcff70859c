#include "check/Check.h"

#include "base/ExitStatus.h"
#include "base/Output.h"
#include "check/Allowances.h"

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
        case TTarget::eCollection:
            return;
    }
}

}  // namespace

bool CheckTargets(const std::vector<TTarget>& targets, const TCheckContext& context, TFindings& findings) {
    bool isRead = true;
    for (const TTarget& target : targets) try {
            CheckTarget(target, context, findings);
        } catch (const TCommandError& e) {
            PrintDiagnostic(e.what());
            isRead = false;
        }
    ApplyAllowances(targets, findings);
    findings.Sort();
    return isRead;
}
