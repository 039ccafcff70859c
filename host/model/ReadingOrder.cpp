#include "model/ReadingOrder.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <unordered_map>
#include <utility>

#include "base/NaturalOrder.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMReference.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"
#include "model/Values.h"

namespace {

constexpr const char* kScopeKeys[] = {"CreationClassName", "SystemCreationClassName", "SystemName",
                                      "CSCreationClassName", "CSName"};

struct TMany {
    const char* className;
    const char* name;
};

constexpr TMany kMany[] = {{"MOLTA_Service", "services"},        {"MOLTA_KernelModule", "modules"},
                           {"MOLTA_Package", "packages"},        {"MOLTA_LanguagePackage", "language-packages"},
                           {"MOLTA_Repository", "repositories"}, {"MOLTA_PendingUpdate", "updates"},
                           {"MOLTA_ListeningSocket", "sockets"}, {"MOLTA_UnixListeningSocket", "sockets"},
                           {"MOLTA_Account", "accounts"},        {"MOLTA_Group", "groups"}};

struct TOrder {
    const char* className;
    const char* property;
};

// Volumes are known by the kernel's name of them, but identified by another. Caches have numbers in which the one that
// all processors share stands among those of the first one; their captions begin with the level.
constexpr TOrder kOrders[] = {{"MOLTA_CacheMemory", "Caption"}, {"MOLTA_StorageVolume", "Name"}};

uint32_t RankOf(const TCIMClass& cls) {
    const TCIMValue rank = QualifierValue(cls, "Rank", TCIMValue::TCIMType::eCIMUint16);
    return rank.IsNull() ? std::numeric_limits<uint32_t>::max() : static_cast<uint16_t>(rank);
}

bool HasName(const std::vector<std::string>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(), [&](const std::string& each) { return IsSameName(each, name); });
}

std::vector<std::string> KeysOf(const TCIMClass& cls) {
    std::vector<std::string> keys = cls.EnumerateKeyNames();
    std::sort(keys.begin(), keys.end(), TNameLess());
    return keys;
}

// The path, or what the instances of its class are ordered by in front of it.
std::string OrderOf(const TCIMInstance& instance) {
    const std::string path = instance.BuildPath().GetPath();
    for (const TOrder& order : kOrders)
        if (instance.GetClass()->GetName() == order.className)
            if (const TCIMProperty* const property = instance.FindProperty(order.property))
                return DisplayText(*property) + '\n' + path;
    return path;
}

}  // namespace

void SortForReading(std::vector<TCIMClass*>& classes) {
    ArrangeClasses(classes);
    std::unordered_map<const TCIMClass*, uint32_t> ranks;
    for (const TCIMClass* cls : classes) ranks[cls] = RankOf(*cls);
    std::stable_sort(classes.begin(), classes.end(), [&ranks](const TCIMClass* a, const TCIMClass* b) {
        return a->IsAssociation() == b->IsAssociation() ? ranks[a] < ranks[b] : b->IsAssociation();
    });
}

std::vector<std::string> MainPropertiesOf(const TCIMClass& cls) {
    std::vector<std::string> names;
    for (const std::string& name : QualifierTexts(cls, "Columns"))
        if (const TCIMPropertyDecl* const declaration = cls.FindPropertyDecl(name))
            names.push_back(declaration->GetName());
    return names;
}

std::vector<std::string> PropertiesForReading(const TCIMClass& cls) {
    std::vector<std::string> names = MainPropertiesOf(cls);
    if (names.empty()) names = KeysOf(cls);
    const std::vector<std::string> first = names;
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
        if (!HasName(first, declaration->GetName())) names.push_back(declaration->GetName());
    return names;
}

std::vector<TCIMInstance*> InNaturalOrder(const std::vector<TCIMInstance*>& instances) {
    std::vector<std::pair<std::string, TCIMInstance*>> orders;
    orders.reserve(instances.size());
    for (TCIMInstance* instance : instances) orders.emplace_back(OrderOf(*instance), instance);
    std::stable_sort(orders.begin(), orders.end(),
                     [](const auto& a, const auto& b) { return IsNaturallyLess(a.first, b.first); });
    std::vector<TCIMInstance*> sorted;
    sorted.reserve(orders.size());
    for (const auto& [order, instance] : orders) sorted.push_back(instance);
    return sorted;
}

const char* FindNameOfMany(const TCIMClass& cls) {
    for (const TMany& many : kMany)
        if (cls.GetName() == many.className) return many.name;
    return nullptr;
}

bool IsScopeKey(const std::string& name) {
    return std::any_of(std::begin(kScopeKeys), std::end(kScopeKeys),
                       [&name](const char* key) { return IsSameName(name, key); });
}
