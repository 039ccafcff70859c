#include "render/TreeLine.h"

#include <algorithm>
#include <vector>

#include "base/Output.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/Qualifiers.h"
#include "model/ReadingOrder.h"
#include "model/Values.h"

namespace {

constexpr size_t kDeepestIndent = 40;
constexpr size_t kMostDetails = 2;
constexpr size_t kLongestDetail = 32;  // in bytes; longer texts, such as the options of a mount, bury the others

// A flag tells nothing without its name.
bool IsTelling(const TCIMProperty* property) {
    if (property == nullptr || property->IsArray()) return false;
    return !property->GetValue().IsNull() && property->GetType() != TCIMValue::TCIMType::eCIMBoolean;
}

// Whether it counts in a unit that is new, and so says by itself what it is. Of two sizes nobody knows which is which.
bool IsFirstOfItsUnit(const TCIMPropertyDecl& declaration, std::vector<std::string>& units) {
    if (!IsCounted(declaration)) return true;
    const std::string unit = QualifierText(declaration, "Units");
    if (std::find(units.begin(), units.end(), unit) != units.end()) return false;
    units.push_back(unit);
    return true;
}

// The first values in the class's qualifier Columns that the name does not hold already.
std::string DetailsOf(const TCIMInstance& instance, const std::string& name) {
    std::vector<std::string> details, units;
    for (const std::string& column : MainPropertiesOf(*instance.GetClass())) {
        if (!IsFirstOfItsUnit(*instance.GetClass()->FindPropertyDecl(column), units)) continue;
        const TCIMProperty* const property = instance.FindProperty(column);
        const std::string text = IsTelling(property) ? DisplayText(*property) : "";
        if (!text.empty() && text.size() <= kLongestDetail && name.find(text) == std::string::npos)
            details.push_back(text);
        if (details.size() == kMostDetails) break;
    }
    return Join(details);
}

}  // namespace

void PrintTreeLine(const TCIMInstance& instance, size_t depth, const std::string& note, TOutput& output) {
    const size_t indent = std::min({2 * depth, kDeepestIndent, output.Width() / 2});
    const std::string name = DisplayName(instance), details = DetailsOf(instance, name);
    const std::string cls = instance.GetClass()->GetName();
    const std::string text = name + note + (details.empty() ? "" : "  " + details);
    std::vector<std::string> lines = WrapText(text, output.Width() - indent);
    if (indent + ColumnsOf(lines.back()) + 2 + cls.size() <= output.Width())
        lines.back() += "  " + output.Dim(cls);
    else
        lines.push_back(output.Dim(cls));
    for (const std::string& line : lines) output.Write(std::string(indent, ' ') + line + "\n");
}
