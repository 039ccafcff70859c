#include "text/ValueLines.h"

#include <algorithm>

#include "kyr/TCIMProperty.h"
#include "text/Values.h"
#include "text/WrapText.h"

namespace {

constexpr size_t kListWidth = 72;  // where lines may be longer, lists are not
constexpr size_t kMostBelowEachOther = 10;
constexpr const char* kMore = ", ...";

using TLines = std::vector<std::string>;

std::string Join(const TLines& elements) {
    std::string text;
    for (const std::string& element : elements) text += (text.empty() ? "" : ", ") + element;
    return text;
}

// What goes on is indented.
TLines BelowEachOther(const TLines& elements, size_t width) {
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

// The count, and as many elements as fit behind it on one line; at least one.
TLines Fold(const TLines& elements, size_t width) {
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
    if (elements.size() <= kMostBelowEachOther) return BelowEachOther(elements, width);
    return Fold(elements, listWidth);
}

}  // namespace

TLines ValueLines(const TCIMProperty& property, bool raw, size_t width) {
    const bool isNull = property.GetValue().IsNull();
    if (property.IsArray() && !raw && !isNull) return ListLines(DisplayElements(property), width);
    const std::string text = isNull && raw ? "-" : raw ? PlainText(property.GetValue()) : DisplayText(property);
    if (!text.empty()) return WrapText(text, width);
    return {isNull ? "-" : "\"\""};
}
