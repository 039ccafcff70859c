#include "render/InstanceText.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/Associations.h"
#include "model/InstanceChoice.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"
#include "model/ReadingOrder.h"
#include "model/Values.h"

namespace {

using TInstances = std::vector<TCIMInstance*>;
using TLines = std::vector<std::string>;

constexpr size_t kLeastValueWidth = 20;  // with less, values stand below their names
constexpr size_t kIndentBelowName = 6;
constexpr size_t kListWidth = 72;         // a list on one line is no longer than this, even in a wider terminal
constexpr size_t kMostElementLines = 10;  // a list with more elements is folded
constexpr const char* kMore = ", ...";

// One line for each element; if one is too long for that, its other lines are indented.
TLines ElementLines(const TLines& elements, size_t width) {
    TLines lines;
    for (const std::string& element : elements) {
        std::string indent;
        for (const std::string& line : WrapText(element, width > 2 ? width - 2 : 1)) {
            lines.push_back(indent + line);
            indent = "  ";
        }
    }
    return lines;
}

// The number of elements, and as many of them as fit behind it on one line; at least one.
TLines FoldedLines(const TLines& elements, size_t width) {
    std::string text = std::to_string(elements.size()) + " values: " + elements.front();
    for (size_t i = 1; ColumnsOf(text + ", " + elements[i] + kMore) <= width; ++i) text += ", " + elements[i];
    return WrapText(text + kMore, width);
}

TLines ListLines(TLines elements, size_t width) {
    if (elements.empty()) return {"0 values"};
    std::replace(elements.begin(), elements.end(), std::string(), std::string("\"\""));
    const std::string joined = Join(elements);
    const size_t listWidth = std::min(width, kListWidth);
    if (ColumnsOf(joined) <= listWidth) return {joined};
    if (elements.size() <= kMostElementLines) return ElementLines(elements, width);
    return FoldedLines(elements, listWidth);
}

// The property's value as visible lines of at most that width. A long list is folded; with raw, nothing is left out.
TLines ValueLines(const TCIMProperty& property, bool isNull, bool raw, size_t width) {
    if (property.IsArray() && !raw && !isNull) return ListLines(DisplayElements(property), width);
    const std::string text = isNull && raw ? "-" : raw ? RawText(property.GetValue()) : DisplayText(property);
    if (!text.empty()) return WrapText(text, width);
    return {isNull ? "-" : "\"\""};
}

bool HasValue(const TCIMInstance& instance, const std::string& name) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property != nullptr && !property->GetValue().IsNull();
}

bool IsPrinted(const TCIMPropertyDecl& declaration, const TPrintOptions& options) {
    if (IsKey(declaration)) return options.keys || !IsScopeKey(declaration.GetName());
    return !IsCompanion(declaration) && !(options.stable && IsVolatile(declaration));
}

// The names of the properties that may be printed. An instance of which only the system is known has only that.
std::vector<std::string> FieldsOf(const TCIMClass& cls, const TPrintOptions& options) {
    std::vector<std::string> fields;
    for (const std::string& name : PropertiesForReading(cls))
        if (IsPrinted(*cls.FindPropertyDecl(name), options)) fields.push_back(name);
    return fields.empty() ? cls.EnumerateKeyNames() : fields;
}

/// Prints the instances of one class, with the values of all of them in one column.
class TClassText {
public:
    TClassText(const TCIMClass& cls, TInstances instances, const TAssociationIndex* links, const TPrintOptions& options,
               TOutput& output)
        : fClass(cls), fInstances(std::move(instances)), fLinks(links), fOptions(options), fOutput(output) {
        fFields = FieldsOf(cls, options);
        if (!options.null && !options.provenance) DropFieldsWithoutValue();
        PlaceColumns();
    }

    void Print() const {
        PrintHead();
        if (fOptions.provenance && fInstances.size() > 1) PrintNullMeanings();
        for (const TCIMInstance* instance : fInstances) {
            if (instance != fInstances.front()) fOutput.Write("\n");
            PrintInstance(*instance);
        }
    }

private:
    void DropFieldsWithoutValue() {
        const auto isUnused = [this](const std::string& name) {
            return std::none_of(fInstances.begin(), fInstances.end(),
                                [&name](const TCIMInstance* instance) { return HasValue(*instance, name); });
        };
        fFields.erase(std::remove_if(fFields.begin(), fFields.end(), isUnused), fFields.end());
    }

    void PlaceColumns() {
        size_t longest = 0;
        for (const std::string& name : fFields) longest = std::max(longest, name.size());
        fColumn = longest + 4;
        fStacked = fOutput.Width() < fColumn + kLeastValueWidth;
        if (fStacked) fColumn = kIndentBelowName;
        fValueWidth = fOutput.Width() > fColumn ? fOutput.Width() - fColumn : 1;
    }

    void PrintHead() const {
        const std::string count = fInstances.size() == 1 ? "" : " (" + std::to_string(fInstances.size()) + ")";
        fOutput.Write(fOutput.Bold(fClass.GetName()) + count + "\n");
        const std::string description = OwnShortDescriptionOf(fClass);
        if (description.empty()) return;
        const size_t width = std::max<size_t>(fOutput.Width(), 3) - 2;
        for (const std::string& line : WrapText(description, width)) fOutput.Write("  " + fOutput.Dim(line) + "\n");
        fOutput.Write("\n");
    }

    // Once for the class, since most have the same reason. An instance with another one says so itself.
    void PrintNullMeanings() const {
        std::vector<std::string> names;
        for (const std::string& name : fFields)
            if (std::any_of(fInstances.begin(), fInstances.end(),
                            [&name](const TCIMInstance* instance) { return IsUnexplained(*instance, name); }))
                names.push_back(name);
        if (names.empty()) return;
        fOutput.Write("  Why some have no value:\n");
        for (const std::string& name : names) PrintLines(name, WrapText(NullMeaning(name), fValueWidth), "");
        fOutput.Write("\n");
    }

    static bool IsUnexplained(const TCIMInstance& instance, const std::string& name) {
        return !HasValue(instance, name) && TProvenance(instance).AbsenceOf(name).empty();
    }

    std::string NullMeaning(const std::string& name) const {
        const TCIMPropertyDecl* const declaration = fClass.FindPropertyDecl(name);
        const std::string meaning = declaration == nullptr ? "" : NullMeaningOf(*declaration);
        return meaning.empty() ? "no reason is given" : meaning;
    }

    void PrintInstance(const TCIMInstance& instance) const {
        const std::optional<TProvenance> provenance =
            fOptions.provenance ? std::optional<TProvenance>(instance) : std::nullopt;
        for (const std::string& name : fFields)
            if (const TCIMProperty* const property = instance.FindProperty(name))
                PrintProperty(*property, provenance ? &*provenance : nullptr);
        if (fLinks != nullptr) PrintLinks(instance);
    }

    void PrintProperty(const TCIMProperty& property, const TProvenance* provenance) const {
        const std::string name = property.GetName();
        if (!property.GetValue().IsNull()) {
            const std::string source = provenance == nullptr ? "" : provenance->SourceOf(name);
            return PrintLines(name, ValueLines(property, false, fOptions.raw, fValueWidth), VisibleText(source));
        }
        std::string absence = provenance == nullptr ? "" : provenance->AbsenceOf(name);
        if (absence.empty() && provenance != nullptr && fInstances.size() == 1) absence = NullMeaning(name);
        if (!absence.empty())
            PrintLines(name, WrapText("not available (" + VisibleText(absence) + ")", fValueWidth), "");
        else if (fOptions.null)
            PrintLines(name, ValueLines(property, true, fOptions.raw, fValueWidth), "");
    }

    void PrintLines(const std::string& name, std::vector<std::string> lines, const std::string& source) const {
        const bool isShort = lines.size() == 1 && name.size() + 4 + ColumnsOf(lines.front()) <= fOutput.Width();
        const bool isBelow = fStacked && (!isShort || !source.empty());
        if (!source.empty()) AddSource(lines, source);
        std::string text = "  " + name;
        if (isBelow)
            text += '\n';
        else
            text.resize(fStacked ? text.size() + 2 : fColumn, ' ');
        for (size_t i = 0; i < lines.size(); ++i) {
            if (i > 0 || isBelow) text.append(fColumn, ' ');
            text.append(lines[i]) += '\n';
        }
        fOutput.Write(text);
    }

    // The source stands behind the value, or below it if it does not fit there.
    void AddSource(std::vector<std::string>& lines, const std::string& source) const {
        const std::string note = "[" + source + "]";
        if (ColumnsOf(lines.back()) + 2 + ColumnsOf(note) <= fValueWidth)
            lines.back() += "  " + fOutput.Dim(note);
        else
            for (const std::string& line : WrapText(note, fValueWidth)) lines.push_back(fOutput.Dim(line));
    }

    void PrintLinks(const TCIMInstance& instance) const {
        for (const TAssociationLink& link : fLinks->LinksOf(instance)) {
            const std::string association = link.association->GetClass()->GetName();
            const std::string path = VisibleText(link.other.reference.GetPath());
            fOutput.WriteWrapped(association + "." + link.other.role + " " + path, "  -> ");
        }
    }

    const TCIMClass& fClass;
    const TInstances fInstances;
    const TAssociationIndex* fLinks;  // null: links are not printed
    const TPrintOptions& fOptions;
    TOutput& fOutput;
    std::vector<std::string> fFields;
    size_t fColumn = 0;  // where values stand
    size_t fValueWidth = 0;
    bool fStacked = false;  // values below their names, unless they are short
};

/// What is not printed of all instances, and how to see it.
class TCountedText {
public:
    bool Takes(const TCIMClass& cls) const { return cls.IsAssociation() || FindNameOfMany(cls) != nullptr; }

    void Add(const TCIMClass& cls, size_t count) {
        if (cls.IsAssociation())
            fTies += count;
        else
            fLines.push_back(CountText(cls.GetName(), count) + "; see show " + FindNameOfMany(cls));
    }

    bool IsEmpty() const { return fLines.empty() && fTies == 0; }

    void Print(bool hasReferences, TOutput& output) const {
        for (const std::string& line : fLines) output.WriteWrapped(line, "");
        if (fTies > 0 && !hasReferences)
            output.WriteWrapped(CountText("Associations", fTies) + "; see show --references", "");
    }

private:
    static std::string CountText(const std::string& what, size_t count) {
        return what + ": " + std::to_string(count) + (count == 1 ? " instance" : " instances");
    }

    std::vector<std::string> fLines;
    size_t fTies = 0;
};

// Packages and the like would bury all others.
std::vector<TCIMClass*> ClassesInTree(const TInstanceChoice& choice) {
    std::vector<TCIMClass*> classes = choice.Classes();
    const auto isOfMany = [](const TCIMClass* cls) { return FindNameOfMany(*cls) != nullptr; };
    if (choice.IsAll()) classes.erase(std::remove_if(classes.begin(), classes.end(), isOfMany), classes.end());
    return classes;
}

}  // namespace

bool PrintInstances(const TContainer& container, const TInstanceChoice& choice, const TPrintOptions& options,
                    TOutput& output) {
    if (options.tree) return PrintTree(container, ClassesInTree(choice), options.treeTo, output);
    std::optional<TAssociationIndex> links;
    if (options.references) links.emplace(container);
    std::vector<TCIMClass*> classes = choice.Classes();
    SortForReading(classes);
    TCountedText counted;
    bool any = false;
    for (const TCIMClass* cls : classes) {
        const TInstances instances = choice.InstancesOf(*cls);
        if (instances.empty()) continue;
        if (choice.IsAll() && counted.Takes(*cls)) {
            counted.Add(*cls, instances.size());
            continue;
        }
        if (any) output.Write("\n");
        TClassText(*cls, InNaturalOrder(instances), links ? &*links : nullptr, options, output).Print();
        any = true;
    }
    if (any && !counted.IsEmpty()) output.Write("\n");
    counted.Print(options.references, output);
    return any || !counted.IsEmpty();
}
