#include "Documents.h"

#include <algorithm>
#include <random>

namespace {

constexpr const char* kHead =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION>\n<DECLGROUP>\n";
constexpr const char* kTail = "</DECLGROUP>\n</DECLARATION>\n</CIM>\n";

constexpr const char* kWords[] = {
    "the",      "of",       "a",         "device",  "system",   "value",   "property", "which",      "indicates",
    "state",    "current",  "number",    "element", "managed",  "logical", "is",       "when",       "this",
    "capacity", "identity", "supported", "reading", "physical", "network", "storage",  "controller", "enclosure",
};

// std::mt19937 gives the same numbers everywhere; the standard distributions do not.
class TDice {
public:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(fEngine() % limit); }
    unsigned Between(unsigned low, unsigned high) { return low + Below(high - low + 1); }
    const char* Word() { return kWords[Below(static_cast<unsigned>(std::size(kWords)))]; }

private:
    std::mt19937 fEngine{20041231};
};

std::string Sentence(TDice& dice, unsigned words) {
    std::string text = dice.Word();
    for (unsigned i = 1; i < words; ++i) {
        text += i % 12 == 0 ? '\n' : ' ';
        text += dice.Below(25) == 0 ? "&quot;NULL&quot; &amp;" : dice.Word();
    }
    return text;
}

std::string QualifierDeclaration(const std::string& name, const std::string& type, bool isArray) {
    return "<QUALIFIER.DECLARATION NAME=\"" + name + "\" TYPE=\"" + type + "\" ISARRAY=\"" +
           (isArray ? "true" : "false") +
           "\">\n<SCOPE CLASS=\"true\" ASSOCIATION=\"true\" REFERENCE=\"true\" PROPERTY=\"true\"/>\n"
           "</QUALIFIER.DECLARATION>\n";
}

std::string QualifierDeclarations() {
    return QualifierDeclaration("Key", "boolean", false) + QualifierDeclaration("Description", "string", false) +
           QualifierDeclaration("Units", "string", false) + QualifierDeclaration("MaxLen", "uint32", false) +
           QualifierDeclaration("ValueMap", "string", true) + QualifierDeclaration("Values", "string", true);
}

std::string Qualifier(const std::string& name, const std::string& type, const std::string& value) {
    return "<QUALIFIER NAME=\"" + name + "\" TYPE=\"" + type + "\">\n<VALUE>" + value + "</VALUE>\n</QUALIFIER>\n";
}

std::string ArrayQualifier(const std::string& name, const std::vector<std::string>& values) {
    std::string text = "<QUALIFIER NAME=\"" + name + "\" TYPE=\"string\">\n<VALUE.ARRAY>\n";
    for (const std::string& value : values) text += "<VALUE>" + value + "</VALUE>\n";
    return text + "</VALUE.ARRAY>\n</QUALIFIER>\n";
}

std::string EnumeratedProperty(TDice& dice, const std::string& name) {
    std::vector<std::string> numbers, words;
    for (unsigned i = 0, count = dice.Between(3, 12); i < count; ++i) {
        numbers.push_back(std::to_string(i));
        words.push_back(Sentence(dice, dice.Between(1, 3)));
    }
    return "<PROPERTY NAME=\"" + name + "\" TYPE=\"uint16\" CLASSORIGIN=\"Bench_Element\">\n" +
           Qualifier("Description", "string", Sentence(dice, dice.Between(20, 90))) +
           ArrayQualifier("ValueMap", numbers) + ArrayQualifier("Values", words) + "</PROPERTY>\n";
}

std::string PlainProperty(TDice& dice, const std::string& name) {
    const bool isText = dice.Below(2) == 0;
    return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + (isText ? "string" : "uint64") + "\">\n" +
           Qualifier("Description", "string", Sentence(dice, dice.Between(15, 60))) +
           (isText ? Qualifier("MaxLen", "uint32", "256") : Qualifier("Units", "string", "Bytes")) + "</PROPERTY>\n";
}

std::string ClassName(unsigned number) { return "Bench_Class" + std::to_string(number); }

// In a full document each class has up to four subclasses.
std::string SuperClassName(unsigned number, EDocument kind) {
    return kind == EDocument::eFull && number > 0 ? ClassName((number - 1) / 4) : "Bench_Element";
}

std::string Class(TDice& dice, unsigned number, EDocument kind) {
    const std::string prefix = kind == EDocument::eFull ? "Property" + std::to_string(number) + "_" : "Property";
    std::string text = "<VALUE.OBJECT>\n<CLASS NAME=\"" + ClassName(number) + "\" SUPERCLASS=\"" +
                       SuperClassName(number, kind) + "\">\n" +
                       Qualifier("Description", "string", Sentence(dice, dice.Between(40, 120)));
    for (unsigned i = 0, count = dice.Between(3, 9); i < count; ++i) {
        const std::string name = prefix + std::to_string(i);
        text += dice.Below(3) == 0 ? EnumeratedProperty(dice, name) : PlainProperty(dice, name);
    }
    return text + "</CLASS>\n</VALUE.OBJECT>\n";
}

std::string KeyedClass(const std::string& name, const std::string& more) {
    return "<VALUE.OBJECT>\n<CLASS NAME=\"" + name + "\">\n<PROPERTY NAME=\"Id\" TYPE=\"string\">\n" +
           Qualifier("Key", "boolean", "true") + "</PROPERTY>\n" + more + "</CLASS>\n</VALUE.OBJECT>\n";
}

struct TField {
    const char* name;
    const char* type;
};

constexpr TField kFields[] = {
    {"Caption", "string"},    {"Manufacturer", "string"},     {"SerialNumber", "string"},  {"Enabled", "boolean"},
    {"HealthState", "uint8"}, {"OperationalState", "uint16"}, {"BlockSize", "uint32"},     {"Capacity", "uint64"},
    {"Temperature", "sint8"}, {"Offset", "sint16"},           {"Drift", "sint32"},         {"Balance", "sint64"},
    {"Voltage", "real32"},    {"Frequency", "real64"},        {"InstallDate", "datetime"}, {"Uptime", "datetime"},
    {"Location", "string"},
};
constexpr TField kInheritedFields[] = {{"CreationClassName", "string"}, {"SystemName", "string"}};
constexpr TField kArrays[] = {{"Capabilities", "uint16"}, {"Names", "string"}};

std::string ValueText(TDice& dice, const std::string& type) {
    if (type == "string") return Sentence(dice, dice.Between(1, 4));
    if (type == "boolean") return dice.Below(2) == 0 ? "true" : "false";
    if (type == "datetime") return "2004" + std::to_string(dice.Between(10, 12)) + "21235959.000000+060";
    if (type == "real32" || type == "real64") return std::to_string(dice.Below(1000)) + ".25";
    const std::string digits = std::to_string(dice.Below(type.back() == '8' ? 128 : 30000));
    return type[0] == 's' && dice.Below(2) == 0 ? "-" + digits : digits;
}

std::string Value(TDice& dice, const std::string& type) { return "<VALUE>" + ValueText(dice, type) + "</VALUE>"; }

std::string Declaration(const TField& field) {
    return std::string("<PROPERTY NAME=\"") + field.name + "\" TYPE=\"" + field.type + "\"></PROPERTY>\n";
}

std::string Setting(TDice& dice, const TField& field) {
    return std::string("<PROPERTY NAME=\"") + field.name + "\" TYPE=\"" + field.type + "\">" + Value(dice, field.type) +
           "</PROPERTY>\n";
}

std::string RecordClasses(EDocument kind) {
    std::string fields;
    for (const TField& field : kFields) fields += Declaration(field);
    for (const TField& field : kArrays) {
        fields +=
            std::string("<PROPERTY.ARRAY NAME=\"") + field.name + "\" TYPE=\"" + field.type + "\"></PROPERTY.ARRAY>\n";
    }
    if (kind == EDocument::ePlain) return KeyedClass("Bench_Record", fields);
    std::string inherited;
    for (const TField& field : kInheritedFields) inherited += Declaration(field);
    return KeyedClass("Bench_Base", inherited) +
           "<VALUE.OBJECT>\n<CLASS NAME=\"Bench_Record\" SUPERCLASS=\"Bench_Base\">\n" + fields +
           "</CLASS>\n</VALUE.OBJECT>\n";
}

void AppendInstance(TDice& dice, unsigned number, EDocument kind, std::string& text) {
    const auto isSet = [&](unsigned percent) { return kind == EDocument::eFull || dice.Below(100) < percent; };
    text += "<VALUE.OBJECT>\n<INSTANCE CLASSNAME=\"Bench_Record\">\n<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>id-" +
            std::to_string(number) + "</VALUE></PROPERTY>\n";
    if (kind == EDocument::eFull)
        for (const TField& field : kInheritedFields) text += Setting(dice, field);
    for (const TField& field : kFields)
        if (isSet(43)) text += Setting(dice, field);
    for (const TField& field : kArrays) {
        if (!isSet(33)) continue;
        text += std::string("<PROPERTY.ARRAY NAME=\"") + field.name + "\" TYPE=\"" + field.type + "\"><VALUE.ARRAY>" +
                Value(dice, field.type) + Value(dice, field.type) + "</VALUE.ARRAY></PROPERTY.ARRAY>\n";
    }
    text += "</INSTANCE>\n</VALUE.OBJECT>\n";
}

}  // namespace

std::string SchemaDocument(std::size_t bytes, EDocument kind) {
    TDice dice;
    std::string text = kHead + QualifierDeclarations() + KeyedClass("Bench_Element", "");
    for (unsigned number = 0; text.size() < bytes; ++number) text += Class(dice, number, kind);
    return text + kTail;
}

std::string DataDocument(unsigned instances, EDocument kind) {
    TDice dice;
    std::string text = kHead + QualifierDeclarations() + RecordClasses(kind);
    text.reserve(text.size() + instances * std::size_t{800});
    for (unsigned number = 0; number < instances; ++number) AppendInstance(dice, number, kind, text);
    return text + kTail;
}

TEditableText::TEditableText(const std::string& text) : fBytes(text.size() + 2) {
    std::copy(text.begin(), text.end(), fBytes.begin() + 1);
}
