#include "text/PropertyMarks.h"

#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"

namespace {

bool IsMarked(const TCIMPropertyDecl& declaration, const char* name) {
    const TCIMQualifier* const mark = declaration.FindQualifier(name);
    return mark != nullptr && !mark->GetValue().IsNull() && mark->GetValue() == TCIMValue(true);
}

}  // namespace

bool IsKey(const TCIMPropertyDecl& declaration) { return IsMarked(declaration, "Key"); }

bool IsVolatile(const TCIMPropertyDecl& declaration) { return IsMarked(declaration, "Volatile"); }

bool IsCompanion(const TCIMPropertyDecl& declaration) { return IsMarked(declaration, "Companion"); }
