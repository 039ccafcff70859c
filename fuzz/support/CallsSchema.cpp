#include "support/CallsSchema.h"

#include <algorithm>

#include "support/SchemaSketch.h"

namespace {

std::unique_ptr<TContainer> MakeSchema() {
    auto container = std::make_unique<TContainer>();
    const SchemaBuilder schema(*container);
    std::vector<PropertySketch> all = {Key("Id")}, keys;
    for (int type = CIM::eCIMBoolean; type <= CIM::eCIMDateTime; ++type) {
        if (type == CIM::eCIMChar) continue;
        const TCIMValue scalar(static_cast<CIM::ECIMType>(type), 0),
            array(static_cast<CIM::ECIMType>(type | CIM::eCIMArrayFlag), 0);
        const std::string name = scalar.GetType().ToString();
        all.insert(all.end(), {{name, scalar}, {name + "s", array}});
        keys.push_back(Key(name, scalar));
    }
    TCIMClass &holder = schema.AddClass("F_All", all), &keyed = schema.AddClass("F_Keys", keys);
    schema.AddClass("F_Sub", {}, &holder);
    schema.AddClass("F_Abstract", {{"Id", Null(CIM::eCIMString)}}, nullptr, {"Abstract"});
    const PropertySketch time = {"DateTimeOfCollection", Null(CIM::eCIMDateTime)};
    TCIMClass& link = schema.AddClass("F_Link", {KeyReference("From", holder), KeyReference("To", keyed), time},
                                      nullptr, {"Association"});
    schema.AddClass("F_Outer", {{"Inner", NullReferenceTo(link)}}, &link);
    return container;
}

std::unique_ptr<TContainer>& Container() {
    static std::unique_ptr<TContainer> container = MakeSchema();
    return container;
}

/// False if an instance is left, because its keys have changed since it was stored.
bool RemoveInstances(TCIMClass& cls) {
    std::vector<TCIMInstance*> left = cls.EnumerateInstances(false);
    while (!left.empty()) {
        const std::size_t before = left.size();
        cls.RemoveInstance(*left.front());
        left = cls.EnumerateInstances(false);
        if (left.size() == before) return false;
    }
    return true;
}

bool RemoveAllInstances(const TContainer& container) {
    std::vector<TCIMClass*> classes = container.GetRootClass()->EnumerateSubClasses(true);
    classes.push_back(container.GetRootClass());  // it may have instances too
    return std::all_of(classes.begin(), classes.end(), [](TCIMClass* cls) { return RemoveInstances(*cls); });
}

}  // namespace

TContainer& CallsContainer() { return *Container(); }

void EmptyCallsContainer() {
    if (!RemoveAllInstances(*Container())) Container() = MakeSchema();
}
