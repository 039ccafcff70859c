#include "xml/ValueStates.h"

#include "model/TCIMValueTransfer.h"
#include "xml/PathStates.h"

namespace {

/// Moves the values into a vector of that capacity; std::vector would copy them, since TCIMValue cannot be moved.
std::vector<TCIMValue> Moved(std::vector<TCIMValue>& values, std::size_t capacity) {
    std::vector<TCIMValue> moved;
    moved.reserve(capacity);
    for (TCIMValue& value : values) {
        moved.emplace_back();
        if (value.GetType() != TCIMValue::TCIMType::eCIMNone) TCIMValueTransfer::TakeOver(moved.back(), value);
    }
    return moved;
}

}  // namespace

void TCIMXMLParser::TStateValue::EndElement(TCIMXMLParser& parser) {
    TCIMValue value = parser.ParseValue(fType, parser.fText);
    TCIMValueTransfer::Assign(*fTarget, value);
    TParseState::EndElement(parser);
}

// value*
void TCIMXMLParser::TStateValueArray::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eValue) parser.Unexpected();
    if (fElements.size() == fElements.capacity()) fElements = Moved(fElements, 2 * fElements.size() + 16);
    fElements.emplace_back(fType, 0);
    parser.Enter<TStateValue>(attributes, parser, fElements.back(), fType);
}

void TCIMXMLParser::TStateValueArray::EndElement(TCIMXMLParser& parser) {
    std::vector<TCIMValue> elements = Moved(fElements, fElements.size());
    TCIMValueTransfer::SetArray(*fTarget, fType, fArraySize, elements);
    TParseState::EndElement(parser);
}

// (classpath | localclasspath | classname | instancepath | localinstancepath | instancename)*
// Compatibility: within a path the reference has no container, so that the document is refused; only CLASSNAME and
// INSTANCENAME work. See docs/oddities.md.
void TCIMXMLParser::TStateValueReference::StartElement(TCIMXMLParser& parser, EElement element,
                                                       TAttributes& attributes) {
    if (element == EElement::eInstanceName) {
        fReference.SetContainer(parser.fContainer);
        fIsInstanceName = true;
        return parser.Enter<TStateInstanceName>(attributes, fReference);
    }
    if (element == EElement::eInstancePath)
        return parser.Enter<TStateInstancePath>(attributes, fHost, fNamespace, fReference);
    if (element == EElement::eLocalInstancePath)
        return parser.Enter<TStateLocalInstancePath>(attributes, fNamespace, fReference);
    if (element == EElement::eClassName) {
        fReference.SetContainer(parser.fContainer);
        fIsClassRef = true;
        return parser.Enter<TStateClassName>(attributes, fClassName);
    }
    if (element == EElement::eClassPath) {
        fIsClassRef = true;
        return parser.Enter<TStateClassPath>(attributes, fHost, fNamespace, fClassName);
    }
    if (element == EElement::eLocalClassPath) {
        fIsClassRef = true;
        return parser.Enter<TStateLocalClassPath>(attributes, fNamespace, fClassName);
    }
    parser.Unexpected();
}

void TCIMXMLParser::TStateValueReference::EndElement(TCIMXMLParser& parser) {
    if (fIsClassRef && !fIsInstanceName) fReference.SetClassName(fClassName);
    fTarget->Set(fReference);
    TParseState::EndElement(parser);
}

// value.reference*
void TCIMXMLParser::TStateValueRefArray::StartElement(TCIMXMLParser& parser, EElement element,
                                                      TAttributes& attributes) {
    if (element != EElement::eValueReference) parser.Unexpected();
    fElements.emplace_back(TCIMValue::TCIMType(TCIMValue::TCIMType::eCIMReference), 0);
    parser.Enter<TStateValueReference>(attributes, fElements.back());
}

void TCIMXMLParser::TStateValueRefArray::EndElement(TCIMXMLParser& parser) {
    TCIMValueTransfer::SetArray(*fTarget, TCIMValue::TCIMType::eCIMReference, 0, fElements);
    TParseState::EndElement(parser);
}
