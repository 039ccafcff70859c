#include "xml/TCIMXMLParser.h"

#include "kyr/TCIMDateTime.h"
#include "kyr/TKYRException.h"
#include "model/NumberText.h"
#include "model/TypeName.h"
#include "platform/CoreLog.h"
#include "xml/DocumentStates.h"

namespace {

std::size_t Byte(char c) { return static_cast<unsigned char>(c); }

template <std::size_t kSize>
bool TakeText(TCIMXMLParser::TAttribute attribute, const char (&name)[kSize], std::string* target) {
    if (!Is(attribute->first, name)) return false;
    *target = attribute->second;
    return true;
}

}  // namespace

TCIMXMLParser::TCIMXMLParser(TContainer* container) : fContainer(container) { Push<TStateStart>(); }

TCIMXMLParser::~TCIMXMLParser() {
    while (!fStates.empty()) fStates.pop();  // children before parents, whose members they refer to
}

std::string TCIMXMLParser::LowerCase(const char* name) const {
    std::string lower = name;
    for (char& c : lower) c = ToLower(c);
    return lower;
}

EElement TCIMXMLParser::ElementOf(const char* name) {
    const std::size_t length = strlen(name);
    if (length == 0 || length > TWrittenName::kLongest) return EElement::eUnknown;  // longer than all known ones
    // Numbers that give the usual names places of their own.
    const std::size_t place = 3 * (Byte(name[0]) + Byte(name[length - 1])) + 19 * length;
    TWrittenName& written = fWrittenNames[place % std::size(fWrittenNames)];
    if (written.length == length && memcmp(written.text, name, length) == 0) return written.element;
    written.element = FindElement(LowerCase(name));
    written.length = length;
    memcpy(written.text, name, length);
    return written.element;
}

// A child element without a state of its own has an end tag all the same, which pops its parent. The stack is then
// empty before the document ends, and the remaining elements are ignored.
void TCIMXMLParser::StartElement(const char* name, TAttributes& attributes) {
    if (fStates.empty()) return;
    try {
        fName = name;
        fStates.top()->StartElement(*this, ElementOf(name), attributes);
    } catch (const TKYRException& e) {
        ReportAndThrow(e);
    }
}

void TCIMXMLParser::EndElement(const char*) {
    if (fStates.empty()) return;
    try {
        fStates.top()->EndElement(*this);
    } catch (const TKYRException& e) {
        ReportAndThrow(e);
    }
}

void TCIMXMLParser::processingInstruction(const char*, const char*) {}

// The reference "&#0;" is a NUL of length 1, and adds nothing.
void TCIMXMLParser::characters(const char* text, unsigned int length) {
    if (fTextReaders != 0 && *text != '\0') fText.append(text, length);
}

void TCIMXMLParser::notationDecl(const char*, const char*, const char*) {}

void TCIMXMLParser::HandleAttrsOnTop(TAttributes& attributes) { fStates.top()->HandleAttrs(*this, attributes); }

void TCIMXMLParser::FatalError(const char* message) {
    LogAndThrow(kyrStatusInvalidSpecificationDocument,
                "CIM-XML Parser line " + std::to_string(GetCurLine()) + ":" + message);
}

void TCIMXMLParser::FatalError(const std::string& message) { FatalError(message.c_str()); }

void TCIMXMLParser::Unexpected() { FatalError("Unexpected element " + LowerCase(fName)); }

void TCIMXMLParser::Corrupt() { FatalError("Parser state corrupt"); }

void TCIMXMLParser::ReportAndThrow(const TKYRException& e) {
    LogAndThrow(e.fCode,
                std::string("TCIMXMLParser: Threw exception ") + e.what() + " on line " + std::to_string(GetCurLine()));
}

TCIMValue TCIMXMLParser::ParseValue(TCIMValue::TCIMType type, std::string& text) {
    try {
        return TCIMValue(type, text, *fContainer);
    } catch (const TKYRException& e) {
        if (e.fCode != kyrStatusInvalidDateTime) return TCIMValue();
    }
    const TCIMDateTime epoch(1970, 1, 1, 0, 0, 0, 0, 0);
    LogCoreError("Invalid datetime found on line " + std::to_string(GetCurLine()) + ".  Defaulting the datetime to " +
                 epoch.ToUIString() + ".");
    return TCIMValue(epoch);
}

bool TCIMXMLParser::ConvertBool(std::string& text) { return ReadNumber<bool>(text); }

unsigned int TCIMXMLParser::ConvertUnsignedInt(std::string& text) { return ReadNumber<unsigned int>(text); }

bool TCIMXMLParser::HandleCIMName(TAttribute attribute, std::string* target) {
    return TakeText(attribute, "name", target);
}

bool TCIMXMLParser::HandleCIMType(TAttribute attribute, TCIMValue::TCIMType* target) {
    if (!Is(attribute->first, "type")) return false;
    *target = TypeOfName(attribute->second);
    return true;
}

bool TCIMXMLParser::HandleClassOrigin(TAttribute attribute, std::string* target) {
    return TakeText(attribute, "classorigin", target);
}

bool TCIMXMLParser::HandlePropagated(TAttribute attribute, bool* target) {
    if (!Is(attribute->first, "propagated")) return false;
    *target = ConvertBool(attribute->second);
    return true;
}

bool TCIMXMLParser::HandleArraySize(TAttribute attribute, unsigned int* target) {
    if (!Is(attribute->first, "arraysize")) return false;
    *target = ConvertUnsignedInt(attribute->second);
    return true;
}

bool TCIMXMLParser::HandleSuperClass(TAttribute attribute, std::string* target) {
    return TakeText(attribute, "superclass", target);
}

bool TCIMXMLParser::HandleClassName(TAttribute attribute, std::string* target) {
    return TakeText(attribute, "classname", target);
}

bool TCIMXMLParser::HandleReferenceClass(TAttribute attribute, std::string* target) {
    return TakeText(attribute, "referenceclass", target);
}

bool TCIMXMLParser::HandleQualifierFlavor(TAttribute attribute, TCIMQualifierDecl::EFlavor* target) {
    TCIMQualifierDecl::EFlavor flavor;
    if (Is(attribute->first, "overridable"))
        flavor = TCIMQualifierDecl::eFlavorOverridable;
    else if (Is(attribute->first, "tosubclass"))
        flavor = TCIMQualifierDecl::eFlavorToSubclass;
    else if (Is(attribute->first, "translatable"))
        flavor = TCIMQualifierDecl::eFlavorTranslatable;
    else
        return false;
    *target = ConvertBool(attribute->second) ? *target | flavor : *target & ~flavor;
    return true;
}

TCIMXMLParser::TParseState::~TParseState() = default;

void TCIMXMLParser::TParseState::StartElement(TCIMXMLParser&, EElement, TAttributes&) {}

void TCIMXMLParser::TParseState::EndElement(TCIMXMLParser& parser) {
    if (!parser.fStates.empty()) parser.fStates.pop();
}

void TCIMXMLParser::TParseState::HandleAttrs(TCIMXMLParser&, TAttributes&) {}
