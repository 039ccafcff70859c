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

constexpr size_t kTextWidth = 78;  // at most
constexpr const char* kBelowName = "      ";

void PrintWrapped(const std::string& text, const std::string& indent, TOutput& output) {
    if (text.empty()) return;
    const size_t width = std::min(kTextWidth, output.Width());
    for (const std::string& line : WrapText(text, width > indent.size() ? width - indent.size() : 1))
        output.Write(indent + line + "\n");
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

// The numbers with the words that they stand for.
std::string WordsOf(const TCIMPropertyDecl& declaration) {
    const std::vector<std::string> words = QualifierTexts(declaration, "Values");
    std::vector<std::string> numbers = QualifierTexts(declaration, "ValueMap");
    if (numbers.empty())
        for (size_t i = 0; i < words.size(); ++i) numbers.push_back(std::to_string(i));
    if (numbers.size() != words.size()) return "Values and ValueMap do not fit together.";
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) text += (i == 0 ? "" : ", ") + numbers[i] + " = " + words[i];
    return text;
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

// Those that have no line of their own.
std::string QualifiersOf(const TCIMClass& cls) {
    std::string text;
    for (const TCIMQualifier* qualifier : cls.EnumerateQualifiers()) {
        const std::string& name = qualifier->GetName();
        if (name == "Description" || name == "PLUGINNAME" || name == "PLUGINVERSION") continue;
        text += (text.empty() ? "" : ", ") + name + "=" + PlainText(qualifier->GetValue());
    }
    return text.empty() ? "none" : text;
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
