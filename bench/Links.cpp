#include "Links.h"

#include "Schema.h"
#include "cwrappers/kyriIOHandle.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMReference.h"
#include "kyr/kyrPlugin.h"

namespace {

std::string Id(unsigned number) { return "id-" + std::to_string(number); }

void AddEnd(kyriIOHandle& handle, const char* className, unsigned number) {
    kyrAddClass(&handle, className);
    kyrAddStringProperty(&handle, "Id", Id(number).c_str());
}

void AddReference(kyriIOHandle& handle, const char* property, const char* className, unsigned number) {
    kyrCIMReference reference = nullptr;
    kyrNewCIMReference(&reference, &handle);
    kyrSetReferenceClassName(reference, className);
    kyrReferenceAddString(reference, "Id", Id(number).c_str());
    kyrAddReferenceProperty(&handle, property, reference);
    kyrDeleteCIMReference(reference);
}

}  // namespace

std::string FrontPath(unsigned number) { return "Bench_Front.Id=\"" + Id(number) + "\""; }
std::string BackPath(unsigned number) { return "Bench_Back.Id=\"" + Id(number) + "\""; }

TLinks::TLinks(unsigned count) {
    const std::vector<TField> key = {{"Id", NullOf(TCIMValue::TCIMType::eCIMString)}};
    TCIMClass& front = DeclareClass(fContainer, "Bench_Front", key, 1);
    TCIMClass& back = DeclareClass(fContainer, "Bench_Back", key, 1);
    DeclareClass(fContainer, "Bench_Link",
                 {{"Antecedent", NullReferenceTo(front)}, {"Dependent", NullReferenceTo(back)}}, 2, true);

    kyriIOHandle handle(&fContainer, nullptr);
    for (unsigned i = 0; i < count; ++i) AddEnd(handle, "Bench_Front", i);
    for (unsigned i = 0; i < count; ++i) AddEnd(handle, "Bench_Back", i);
    for (unsigned i = 0; i < count; ++i) {
        kyrAddClass(&handle, "Bench_Link");
        AddReference(handle, "Antecedent", "Bench_Front", i);
        AddReference(handle, "Dependent", "Bench_Back", i);
    }
    handle.fCurrentInstance->AddToContainer();

    const std::vector<TCIMInstance*> all = front.EnumerateInstances(false);
    for (unsigned i = 0; i < kWalks; ++i) fStarts.push_back(all[i * all.size() / kWalks]);
}

std::vector<std::string> TLinks::StartPaths() const {
    std::vector<std::string> paths;
    for (const TCIMInstance* start : fStarts) paths.push_back(start->BuildPath().GetPath());
    return paths;
}

std::size_t TLinks::WalkReferences() const {
    std::size_t found = 0;
    for (const TCIMInstance* start : fStarts) found += start->References("", "").size();
    return found;
}

std::size_t TLinks::WalkAssociators() const {
    std::size_t found = 0;
    for (const TCIMInstance* start : fStarts) found += start->Associators("", "", "", "").size();
    return found;
}
