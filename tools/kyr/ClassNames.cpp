#include "ClassNames.h"

#include <strings.h>

#include <algorithm>

#include "Exit.h"
#include "NearMatches.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"

namespace {

// The core has the root class for an empty name, and refuses what cannot be a name.
TCIMClass* FindClassNamed(const TContainer& schema, const std::string& name) {
    try {
        return name.empty() ? nullptr : schema.FindClass(name);
    } catch (const TKYRException&) {
        return nullptr;
    }
}

}  // namespace

TCIMClass& GetClassNamed(const TContainer& schema, const std::string& name) {
    if (TCIMClass* const cls = FindClassNamed(schema, name)) return *cls;
    std::vector<std::string> names;
    for (const TCIMClass* cls : schema.GetRootClass()->EnumerateSubClasses(true)) names.push_back(cls->GetName());
    throw TCommandError(eExitUsage, "unknown class '" + name + "'" + DidYouMean(name, names));
}

void SortByName(std::vector<TCIMClass*>& classes) {
    std::sort(classes.begin(), classes.end(), [](const TCIMClass* a, const TCIMClass* b) {
        return strcasecmp(a->GetName().c_str(), b->GetName().c_str()) < 0;
    });
}
