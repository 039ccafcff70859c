// The display of a property. The first line is its value in the form of ReadValueLine; each further line is a qualifier
// of the declaration: a digit that selects the name, then the value in the same form.
#include <cstdint>
#include <set>

#include "support/FuzzSupport.h"
#include "support/SchemaSketch.h"

namespace {

constexpr const char* kQualifiers[] = {
    "NULLDISPLAY", "UNITS", "DISPLAYFIXEDUNITS", "DISPLAYCPUTIME", "ABBREVIATEUNITS", "BASE", "Values", "ValueMap"};
constexpr unsigned char kFirstQualifier = '0';

std::unique_ptr<TCIMPropertyDecl> ReadDeclaration(const TCIMValue& value, TByteReader& input, TContainer& container) {
    const SchemaBuilder schema(container);
    std::unique_ptr<TCIMPropertyDecl> declaration = schema.NewProperty(*container.GetRootClass(), {"Shown", value});
    while (!input.IsAtEnd()) {
        const std::string line = input.Line();
        if (line.empty()) continue;
        const char* const name = kQualifiers[static_cast<unsigned char>(line.front() - kFirstQualifier) % 8];
        if (declaration->FindQualifier(name) != nullptr) continue;
        StatusOf([&] { schema.Qualify(*declaration, name, ReadValueLine(line.substr(1), container)); });
    }
    return declaration;
}

std::string NullText(const TCIMPropertyDecl& declaration) {
    const TCIMQualifier* const qualifier = declaration.FindQualifier("NULLDISPLAY");
    if (qualifier == nullptr || qualifier->GetType() != CIM::eCIMString) return "";
    const TCIMValue text = qualifier->GetValue();
    return text.IsNull() ? "" : static_cast<std::string>(text);
}

/// Runs one display function; false if it raises.
template <typename TForm>
bool Shows(TForm&& form) {
    const kyrStatusCode status = StatusOf(form);
    Require(std::set<kyrStatusCode>{kyrStatusOK, kyrStatusNotSupported, kyrStatusInvalidDateTime, kyrStatusValueIsNULL}
                    .count(status) != 0,
            "a display fails for a base, a time unit or a NULL");
    return status == kyrStatusOK;
}

void CheckTexts(const TCIMProperty& property, const std::vector<std::string>& texts) {
    const TCIMValue value = property.GetValue();
    const bool hasElements = property.IsArray() && !value.IsNull();
    Require(texts.size() == (hasElements ? static_cast<std::vector<TCIMValue>&>(value).size() : 1),
            "each element has a text");
    if (value.IsNull()) Require(texts.front() == NullText(property.GetDeclaration()), "a NULL has the text for it");
}

void CheckDisplay(const TCIMProperty& property) {
    std::string text;
    std::string earlierText;
    std::vector<std::string> texts;
    const bool isShown = Shows([&] { text = property.ToString(); });
    Require(isShown == Shows([&] { earlierText = property.PrevToString(); }), "the earlier value is the present one");
    Require(text == earlierText, "the earlier value is shown as the present one");
    if (Shows([&] { texts = property.ToStringVector(); })) CheckTexts(property, texts);
    Shows([&] { property.PrevToStringVector(); });
    if (!property.GetValue().IsNull()) return;
    Require(isShown && text == NullText(property.GetDeclaration()), "a NULL is shown as the text for it");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const TRunLog log;
    TContainer container;
    TByteReader input(data, size);
    StatusOf([&] {
        const TCIMValue value = ReadValueLine(input.Line(), container);
        TRootObject::GetCoreLogger()->ClearLog();
        const std::unique_ptr<TCIMPropertyDecl> declaration = ReadDeclaration(value, input, container);
        const TCIMProperty property(*declaration, value);
        TRootObject::GetCoreLogger()->ClearLog();
        CheckDisplay(property);
        for (const ILogger::TLogEntry& entry : log.Entries())
            Require(entry.severity == kyrLogDebug, "a display complains to developers alone");
    });
    return 0;
}
