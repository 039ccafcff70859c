#include "Collect.h"

#include <algorithm>
#include <set>

#include "ClassNames.h"
#include "PluginQuery.h"
#include "Session.h"
#include "Values.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"

namespace {

// The named classes with all below them; every class if none is named. Ordinary classes before associations.
std::vector<TCIMClass*> SelectClasses(const TContainer& schema, const std::vector<std::string>& names) {
    std::vector<TCIMClass*> classes;
    if (names.empty()) classes = schema.GetRootClass()->EnumerateSubClasses(true);
    for (const std::string& name : names) {
        TCIMClass& cls = GetClassNamed(schema, name);
        classes.push_back(&cls);
        const std::vector<TCIMClass*> below = cls.EnumerateSubClasses(true);
        classes.insert(classes.end(), below.begin(), below.end());
    }
    SortByName(classes);
    classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
    std::stable_partition(classes.begin(), classes.end(), [](const TCIMClass* cls) { return !cls->IsAssociation(); });
    return classes;
}

std::vector<std::string> NamesOf(const std::vector<TCIMClass*>& classes) {
    std::vector<std::string> names;
    names.reserve(classes.size());
    for (const TCIMClass* cls : classes) names.push_back(cls->GetName());
    return names;
}

// Those that have a value, keys first.
std::vector<const TCIMProperty*> PropertiesToShow(const TCIMInstance& instance) {
    const std::vector<std::string> keys = instance.GetClass()->EnumerateKeyNames();
    std::vector<const TCIMProperty*> properties = instance.EnumerateProperties();
    const auto isNull = [](const TCIMProperty* property) { return property->GetValue().IsNull(); };
    properties.erase(std::remove_if(properties.begin(), properties.end(), isNull), properties.end());
    std::stable_partition(properties.begin(), properties.end(), [&keys](const TCIMProperty* property) {
        return std::find(keys.begin(), keys.end(), property->GetName()) != keys.end();
    });
    return properties;
}

// A reference whose instance was not collected stands for none.
const ICIMElement* FindTarget(const TCIMReference& reference) {
    try {
        return reference.GetCIMElement();
    } catch (const TKYRException&) {
        return nullptr;
    }
}

class TPrinter {
public:
    TPrinter(const TOptions& options, TOutput& output) : fOptions(options), fOutput(output) {}

    // Gives whether there was an instance.
    bool PrintClass(const TCIMClass& cls) {
        const std::vector<TCIMInstance*> instances = cls.EnumerateInstances(false);
        if (instances.empty()) return false;
        const std::string count = instances.size() == 1 ? "" : " (" + std::to_string(instances.size()) + ")";
        StartBlock();
        fOutput.Write(fOutput.Bold(cls.GetName()) + count + "\n");
        for (const TCIMInstance* instance : instances) {
            if (instance != instances.front()) fOutput.Write("\n");
            PrintInstance(*instance);
        }
        return true;
    }

private:
    void StartBlock() {
        if (!fFirst) fOutput.Write("\n");
        fFirst = false;
    }

    void PrintInstance(const TCIMInstance& instance) {
        const std::vector<const TCIMProperty*> properties = PropertiesToShow(instance);
        size_t width = 0;
        for (const TCIMProperty* property : properties) width = std::max(width, property->GetName().size());
        for (const TCIMProperty* property : properties) {
            std::string name = property->GetName();
            name.resize(width + 2, ' ');
            const std::string text = fOptions.raw ? PlainText(property->GetValue()) : DisplayText(*property);
            fOutput.Write("  " + name + text + "\n");
        }
        if (fOptions.references) PrintTies(instance);
    }

    void PrintTies(const TCIMInstance& instance) {
        try {
            for (const TCIMInstance* association : instance.References("", ""))
                for (const TCIMProperty* property : association->EnumerateProperties())
                    PrintTie(instance, association->GetClass()->GetName(), *property);
        } catch (const TKYRException& e) {
            fOutput.Write(std::string("  -> (") + e.what() + ")\n");
        }
    }

    // What an association's property points to, unless that is the instance itself.
    void PrintTie(const TCIMInstance& instance, const std::string& association, const TCIMProperty& property) {
        const TCIMValue value = property.GetValue();
        if (!value.IsReference() || value.IsNull()) return;
        if (FindTarget(static_cast<TCIMReference>(value)) == &instance) return;
        fOutput.Write("  -> " + association + "." + property.GetName() + " " + PlainText(value) + "\n");
    }

    const TOptions& fOptions;
    TOutput& fOutput;
    bool fFirst = true;
};

EExit Outcome(bool any, size_t asked, const TFailures& failures) {
    if (any) return failures.IsEmpty() ? eExitComplete : eExitPartial;
    if (asked == 0 || !failures.IsEmpty()) {
        Complain("nothing was collected");
        return eExitNothing;
    }
    Complain("there are no such instances on this machine");
    return eExitComplete;
}

}  // namespace

EExit RunCollect(const TOptions& options, TOutput& output, TFailures& failures) {
    TSession session(options.session, failures);
    TContainer& schema = session.Schema();
    const std::vector<TCIMClass*> classes = SelectClasses(schema, options.classes);
    TPluginQuery query(session);
    query.RunQuery(&schema, options.classes.empty() ? std::vector<std::string>() : NamesOf(classes));
    TPrinter printer(options, output);
    bool any = false;
    for (const TCIMClass* cls : classes) any |= printer.PrintClass(*cls);
    return Outcome(any, query.CountAsked(), failures);
}
