#include "Schema.h"

#include <sstream>

#include "ClassNames.h"
#include "Session.h"
#include "Values.h"
#include "VisibleText.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"

namespace {

constexpr size_t kTextWidth = 78;

// The text of a string qualifier; empty if it has none.
template <typename TCarrier>
std::string QualifierText(const TCarrier& carrier, const char* name) {
    const TCIMQualifier* const qualifier = carrier.FindQualifier(name);
    if (qualifier == nullptr || qualifier->GetValue().GetType() != TCIMValue::TCIMType::eCIMString) return "";
    const TCIMValue value = qualifier->GetValue();
    return value.IsNull() ? "" : VisibleText(static_cast<std::string>(value));
}

// Descriptions come with the line ends and blanks of their documents.
template <typename TCarrier>
std::string DescriptionOf(const TCarrier& carrier, const std::string& indent) {
    const TCIMQualifier* const qualifier = carrier.FindQualifier("Description");
    if (qualifier == nullptr || qualifier->GetValue().IsNull() || qualifier->IsArray()) return "";
    std::istringstream words(qualifier->GetValue().ToString(10));
    std::string text, line, word;
    while (words >> word) {
        word = VisibleText(word);
        if (!line.empty() && indent.size() + line.size() + 1 + word.size() > kTextWidth) {
            text += indent + line + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    return line.empty() ? text : text + indent + line + "\n";
}

std::string PluginOf(const TCIMClass& cls) {
    const std::string name = QualifierText(cls, "PLUGINNAME");
    return name.empty() ? name : name + " " + QualifierText(cls, "PLUGINVERSION");
}

std::string TreeLine(const TCIMClass& cls, const TOutput& output) {
    std::string line = cls.IsAbstract() ? cls.GetName() : output.Bold(cls.GetName());
    if (cls.IsAbstract()) line += " (abstract)";
    if (cls.IsAssociation()) line += " (association)";
    const std::string plugin = PluginOf(cls);
    return plugin.empty() ? line : line + "  [" + plugin + "]";
}

void PrintTree(const TCIMClass& parent, const std::string& indent, TOutput& output) {
    std::vector<TCIMClass*> children = parent.EnumerateSubClasses(false);
    SortByName(children);
    for (const TCIMClass* child : children) {
        output.Write(indent + TreeLine(*child, output) + "\n");
        PrintTree(*child, indent + "  ", output);
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

bool IsKey(const TCIMPropertyDecl& declaration) {
    const TCIMQualifier* const key = declaration.FindQualifier("Key");
    return key != nullptr && !key->GetValue().IsNull() && key->GetValue() == TCIMValue(true);
}

void PrintProperty(const TCIMPropertyDecl& declaration, const TCIMClass& cls, TOutput& output) {
    std::string line = "  " + output.Bold(declaration.GetName()) + "  " + TypeText(declaration);
    if (IsKey(declaration)) line += ", key";
    if (const std::string units = QualifierText(declaration, "Units"); !units.empty()) line += ", in " + units;
    if (declaration.GetClass() != &cls) line += ", from " + declaration.GetClass()->GetName();
    output.Write(line + "\n" + DescriptionOf(declaration, "      "));
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

void PrintClass(const TCIMClass& cls, TOutput& output) {
    const std::string superclass = cls.IsRootClass() ? "none" : cls.GetSuperClass()->GetName();
    const std::string plugin = PluginOf(cls);
    output.Write(output.Bold(cls.GetName()) + "\n" + DescriptionOf(cls, "  ") + "\n");
    output.Write("Superclass  " + superclass + "\n");
    output.Write("Plugin      " + (plugin.empty() ? "none" : plugin) + "\n");
    output.Write("Qualifiers  " + QualifiersOf(cls) + "\n\nProperties\n");
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) PrintProperty(*declaration, cls, output);
}

}  // namespace

EExit RunSchema(const TOptions& options, TOutput& output, TFailures& failures) {
    const TSession session(options.session, failures);
    const TContainer& schema = session.Schema();
    if (options.className.empty())
        PrintTree(*schema.GetRootClass(), "", output);
    else
        PrintClass(GetClassNamed(schema, options.className), output);
    return failures.IsEmpty() ? eExitComplete : eExitPartial;
}
