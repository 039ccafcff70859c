#include "inventory/PluginMarks.h"

#include <memory>

#include "inventory/Library.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"

namespace {

void Mark(TCIMClass& cls, const TCIMQualifierDecl* declaration, const std::string& text) {
    if (declaration == nullptr) return;
    std::unique_ptr<TCIMQualifier> qualifier(new TCIMQualifier(*declaration, TCIMValue(text)));
    cls.AddQualifier(*qualifier);
    // A class that is marked alike and for good keeps the mark that it has.
    if (cls.FindQualifier(declaration->GetName()) == qualifier.get()) qualifier.release();
}

}  // namespace

void MarkClasses(const TLibrary& library, const TContainer& container) {
    const TPluginFacts* const owner = library.report.FindOwner();
    if (owner == nullptr || !library.report.refusal.empty()) return;
    for (TCIMClass* cls : library.classes) {
        Mark(*cls, container.FindQualifierDecl("PLUGINNAME"), owner->name);
        Mark(*cls, container.FindQualifierDecl("PLUGINVERSION"), owner->version);
    }
}
