#include "states/HostIdentity.h"

#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "states/StateInstances.h"

namespace {

std::string FirstText(const std::vector<TCIMInstance*>& instances, const char* property) {
    return instances.empty() ? "" : TextOf(*instances.front(), property);
}

}  // namespace

std::string HostTextOf(const TContainer& container, const THostText& text) {
    const std::string told = FirstText(StatesOf(container, kCollectionClass), text.property);
    return told.empty() ? FirstText(StatesOf(container, kHostClass), text.systemProperty) : told;
}

void StoreHost(TCIMInstance& collection) {
    for (const THostText& each : kHostTexts) {
        const std::string text = FirstText(StatesOf(*collection.GetContainer(), kHostClass), each.systemProperty);
        if (!text.empty()) collection.SetPropertyValue(each.property, TCIMValue(text));
    }
}
