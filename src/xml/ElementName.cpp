#include "xml/ElementName.h"

#include <algorithm>

namespace {

// Indexed by EElement.
constexpr std::string_view kNames[] = {
    "",
    "cim",
    "class",
    "classname",
    "classpath",
    "declaration",
    "declgroup",
    "declgroup.withname",
    "declgroup.withpath",
    "host",
    "imethodcall",
    "instance",
    "instancename",
    "instancepath",
    "iparamvalue",
    "keybinding",
    "keyvalue",
    "localclasspath",
    "localinstancepath",
    "localnamespacepath",
    "message",
    "method",
    "multireq",
    "namespace",
    "namespacepath",
    "property",
    "property.array",
    "property.reference",
    "qualifier",
    "qualifier.declaration",
    "scope",
    "simplereq",
    "value",
    "value.array",
    "value.namedobject",
    "value.object",
    "value.objectwithlocalpath",
    "value.objectwithpath",
    "value.reference",
};
static_assert(std::size(kNames) == static_cast<std::size_t>(EElement::eEnd), "one name for each element");

}  // namespace

EElement FindElement(std::string_view name) {
    const auto found = std::find(std::begin(kNames), std::end(kNames), name);
    return found != std::end(kNames) ? static_cast<EElement>(found - kNames) : EElement::eUnknown;
}
