#include "model/ReadingOrder.h"

#include <algorithm>
#include <iterator>

#include "model/ClassNames.h"

namespace {

constexpr const char* kScopeKeys[] = {"CreationClassName", "SystemCreationClassName", "SystemName",
                                      "CSCreationClassName", "CSName"};

}  // namespace

bool IsScopeKey(const std::string& name) {
    return std::any_of(std::begin(kScopeKeys), std::end(kScopeKeys),
                       [&name](const char* key) { return IsSameName(name, key); });
}
