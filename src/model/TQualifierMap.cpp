#include "model/TQualifierMap.h"

#include <cassert>

#include "kyr/TCIMQualifier.h"
#include "kyr/TKYRException.h"
#include "model/TCIMQualifierImpl.h"
#include "model/TNormalizedName.h"

namespace {

bool IsEqual(const TCIMQualifier& a, const TCIMQualifier& b) {
    return !(TCIMQualifierImpl::ValueOf(a) != TCIMQualifierImpl::ValueOf(b)) && a.GetFlavor() == b.GetFlavor();
}

boost::shared_ptr<TCIMQualifier> Adopt(TCIMQualifier* qualifier) {
    TCIMQualifierImpl::Of(*qualifier).SetAdopted();
    return {qualifier, boost::checked_deleter<TCIMQualifier>(), TSmallObjectAllocator<TCIMQualifier>()};
}

}  // namespace

void TQualifierMap::Add(TCIMQualifier& qualifier) {
    const TNormalizedName name(qualifier.GetName());
    const auto existing = fMap.find(name.View());
    if (existing != fMap.end()) {
        const TCIMQualifier& present = *existing->second;
        if (&present == &qualifier) return;
        if ((present.GetFlavor() & TCIMQualifierDecl::eFlavorOverridable) == 0) {
            // Compatibility: accepted, but the qualifier stays the caller's and the present one is kept; see
            // docs/oddities.md.
            if (IsEqual(present, qualifier)) return;
            throw TKYRException(kyrStatusNotOverridable);
        }
        Erase(existing);
    }
    Insert(name.View(), &qualifier);
}

void TQualifierMap::Insert(std::string_view name, TCIMQualifier* qualifier) {
    const auto ret = fMap.emplace(name, Adopt(qualifier));
    assert(ret.second);
    if (name == "key") fKey = qualifier;
}

void TQualifierMap::Erase(TMap::iterator entry) {
    if (entry->second.get() == fKey) fKey = nullptr;
    fMap.erase(entry);
}

TCIMQualifier* TQualifierMap::Find(const std::string& name) const {
    const auto found = fMap.find(TNormalizedName(name).View());
    return found == fMap.end() ? nullptr : found->second.get();
}

TCIMQualifier* TQualifierMap::Find(const TLiteralName& name) const {
    if (!TNormalizedName::IsUsualLocale()) return Find(std::string(name.written));
    const auto found = fMap.find(name.normalized);
    return found == fMap.end() ? nullptr : found->second.get();
}

TCIMQualifier* TQualifierMap::Get(const std::string& name) const {
    if (TCIMQualifier* found = Find(name)) return found;
    throw TKYRException(kyrStatusNotFound);
}

std::vector<const TCIMQualifier*> TQualifierMap::Enumerate() const {
    std::vector<const TCIMQualifier*> qualifiers;
    qualifiers.reserve(fMap.size());
    for (const auto& entry : fMap) qualifiers.push_back(entry.second.get());
    return qualifiers;
}

void TQualifierMap::Remove(TCIMQualifier& qualifier) {
    const auto found = fMap.find(TNormalizedName(qualifier.GetName()).View());
    if (found == fMap.end()) throw TKYRException(kyrStatusNotFound);
    Erase(found);
}

void TQualifierMap::InheritFrom(const TQualifierMap& superClass) {
    for (const auto& entry : superClass.fMap) {
        const TCIMQualifier& inherited = *entry.second;
        if ((inherited.GetFlavor() & TCIMQualifierDecl::eFlavorToSubclass) == 0) continue;
        const boost::shared_ptr<TCIMQualifier> copy = Adopt(new TCIMQualifier(inherited));
        copy->SetPropagated(true);
        const TNormalizedName name(copy->GetName());
        const auto ret = fMap.emplace(name.View(), copy);
        if (ret.second && name.View() == "key") fKey = copy.get();
    }
}
