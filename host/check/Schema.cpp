#include "check/Schema.h"

#include <algorithm>

namespace {

constexpr size_t kDeepest = 100;

std::vector<std::string> ReadValues(const TElement& value) {
    if (value.Is("VALUE")) return {value.text};
    std::vector<std::string> values;
    for (const TElement* child : value.children)
        if (child->Is("VALUE")) values.push_back(child->text);
    return values;
}

TQualifierUse ReadQualifier(const TElement& element) {
    TQualifierUse use{&element, element.Get("NAME"), LowerName(element.Get("TYPE")), false, {}};
    for (const TElement* child : element.children) {
        if (!child->Is("VALUE") && !child->Is("VALUE.ARRAY")) continue;
        use.isArray = child->Is("VALUE.ARRAY");
        use.values = ReadValues(*child);
    }
    return use;
}

// A qualifier that is PROPAGATED adds nothing.
std::vector<TQualifierUse> ReadQualifiers(const TElement& element) {
    constexpr size_t kMost = 200;
    std::vector<TQualifierUse> uses;
    for (const TElement* child : element.children)
        if (uses.size() < kMost && child->Is("QUALIFIER") && child->Get("PROPAGATED") != "true")
            uses.push_back(ReadQualifier(*child));
    return uses;
}

bool HasArray(const TElement& element) {
    return std::any_of(element.children.begin(), element.children.end(),
                       [](const TElement* child) { return child->Is("VALUE.ARRAY"); });
}

std::vector<std::string_view> ReadScopes(const TElement& declaration) {
    std::vector<std::string_view> scopes;
    for (const TElement* child : declaration.children)
        if (child->Is("SCOPE"))
            for (const TAttribute& attribute : child->attributes) scopes.push_back(attribute.name);
    return scopes;
}

TQualifierDeclaration ReadQualifierDeclaration(const TElement& element) {
    return {&element,
            element.Get("NAME"),
            LowerName(element.Get("TYPE")),
            element.Get("ISARRAY") == "true" || HasArray(element),
            element.Get("TOSUBCLASS") != "false",
            element.Get("OVERRIDABLE") != "false",
            ReadScopes(element)};
}

TPropertyDeclaration ReadProperty(const TElement& element) {
    TPropertyDeclaration property;
    property.element = &element;
    property.name = element.Get("NAME");
    property.qualifiers = ReadQualifiers(element);
    property.isReference = element.Is("PROPERTY.REFERENCE");
    property.isArray = element.Is("PROPERTY.ARRAY");
    property.isPropagated = element.Get("PROPAGATED") == "true";
    property.isKey = property.Is("Key");
    if (property.isReference)
        property.referencedClass = element.Get("REFERENCECLASS");
    else
        property.type = LowerName(element.Get("TYPE"));
    return property;
}

TClassDeclaration ReadClass(const TElement& element, const std::string& file) {
    TClassDeclaration declaration;
    declaration.element = &element;
    declaration.name = element.Get("NAME");
    declaration.qualifiers = ReadQualifiers(element);
    declaration.file = file;
    declaration.superclass = element.Get("SUPERCLASS");
    for (const TElement* child : element.children)
        if (IsProperty(*child)) declaration.properties.push_back(ReadProperty(*child));
    for (const TPropertyDeclaration& property : declaration.properties)
        if (!property.isPropagated) declaration.taken.emplace(LowerName(property.name), &property);
    return declaration;
}

template <typename TValue>
const TValue* FindIn(const std::unordered_map<std::string, const TValue*>& map, const std::string& name) {
    const auto found = map.find(LowerName(name));
    return found == map.end() ? nullptr : found->second;
}

template <typename TMap>
std::vector<std::string> NamesIn(const TMap& map) {
    std::vector<std::string> names;
    names.reserve(map.size());
    for (const auto& [key, declaration] : map) names.push_back(declaration->name);
    return names;
}

}  // namespace

std::string LowerName(std::string name) {
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return name;
}

std::string Trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r\n";
    const size_t start = text.find_first_not_of(kBlanks);
    return start == std::string::npos ? "" : text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

bool TQualifierUse::IsTrue() const { return !values.empty() && Trimmed(values.front()) == "true"; }

const TQualifierUse* TCarrier::Find(const std::string& qualifier) const {
    const std::string wanted = LowerName(qualifier);
    for (const TQualifierUse& use : qualifiers)
        if (LowerName(use.name) == wanted) return &use;
    return nullptr;
}

bool TCarrier::Is(const std::string& qualifier) const {
    const TQualifierUse* const use = Find(qualifier);
    return use != nullptr && use->IsTrue();
}

std::vector<std::string> TCarrier::ValuesOf(const std::string& qualifier) const {
    const TQualifierUse* const use = Find(qualifier);
    return use == nullptr ? std::vector<std::string>() : use->values;
}

bool TPropertyDeclaration::IsUnsigned() const { return type.compare(0, 4, "uint") == 0; }
bool TPropertyDeclaration::IsNumber() const {
    return IsUnsigned() || type.compare(0, 4, "sint") == 0 || type.compare(0, 4, "real") == 0;
}

TDocumentSchema::TDocumentSchema(const TMarkup& markup) {
    for (const TElement& element : markup.elements) {
        if (element.Is("QUALIFIER.DECLARATION")) qualifiers.push_back(ReadQualifierDeclaration(element));
        if (element.Is("CLASS")) classes.push_back(ReadClass(element, markup.file));
        if (element.Is("INSTANCE")) instances.push_back(&element);
    }
}

const TClassDeclaration& TKnownSchema::Add(const TClassDeclaration& declaration) {
    return *fClasses.emplace(LowerName(declaration.name), &declaration).first->second;
}

void TKnownSchema::Add(const TQualifierDeclaration& declaration) {
    fQualifiers.emplace(LowerName(declaration.name), &declaration);
}

const TClassDeclaration* TKnownSchema::FindClass(const std::string& name) const { return FindIn(fClasses, name); }

const TQualifierDeclaration* TKnownSchema::FindQualifier(const std::string& name) const {
    return FindIn(fQualifiers, name);
}

std::vector<const TClassDeclaration*> TKnownSchema::Ancestry(const TClassDeclaration& cls) const {
    std::vector<const TClassDeclaration*> ancestry;
    for (const TClassDeclaration* at = &cls; at != nullptr && ancestry.size() < kDeepest;
         at = FindClass(at->superclass))
        ancestry.push_back(at);
    return ancestry;
}

bool TKnownSchema::IsWhole(const std::vector<const TClassDeclaration*>& ancestry) const {
    return ancestry.back()->superclass.empty();
}

const TPropertyDeclaration* TKnownSchema::FindProperty(const std::vector<const TClassDeclaration*>& ancestry,
                                                       const std::string& name) {
    const std::string wanted = LowerName(name);
    for (const TClassDeclaration* cls : ancestry)
        if (const auto found = cls->taken.find(wanted); found != cls->taken.end()) return found->second;
    return nullptr;
}

size_t TKnownSchema::CountOf(const std::vector<const TClassDeclaration*>& ancestry,
                             bool TPropertyDeclaration::*member) {
    size_t count = 0;
    for (const TClassDeclaration* cls : ancestry)
        for (const auto& [name, property] : cls->taken)
            if (property->*member && FindProperty(ancestry, name) == property) ++count;
    return count;
}

bool TKnownSchema::HasClassQualifier(const std::vector<const TClassDeclaration*>& ancestry,
                                     const std::string& name) const {
    const TQualifierDeclaration* const declaration = FindQualifier(name);
    const bool isInherited = declaration == nullptr || declaration->isInherited;
    for (const TClassDeclaration* cls : ancestry) {
        if (const TQualifierUse* const use = cls->Find(name)) return use->IsTrue();
        if (!isInherited) break;
    }
    return false;
}

std::vector<std::string> TKnownSchema::ClassNames() const { return NamesIn(fClasses); }
std::vector<std::string> TKnownSchema::QualifierNames() const { return NamesIn(fQualifiers); }
