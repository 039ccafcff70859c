#include <algorithm>
#include <cctype>
#include <map>

#include "base/NearMatches.h"
#include "base/Text.h"
#include "check/DocumentRules.h"

namespace {

using TAncestry = std::vector<const TClassDeclaration*>;
using TWords = std::vector<std::string>;

const TWords kTypes = {"boolean", "uint8",  "sint8",  "uint16", "sint16", "uint32",  "sint32",
                       "uint64",  "sint64", "real32", "real64", "string", "datetime"};

// What other languages call types.
const std::map<std::string, const char*> kTypesElsewhere = {
    {"int", "sint32"},      {"integer", "sint32"},     {"short", "sint16"}, {"long", "sint64"},   {"byte", "uint8"},
    {"unsigned", "uint32"}, {"bool", "boolean"},       {"float", "real32"}, {"double", "real64"}, {"real", "real64"},
    {"number", "uint64"},   {"text", "string"},        {"str", "string"},   {"char", "string"},   {"date", "datetime"},
    {"time", "datetime"},   {"timestamp", "datetime"}, {"char16", "string"}};

std::string RemedyForType(const std::string& type) {
    if (EndsWith(type, "[]")) return "declare it as PROPERTY.ARRAY with the type " + type.substr(0, type.size() - 2);
    if (StartsWith(LowerName(type), "ref")) return "declare it as PROPERTY.REFERENCE with a REFERENCECLASS";
    const auto elsewhere = kTypesElsewhere.find(LowerName(type));
    if (elsewhere != kTypesElsewhere.end() && elsewhere->second == std::string("sint32"))
        return "write uint32, or sint32 if it may be below 0";
    if (elsewhere != kTypesElsewhere.end()) return std::string("write ") + elsewhere->second;
    return NearestOr(type, kTypes, "the types are " + Join(kTypes));
}

bool IsType(const std::string& type) { return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end(); }

bool IsName(const std::string& name) {
    const auto isPart = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; };
    return !name.empty() && std::isdigit(static_cast<unsigned char>(name[0])) == 0 &&
           std::all_of(name.begin(), name.end(), isPart);
}

std::string TypeText(const TPropertyDeclaration& property) {
    if (property.isReference) return "reference";
    return property.type + (property.isArray ? "[]" : "");
}

// Such as "EX_Pool", whose first part tells it from classes of others.
bool HasSchemaName(const std::string& cls) {
    const size_t underscore = cls.find('_');
    return underscore != 0 && underscore != std::string::npos && underscore + 1 < cls.size();
}

bool IsReal(const std::string& type) { return StartsWith(type, "real"); }

// An association is a class, too, and a reference a property.
TWords ScopesOf(const TElement& carrier) {
    if (carrier.Is("CLASS")) return {"class", "association", "indication"};
    if (carrier.Is("PROPERTY.REFERENCE")) return {"property", "reference"};
    return {"property"};
}

bool IsInScope(const TElement& carrier, const TQualifierDeclaration& declaration) {
    const TWords allowed = ScopesOf(carrier);
    const auto isAllowed = [&allowed](std::string_view scope) {
        return std::find(allowed.begin(), allowed.end(), LowerName(std::string(scope))) != allowed.end();
    };
    return declaration.scopes.empty() || std::any_of(declaration.scopes.begin(), declaration.scopes.end(), isAllowed);
}

class TSchemaCheck {
public:
    TSchemaCheck(const TMarkup& markup, TKnownSchema& known, TFindings& findings)
        : fMarkup(markup), fKnown(known), fFindings(findings) {}

    void Check(const TDocumentSchema& document) {
        for (const TClassDeclaration& cls : document.classes) fOwn.emplace(LowerName(cls.name), &cls);
        for (const TClassDeclaration& cls : document.classes) {
            AddQualifiers(document, cls.element->line);
            CheckClass(cls);
            fKnown.Add(cls);
        }
        AddQualifiers(document, static_cast<size_t>(-1));
        for (const TElement* instance : document.instances) CheckInstance(*instance);
    }

private:
    void Add(const char* rule, const TElement& element, const std::string& text, const std::string& remedy) {
        fFindings.Add(rule, fMarkup.PlaceOf(element), text, remedy);
    }
    bool CountsOnly(const char* rule) { return fFindings.CountsOnly(rule, fMarkup.file); }

    // Those that are declared up to the line.
    void AddQualifiers(const TDocumentSchema& document, size_t line) {
        for (; fQualifiers < document.qualifiers.size() && document.qualifiers[fQualifiers].element->line <= line;
             ++fQualifiers) {
            const TQualifierDeclaration& declaration = document.qualifiers[fQualifiers];
            CheckName(*declaration.element, declaration.name);
            CheckType(*declaration.element);
            CheckValuesIn(*declaration.element, declaration.type, "the qualifier " + declaration.name);
            fKnown.Add(declaration);
        }
    }

    void CheckName(const TElement& element, const std::string& name) {
        if (!IsName(name) && !CountsOnly("S27"))
            Add("S27", element,
                name.empty() ? std::string(element.name) + " has no NAME" : Quoted(name) + " is no name of CIM",
                "use letters, digits and underscores, no digit first");
    }

    void CheckType(const TElement& element) {
        const std::string type = element.Get("TYPE");
        if (IsType(LowerName(type)) || CountsOnly("S26")) return;
        const std::string what = "the type of " + Quoted(element.Get("NAME"));
        Add("S26", element, type.empty() ? what + " is missing" : what + ", " + Quoted(type) + ", is not known",
            type.empty() ? "add TYPE=\"...\": " + Join(kTypes) : RemedyForType(type));
    }

    // The values right in the element, and those in its array.
    void CheckValuesIn(const TElement& element, const std::string& type, const std::string& of) {
        for (const TElement* child : element.children) {
            if (child->Is("VALUE.ARRAY")) CheckValuesIn(*child, type, of);
            if (!child->Is("VALUE")) continue;
            const std::string fault = FaultOfValue(type, child->text);
            if (!fault.empty() && !CountsOnly("S24"))
                Add("S24", *child, "the value " + Quoted(child->text) + " of " + of + " " + fault,
                    "write a value of the type " + type);
        }
    }

    // Classes

    void CheckClass(const TClassDeclaration& cls) {
        CheckName(*cls.element, cls.name);
        if (IsName(cls.name) && !HasSchemaName(cls.name) && !CountsOnly("S16"))
            Add("S16", *cls.element, "the class " + Quoted(cls.name) + " has no name of a schema in front",
                "name it after you or your product, as in EX_" + cls.name);
        CheckDeclaredOnce(cls);
        CheckSuperclass(cls);
        CheckQualifiers(cls);
        for (const TQualifierUse& use : cls.qualifiers) CheckFixed(cls, use);
        CheckDescription(cls, "class " + cls.name);
        CheckDescriptionIsOwn(cls);
        const TAncestry ancestry = fKnown.Ancestry(cls);
        for (const TPropertyDeclaration& property : cls.properties) CheckProperty(cls, ancestry, property);
        if (!fKnown.IsWhole(ancestry)) return;
        CheckKeys(cls, ancestry);
        CheckEnds(cls, ancestry);
    }

    void CheckDeclaredOnce(const TClassDeclaration& cls) {
        const TClassDeclaration* const other = fKnown.FindClass(cls.name);
        if (other == nullptr || cls.name.empty()) return;
        Add("S01", *cls.element,
            "class " + cls.name + " is already declared in " +
                (other->file == fMarkup.file ? "line " : other->file + ":") + std::to_string(other->element->line),
            "remove one of the two, or give this one another name");
    }

    void CheckSuperclass(const TClassDeclaration& cls) {
        if (cls.superclass.empty() || fKnown.FindClass(cls.superclass) != nullptr) return;
        CheckIsInFront("S02", *cls.element, "the superclass " + Quoted(cls.superclass) + " of class " + cls.name,
                       cls.superclass);
    }

    // The class is not known here: it may stand further down.
    void CheckIsInFront(const char* rule, const TElement& element, const std::string& what, const std::string& cls) {
        if (CountsOnly(rule)) return;
        const auto own = fOwn.find(LowerName(cls));
        if (own != fOwn.end())
            Add(rule, element, what + " stands behind it, in line " + std::to_string(own->second->element->line),
                "move it in front");
        else
            Add(rule, element, what + " is not known", NearestClassOr(cls, "declare it in front, or mend the name"));
    }

    std::string NearestClassOr(const std::string& cls, const std::string& otherwise) const {
        TWords names = fKnown.ClassNames();
        for (const auto& [name, declaration] : fOwn) names.push_back(declaration->name);
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        return NearestOr(cls, names, otherwise);
    }

    void CheckKeys(const TClassDeclaration& cls, const TAncestry& ancestry) {
        if (IsAbstract(ancestry) || fKnown.CountOf(ancestry, &TPropertyDeclaration::isKey) > 0) return;
        Add("S03", *cls.element, "class " + cls.name + " has no key",
            "add the qualifier Key with the value true to what identifies an instance, or make the class abstract");
    }

    bool IsAbstract(const TAncestry& ancestry) const { return fKnown.HasClassQualifier(ancestry, "Abstract"); }
    bool IsAssociation(const TAncestry& ancestry) const { return fKnown.HasClassQualifier(ancestry, "Association"); }

    void CheckEnds(const TClassDeclaration& cls, const TAncestry& ancestry) {
        if (!IsAssociation(ancestry)) return;
        const size_t count = fKnown.CountOf(ancestry, &TPropertyDeclaration::isReference);
        if (count < 2)
            Add("S12", *cls.element,
                "the association " + cls.name + " has " + (count == 0 ? "no reference" : "one reference"),
                "declare both ends with PROPERTY.REFERENCE");
        const auto isKeyOfAnEnd = [](const TPropertyDeclaration& property) {
            return property.isReference && property.isKey;
        };
        if (count >= 2 && std::none_of(cls.properties.begin(), cls.properties.end(), isKeyOfAnEnd) &&
            cls.superclass.empty())
            Add("S15", *cls.element, "no reference of the association " + cls.name + " is a key",
                "add the qualifier Key with the value true to those that tell the links apart");
    }

    // Properties

    void CheckProperty(const TClassDeclaration& cls, const TAncestry& ancestry, const TPropertyDeclaration& property) {
        CheckName(*property.element, property.name);
        if (!property.isReference) CheckType(*property.element);
        CheckQualifiers(property);
        CheckValuesIn(*property.element, property.type, cls.name + "." + property.name);
        if (property.isPropagated || property.name.empty()) return;
        CheckDescription(property, "property " + cls.name + "." + property.name);
        CheckSpelling(cls, property);
        CheckKeyType(cls, property);
        CheckOverride(cls, ancestry, property);
        if (property.isReference) CheckReference(cls, ancestry, property);
    }

    void CheckSpelling(const TClassDeclaration& cls, const TPropertyDeclaration& property) {
        const bool isSmall = std::islower(static_cast<unsigned char>(property.name[0])) != 0;
        if ((isSmall || property.name.find('_') != std::string::npos) && !CountsOnly("S17"))
            Add("S17", *property.element,
                "property " + cls.name + "." + property.name + " is not spelled as others are",
                "begin each word with a capital, without underscores: FreeSpace");
    }

    void CheckKeyType(const TClassDeclaration& cls, const TPropertyDeclaration& property) {
        if (property.isKey && (property.isArray || IsReal(property.type)))
            Add("S22", *property.element, "the key " + cls.name + "." + property.name + " is " + TypeText(property),
                "use a text or a whole number as key");
    }

    void CheckDescription(const TCarrier& carrier, const std::string& what) {
        const TWords texts = carrier.ValuesOf("Description");
        if ((texts.empty() || Trimmed(texts.front()).empty()) && !CountsOnly("S19"))
            Add("S19", *carrier.element, what + " has no Description", "say in a sentence what it is");
    }

    void CheckDescriptionIsOwn(const TClassDeclaration& cls) {
        const TClassDeclaration* const superclass = fKnown.FindClass(cls.superclass);
        const TWords texts = cls.ValuesOf("Description");
        if (superclass != nullptr && !texts.empty() && texts == superclass->ValuesOf("Description") &&
            !CountsOnly("S20"))
            Add("S20", *cls.element, "class " + cls.name + " has the Description of " + superclass->name,
                "say what is different about it");
    }

    void CheckOverride(const TClassDeclaration& cls, const TAncestry& ancestry, const TPropertyDeclaration& property) {
        const bool overrides = property.Find("Override") != nullptr;
        const std::string name = cls.name + "." + property.name;
        const auto first = cls.taken.find(LowerName(property.name));
        if (first != cls.taken.end() && first->second != &property)
            return Add(
                "S07", *property.element,
                "property " + name + " is already declared in line " + std::to_string(first->second->element->line),
                "remove one of them");
        const TAncestry above(ancestry.begin() + 1, ancestry.end());
        const TPropertyDeclaration* const inherited = TKnownSchema::FindProperty(above, property.name);
        if (inherited != nullptr && inherited->name != property.name && !CountsOnly("S18"))
            Add("S18", *property.element, "property " + name + " is spelled " + inherited->name + " in its superclass",
                "write " + inherited->name);
        if (inherited != nullptr && overrides) return CheckOverridden(name, property, *inherited);
        if (inherited != nullptr)
            return Add("S07", *property.element,
                       "property " + name + " is inherited, and declared again without Override",
                       "add the qualifier Override with the value " + property.name + ", or remove the property");
        if (overrides && fKnown.IsWhole(ancestry))
            Add("S06", *property.element, "property " + name + " overrides nothing: no superclass has it",
                NearestOr(property.name, NamesOf(above), "remove the qualifier Override, or mend the name"));
    }

    static TWords NamesOf(const TAncestry& ancestry) {
        TWords names;
        for (const TClassDeclaration* cls : ancestry)
            for (const auto& [key, property] : cls->taken) names.push_back(property->name);
        return names;
    }

    void CheckOverridden(const std::string& name, const TPropertyDeclaration& property,
                         const TPropertyDeclaration& inherited) {
        if (TypeText(property) != TypeText(inherited))
            Add("S05", *property.element,
                "property " + name + " is " + TypeText(property) + ", and what it overrides is " + TypeText(inherited),
                "use the inherited type");
        if (inherited.isKey && !property.isKey)
            Add("S04", *property.element, "property " + name + " overrides a key, and is no key",
                "add the qualifier Key with the value true");
    }

    void CheckReference(const TClassDeclaration& cls, const TAncestry& ancestry, const TPropertyDeclaration& property) {
        const std::string name = cls.name + "." + property.name;
        if (fKnown.IsWhole(ancestry) && !IsAssociation(ancestry))
            Add("S13", *property.element,
                "property " + name + " is a reference, and " + cls.name + " is no association",
                "add the qualifier Association with the value true to the class, in front of its properties");
        if (property.referencedClass.empty())
            return Add("S14", *property.element, "property " + name + " has no REFERENCECLASS",
                       "name the class it refers to");
        if (fKnown.FindClass(property.referencedClass) == nullptr)
            CheckIsInFront("S14", *property.element,
                           "class " + Quoted(property.referencedClass) + ", which " + name + " refers to,",
                           property.referencedClass);
    }

    // Qualifiers

    // Also those that are propagated: the reader looks them up all the same.
    void CheckQualifiers(const TCarrier& carrier) {
        for (const TElement* child : carrier.element->children)
            if (child->Is("QUALIFIER")) CheckQualifier(carrier, *child);
    }

    void CheckQualifier(const TCarrier& carrier, const TElement& element) {
        const std::string name = element.Get("NAME"), type = LowerName(element.Get("TYPE"));
        CheckType(element);
        CheckValuesIn(element, type, "the qualifier " + name + " of " + carrier.name);
        const TQualifierDeclaration* const declaration = fKnown.FindQualifier(name);
        if (declaration == nullptr && !CountsOnly("S08"))
            Add("S08", element, "the qualifier " + Quoted(name) + " of '" + carrier.name + "' is not declared",
                NearestOr(name, fKnown.QualifierNames(),
                          "declare it with QUALIFIER.DECLARATION in front of the classes"));
        if (declaration == nullptr) return;
        if (IsType(type)) CheckDeclaredType(element, *declaration);
        if (!IsInScope(*carrier.element, *declaration) && !CountsOnly("S09"))
            Add("S09", element,
                "the qualifier '" + declaration->name + "' of '" + carrier.name + "' is declared for other things (" +
                    LowerName(std::string(declaration->scopes.front())) + ")",
                "move it to what it tells of, or remove it");
    }

    void CheckDeclaredType(const TElement& element, const TQualifierDeclaration& declaration) {
        bool hasArray = false, hasValue = false;
        for (const TElement* child : element.children) {
            hasArray |= child->Is("VALUE.ARRAY");
            hasValue |= child->Is("VALUE");
        }
        const std::string type = LowerName(element.Get("TYPE")) + (hasArray ? "[]" : "");
        const std::string wanted = declaration.type + (declaration.isArray && (hasArray || hasValue) ? "[]" : "");
        if (type != wanted)
            Add("S10", element, "the qualifier '" + declaration.name + "' is " + type + ", and declared as " + wanted,
                declaration.isArray && !hasArray ? "put the values into VALUE.ARRAY" : "use the declared type");
    }

    // An inherited qualifier that is not overridable keeps its value.
    void CheckFixed(const TClassDeclaration& cls, const TQualifierUse& use) {
        const TQualifierDeclaration* const declaration = fKnown.FindQualifier(use.name);
        if (declaration == nullptr || declaration->isOverridable || !declaration->isInherited) return;
        const TAncestry ancestry = fKnown.Ancestry(cls);
        for (size_t i = 1; i < ancestry.size() && fLookUpsLeft > 0; ++i, --fLookUpsLeft) {
            const TQualifierUse* const inherited = ancestry[i]->Find(use.name);
            if (inherited == nullptr) continue;
            if (inherited->values != use.values && !CountsOnly("S11"))
                Add("S11", *use.element,
                    "the qualifier " + use.name + " of " + cls.name + " has another value than in " +
                        ancestry[i]->name + ", which fixes it",
                    "remove it, or use another superclass");
            return;
        }
    }

    // Instances

    void CheckInstance(const TElement& instance) {
        const std::string name = instance.Get("CLASSNAME");
        const TClassDeclaration* const cls = fKnown.FindClass(name);
        if (cls == nullptr) {
            if (!CountsOnly("S28"))
                Add("S28", instance, "the class " + Quoted(name) + " of an instance is not known",
                    NearestClassOr(name, "declare it in front"));
            return;
        }
        const TAncestry ancestry = fKnown.Ancestry(*cls);
        if (!fKnown.IsWhole(ancestry)) return;
        for (const TElement* child : instance.children)
            if (IsProperty(*child)) CheckValue(*child, ancestry);
        CheckKeyValues(instance, ancestry);
    }

    // An instance without all keys is refused, and of two with the same ones only the first is found.
    void CheckKeyValues(const TElement& instance, const TAncestry& ancestry) {
        std::string path = LowerName(ancestry.front()->name);
        for (const auto& [key, property] : KeysOf(ancestry)) {
            const TElement* const value = FindValue(instance, key);
            if (value == nullptr) return RefuseKeyless(instance, ancestry.front()->name, property->name);
            if (value->Is("VALUE.REFERENCE")) return;
            path += '\n' + key + '=' + value->text;
        }
        const auto [first, isNew] = fPaths.emplace(path, instance.line);
        if (!isNew)
            Add("S29", instance,
                "this instance of " + ancestry.front()->name + " has the keys of the one in line " +
                    std::to_string(first->second),
                "give it a key of its own");
    }

    void RefuseKeyless(const TElement& instance, const std::string& cls, const std::string& key) {
        if (!CountsOnly("S28"))
            Add("S28", instance, "an instance of " + cls + " has no value for the key '" + key + "'",
                "add a PROPERTY with its value");
    }

    // By their names in lower case. A key may have its value by default.
    static std::map<std::string, const TPropertyDeclaration*> KeysOf(const TAncestry& ancestry) {
        std::map<std::string, const TPropertyDeclaration*> keys;
        for (const TClassDeclaration* cls : ancestry)
            for (const auto& [name, property] : cls->taken)
                if (property->isKey && TKnownSchema::FindProperty(ancestry, name) == property &&
                    FindIn(*property->element) == nullptr)
                    keys.emplace(name, property);
        return keys;
    }

    static const TElement* FindIn(const TElement& property) {
        for (const TElement* child : property.children)
            if (child->Is("VALUE") || child->Is("VALUE.REFERENCE")) return child;
        return nullptr;
    }

    static const TElement* FindValue(const TElement& instance, const std::string& lowerName) {
        for (const TElement* child : instance.children)
            if (IsProperty(*child) && LowerName(child->Get("NAME")) == lowerName) return FindIn(*child);
        return nullptr;
    }

    void CheckValue(const TElement& element, const TAncestry& ancestry) {
        const std::string name = element.Get("NAME"), cls = ancestry.front()->name;
        const TPropertyDeclaration* const declaration = TKnownSchema::FindProperty(ancestry, name);
        if (declaration == nullptr) {
            if (!CountsOnly("S28"))
                Add("S28", element, "class " + cls + " has no property " + Quoted(name),
                    NearestOr(name, NamesOf(ancestry), "mend the name"));
            return;
        }
        if (element.Is("PROPERTY") && LowerName(element.Get("TYPE")) != declaration->type)
            Add("S28", element,
                "the value of " + cls + "." + name + " has the type '" + element.Get("TYPE") +
                    "', and is declared as " + declaration->type,
                "write TYPE=\"" + declaration->type + "\"");
        CheckValuesIn(element, declaration->type, cls + "." + name);
    }

    const TMarkup& fMarkup;
    TKnownSchema& fKnown;
    TFindings& fFindings;
    std::map<std::string, const TClassDeclaration*> fOwn;
    std::map<std::string, size_t> fPaths;  // of instances, with their lines
    size_t fLookUpsLeft = 200'000;         // of fixed qualifiers: a document may be made to need too many
    size_t fQualifiers = 0;                // that many of the document's are known
};

}  // namespace

std::string NearestOr(const std::string& word, const std::vector<std::string>& words, const std::string& otherwise) {
    constexpr size_t kLongest = 100;
    if (word.empty() || word.size() > kLongest) return otherwise;
    for (const std::string& same : words)
        if (LowerName(same) == LowerName(word)) return "write '" + same + "'";
    const std::vector<std::string> near = FindNearMatches(word, words);
    return near.empty() ? otherwise : "did you mean '" + Join(near, "' or '") + "'?";
}

void CheckSchema(const TMarkup& markup, const TDocumentSchema& document, TKnownSchema& known, TFindings& findings) {
    TSchemaCheck(markup, known, findings).Check(document);
}
