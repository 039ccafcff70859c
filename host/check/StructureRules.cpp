#include <algorithm>
#include <map>
#include <string_view>

#include "base/Text.h"
#include "check/DocumentRules.h"

namespace {

using TWords = std::vector<std::string_view>;

const TWords kPaths = {"CLASSPATH", "LOCALCLASSPATH", "INSTANCEPATH", "LOCALINSTANCEPATH"};

// The elements that take others, with these. What is missing takes none.
const std::map<std::string_view, TWords>& TakenBy() {
    static const std::map<std::string_view, TWords> kTaken = {
        {"CIM", {"DECLARATION", "MESSAGE"}},
        {"DECLARATION", {"DECLGROUP", "DECLGROUP.WITHNAME", "DECLGROUP.WITHPATH"}},
        {"DECLGROUP", {"NAMESPACEPATH", "LOCALNAMESPACEPATH", "QUALIFIER.DECLARATION", "VALUE.OBJECT"}},
        {"DECLGROUP.WITHNAME", {"NAMESPACEPATH", "LOCALNAMESPACEPATH", "QUALIFIER.DECLARATION", "VALUE.NAMEDOBJECT"}},
        {"DECLGROUP.WITHPATH", {"VALUE.OBJECTWITHPATH", "VALUE.OBJECTWITHLOCALPATH"}},
        {"QUALIFIER.DECLARATION", {"SCOPE", "VALUE", "VALUE.ARRAY"}},
        {"VALUE.OBJECT", {"CLASS", "INSTANCE"}},
        {"VALUE.NAMEDOBJECT", {"CLASS", "INSTANCENAME", "INSTANCE"}},
        {"VALUE.OBJECTWITHPATH", {"CLASSPATH", "INSTANCEPATH", "CLASS", "INSTANCE"}},
        {"VALUE.OBJECTWITHLOCALPATH", {"LOCALCLASSPATH", "LOCALINSTANCEPATH", "CLASS", "INSTANCE"}},
        {"VALUE.ARRAY", {"VALUE"}},
        {"VALUE.REFERENCE",
         {"CLASSPATH", "LOCALCLASSPATH", "CLASSNAME", "INSTANCEPATH", "LOCALINSTANCEPATH", "INSTANCENAME"}},
        {"NAMESPACEPATH", {"HOST", "LOCALNAMESPACEPATH"}},
        {"LOCALNAMESPACEPATH", {"NAMESPACE"}},
        {"CLASSPATH", {"NAMESPACEPATH", "CLASSNAME"}},
        {"LOCALCLASSPATH", {"LOCALNAMESPACEPATH", "CLASSNAME"}},
        {"INSTANCEPATH", {"NAMESPACEPATH", "INSTANCENAME"}},
        {"LOCALINSTANCEPATH", {"LOCALNAMESPACEPATH", "INSTANCENAME"}},
        {"INSTANCENAME", {"KEYBINDING", "KEYVALUE", "VALUE.REFERENCE"}},
        {"KEYBINDING", {"KEYVALUE", "VALUE.REFERENCE"}},
        {"CLASS", {"QUALIFIER", "PROPERTY", "PROPERTY.ARRAY", "PROPERTY.REFERENCE", "METHOD"}},
        {"INSTANCE", {"QUALIFIER", "PROPERTY", "PROPERTY.ARRAY", "PROPERTY.REFERENCE"}},
        {"QUALIFIER", {"VALUE", "VALUE.ARRAY"}},
        {"PROPERTY", {"QUALIFIER", "VALUE"}},
        {"PROPERTY.ARRAY", {"QUALIFIER", "VALUE.ARRAY"}},
        {"PROPERTY.REFERENCE", {"QUALIFIER", "VALUE.REFERENCE"}},
        {"MESSAGE", {"SIMPLEREQ", "MULTIREQ"}},
        {"MULTIREQ", {"SIMPLEREQ"}},
        {"SIMPLEREQ", {"IMETHODCALL"}},
        {"IMETHODCALL", {"LOCALNAMESPACEPATH", "IPARAMVALUE"}},
        {"IPARAMVALUE", {"CLASS", "INSTANCE"}},
    };
    return kTaken;
}

// The elements with attributes that the reader heeds or a schema may have.
const std::map<std::string_view, TWords>& AttributesOf() {
    static const std::map<std::string_view, TWords> kAttributes = {
        {"CLASS", {"NAME", "SUPERCLASS"}},
        {"INSTANCE", {"CLASSNAME"}},
        {"PROPERTY", {"NAME", "TYPE", "CLASSORIGIN", "PROPAGATED", "EMBEDDEDOBJECT"}},
        {"PROPERTY.ARRAY", {"NAME", "TYPE", "ARRAYSIZE", "CLASSORIGIN", "PROPAGATED", "EMBEDDEDOBJECT"}},
        {"PROPERTY.REFERENCE", {"NAME", "REFERENCECLASS", "CLASSORIGIN", "PROPAGATED"}},
        {"QUALIFIER", {"NAME", "TYPE", "PROPAGATED", "OVERRIDABLE", "TOSUBCLASS", "TOINSTANCE", "TRANSLATABLE"}},
        {"QUALIFIER.DECLARATION",
         {"NAME", "TYPE", "ISARRAY", "ARRAYSIZE", "OVERRIDABLE", "TOSUBCLASS", "TOINSTANCE", "TRANSLATABLE"}},
    };
    return kAttributes;
}

std::string UpperName(std::string_view name) {
    std::string upper(name);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

bool Has(const TWords& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

class TStructureCheck {
public:
    TStructureCheck(const TMarkup& markup, TFindings& findings) : fMarkup(markup), fFindings(findings) {}

    void Check() {
        if (fMarkup.isCut)
            fFindings.Add("D16", {fMarkup.file},
                          "there is too much in the document, or too much wrong: its end was not checked",
                          "mend what is told first, and split the document if it is that large");
        const TElement* const root = fMarkup.Root();
        if (root == nullptr && fFindings.HasErrorIn(fMarkup.file)) return;
        if (root != nullptr && !root->Is("CIM"))
            return Add("D17", *root, "the root element is " + Quoted(root->name) + ", not CIM",
                       "put all into <CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">");
        if (root == nullptr)
            return fFindings.Add("D17", {fMarkup.file, 1}, "there is no element in the document", "write the document");
        CheckVersion(*root, "CIMVERSION", {"2.0", "2.8"});
        CheckVersion(*root, "DTDVERSION", {"2.0", "2.1"});
        for (const TElement& element : fMarkup.elements) CheckElement(element);
    }

private:
    void Add(const char* rule, const TElement& element, const std::string& text, const std::string& remedy) {
        if (!fFindings.CountsOnly(rule, fMarkup.file)) fFindings.Add(rule, fMarkup.PlaceOf(element), text, remedy);
    }

    void CheckVersion(const TElement& root, const char* attribute, const TWords& versions) {
        if (!root.Has(attribute) || Has(versions, root.Get(attribute))) return;
        Add("D17", root, "the reader does not know " + std::string(attribute) + " " + root.Get(attribute),
            "write " + std::string(attribute) + "=\"" + std::string(versions[0]) + "\"");
    }

    void CheckElement(const TElement& element) {
        if (element.parent != nullptr) CheckPlace(element, *element.parent);
        CheckAttributes(element);
        if (element.Is("SCOPE")) CheckScope(element);
        if (element.Is("CLASS")) CheckOrder(element);
        if (element.Is("DECLGROUP")) CheckGroup(element);
        if (element.Is("QUALIFIER.DECLARATION")) CheckDeclaration(element);
        if (element.Is("VALUE.OBJECT")) CheckObject(element);
        CheckText(element);
    }

    // Those with a colon, such as xml:lang, belong to others than the reader.
    void CheckAttributes(const TElement& element) {
        const auto known = AttributesOf().find(UpperName(element.name));
        if (known == AttributesOf().end()) return;
        for (const TAttribute& attribute : element.attributes) {
            const std::string name = UpperName(attribute.name);
            if (Has(known->second, name) || name.find(':') != std::string::npos) continue;
            const std::vector<std::string> words(known->second.begin(), known->second.end());
            Add("D21", element,
                "the reader does not know the attribute " + Quoted(attribute.name) + " of " + Quoted(element.name),
                NearestOr(name, words, "remove it; it may be one of " + Join(words)));
        }
    }

    void CheckText(const TElement& element) {
        const std::string name = UpperName(element.name);
        if (name == "VALUE" || name == "KEYVALUE" || name == "HOST" || TakenBy().count(name) == 0) return;
        const std::string text = Trimmed(element.text);
        if (text.empty()) return;
        Add("D19", element, "the text " + Quoted(text) + " in " + Quoted(element.name) + " is not read",
            "put values into VALUE, and the rest into comments");
    }

    void CheckPlace(const TElement& element, const TElement& parent) {
        const std::string name = UpperName(element.name), parentName = UpperName(parent.name);
        if (name == "METHOD")
            return Add("D08", element, "the method '" + element.Get("NAME") + "' takes the place of its class",
                       "remove it");
        if (parentName == "METHOD") return;
        if (parentName == "VALUE")
            return Add("D11", element, Quoted(element.name) + " in a VALUE ends the value",
                       "write < as &lt;, or put each value into a VALUE of its own");
        if (parentName == "SCOPE")
            return Add("D10", element, Quoted(element.name) + " in SCOPE ends the declaration",
                       "write SCOPE as an empty element: <SCOPE ... />");
        if (parentName == "VALUE.REFERENCE" && Has(kPaths, name))
            return Add("D13", element, "the reference names its object by " + Quoted(element.name),
                       "leave the path out: <VALUE.REFERENCE><INSTANCENAME ...>");
        CheckTaken(element, parent);
    }

    void CheckTaken(const TElement& element, const TElement& parent) {
        const std::string name = UpperName(element.name), parentName = UpperName(parent.name);
        const auto taken = TakenBy().find(parentName);
        if (taken == TakenBy().end()) {
            if (IsKnown(parentName))
                Add("D18", element, Quoted(parent.name) + " takes no elements, such as " + Quoted(element.name),
                    "remove it");
            return;
        }
        if (Has(taken->second, name)) return;
        std::vector<std::string> words;
        for (const std::string_view word : taken->second) words.emplace_back(word);
        Add("D18", element, Quoted(parent.name) + " takes no " + Quoted(element.name),
            NearestOr(name, words, "it takes " + Join(words)));
    }

    // What stands in an unknown element is not told again.
    static bool IsKnown(std::string_view name) {
        for (const auto& [parent, children] : TakenBy())
            if (Has(children, name)) return true;
        return false;
    }

    void CheckScope(const TElement& scope) {
        for (const TAttribute& attribute : scope.attributes)
            if (attribute.value != "true")
                Add("D10", scope,
                    std::string(attribute.name) + "=\"" + std::string(attribute.value) + "\" in SCOPE counts as true",
                    "leave it out");
    }

    void CheckOrder(const TElement& cls) {
        bool hasProperty = false;
        for (const TElement* child : cls.children) {
            hasProperty |= IsProperty(*child);
            if (hasProperty && child->Is("QUALIFIER"))
                Add("D12", *child,
                    "the qualifier '" + child->Get("NAME") + "' of class " + cls.Get("NAME") +
                        " stands behind a property",
                    "move it in front of the first property");
        }
    }

    void CheckGroup(const TElement& group) {
        bool hasObject = false;
        for (const TElement* child : group.children) {
            hasObject |= child->Is("VALUE.OBJECT");
            if (hasObject && child->Is("QUALIFIER.DECLARATION"))
                Add("D18", *child,
                    "the declaration of the qualifier '" + child->Get("NAME") + "' stands behind a VALUE.OBJECT",
                    "move it in front of the first VALUE.OBJECT");
        }
    }

    void CheckDeclaration(const TElement& declaration) {
        bool hasArray = false;
        for (const TElement* child : declaration.children) hasArray |= child->Is("VALUE.ARRAY");
        const std::string name = "the declaration of the qualifier '" + declaration.Get("NAME") + "'";
        if (!declaration.children.empty() && !declaration.children.front()->Is("SCOPE"))
            Add("D18", declaration, name + " does not begin with SCOPE", "put <SCOPE .../> in front of its value");
        if (hasArray && !declaration.Has("ARRAYSIZE"))
            Add("D17", declaration, name + " has values of an array and no ARRAYSIZE",
                "add ARRAYSIZE, and leave ISARRAY out");
        if (hasArray && declaration.Has("ISARRAY"))
            Add("D17", declaration, name + " has values of an array and ISARRAY",
                "add ARRAYSIZE, and leave ISARRAY out");
    }

    void CheckObject(const TElement& object) {
        if (object.children.empty())
            Add("D18", object, "'VALUE.OBJECT' is empty", "put a CLASS or an INSTANCE into it, or remove it");
        if (object.children.size() > 1)
            Add("D18", *object.children[1], "'VALUE.OBJECT' takes one CLASS or INSTANCE",
                "give each one a VALUE.OBJECT of its own");
    }

    const TMarkup& fMarkup;
    TFindings& fFindings;
};

}  // namespace

void CheckStructure(const TMarkup& markup, TFindings& findings) { TStructureCheck(markup, findings).Check(); }
