#include "render/SchemaText.h"

#include <algorithm>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"
#include "model/Values.h"

namespace {

constexpr size_t kTextWidth = 78;  // longer lines are hard to read, even if the terminal is wider
constexpr const char* kBelowName = "      ";

void PrintWrapped(const std::string& text, const std::string& indent, TOutput& output) {
    if (!text.empty()) output.WriteWrapped(text, indent, kTextWidth);
}

std::string PluginOf(const TCIMClass& cls) {
    const std::string name = QualifierText(cls, "PLUGINNAME");
    return name.empty() ? name : name + " " + QualifierText(cls, "PLUGINVERSION");
}

void PrintTreeLine(const TCIMClass& cls, const std::string& indent, TOutput& output) {
    const std::string& name = cls.GetName();
    const std::string plugin = PluginOf(cls);
    std::string facts = cls.IsAbstract() ? " (abstract)" : "";
    if (cls.IsAssociation()) facts += " (association)";
    if (!plugin.empty()) facts += "  [" + plugin + "]";
    if (ColumnsOf(indent + name + facts) > output.Width()) return PrintWrapped(name + facts, indent, output);
    output.Write(indent + (cls.IsAbstract() ? name : output.Bold(name)) + facts + "\n");
}

void PrintSubclasses(const TCIMClass& parent, const std::string& indent, TOutput& output) {
    std::vector<TCIMClass*> children = parent.EnumerateSubClasses(false);
    SortByName(children);
    for (const TCIMClass* child : children) {
        PrintTreeLine(*child, indent, output);
        PrintSubclasses(*child, indent + "  ", output);
    }
}

std::string TypeText(const TCIMPropertyDecl& declaration) {
    const TCIMValue& value = declaration.GetValue();
    if (const TCIMClass* const target = value.GetReferencedClass()) return "reference to " + target->GetName();
    try {
        return value.GetType().ToString() + (value.IsArray() ? "[]" : "");
    } catch (const TKYRException&) {
        return "of no known type";
    }
}

// The numbers of the qualifier ValueMap with their words of the qualifier Values, such as "0 = Unknown, 1 = Other".
std::string WordsOf(const TCIMPropertyDecl& declaration) {
    std::vector<std::string> words = QualifierTexts(declaration, "Values");
    const std::vector<std::string> numbers = QualifierTexts(declaration, "ValueMap");
    if (!numbers.empty() && numbers.size() != words.size()) return "Values and ValueMap do not fit together.";
    for (size_t i = 0; i < words.size(); ++i)
        words[i] = (numbers.empty() ? std::to_string(i) : numbers[i]) + " = " + words[i];
    return Join(words);
}

std::string FactsOf(const TCIMPropertyDecl& declaration, const TCIMClass& cls) {
    std::string text = TypeText(declaration);
    if (IsKey(declaration)) text += ", key";
    if (const std::string units = QualifierText(declaration, "Units"); !units.empty()) text += ", in " + units;
    if (IsVolatile(declaration)) text += ", volatile";
    if (declaration.GetClass() != &cls) text += ", from " + declaration.GetClass()->GetName();
    return text;
}

void PrintProperty(const TCIMPropertyDecl& declaration, const TCIMClass& cls, TOutput& output) {
    const std::string& name = declaration.GetName();
    const std::string facts = FactsOf(declaration, cls);
    const bool fits = name.size() + facts.size() + 4 <= output.Width();
    output.Write("  " + output.Bold(name) + (fits ? "  " + facts : "") + "\n");
    if (!fits) PrintWrapped(facts, kBelowName, output);
    PrintWrapped(DescriptionOf(declaration), kBelowName, output);
    PrintWrapped(WordsOf(declaration), kBelowName, output);
}

// All qualifiers of the class, except those that are printed on lines of their own.
std::string QualifiersOf(const TCIMClass& cls) {
    std::vector<std::string> texts;
    for (const TCIMQualifier* qualifier : cls.EnumerateQualifiers()) {
        const std::string& name = qualifier->GetName();
        if (name == "Description" || name == "PLUGINNAME" || name == "PLUGINVERSION") continue;
        texts.push_back(name + "=" + PlainText(qualifier->GetValue()));
    }
    return texts.empty() ? "none" : Join(texts);
}

}  // namespace

void PrintClassTree(const TContainer& schema, TOutput& output) { PrintSubclasses(*schema.GetRootClass(), "", output); }

void PrintClass(const TCIMClass& cls, TOutput& output) {
    const std::string superclass = cls.IsRootClass() ? "none" : cls.GetSuperClass()->GetName();
    const std::string plugin = PluginOf(cls);
    output.Write(output.Bold(cls.GetName()) + "\n");
    PrintWrapped(DescriptionOf(cls), "  ", output);
    output.Write("\nSuperclass  " + superclass + "\n");
    output.Write("Plugin      " + (plugin.empty() ? "none" : plugin) + "\n");
    output.Write("Qualifiers  " + QualifiersOf(cls) + "\n\nProperties\n");
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) PrintProperty(*declaration, cls, output);
}
