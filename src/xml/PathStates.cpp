#include "xml/PathStates.h"

#include <algorithm>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/TCIMPropertyDeclImpl.h"
#include "xml/ValueStates.h"

namespace {

bool IsKey(const TCIMPropertyDecl& declaration) { return TCIMPropertyDeclImpl::Of(declaration).IsKey(); }

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

void TCIMXMLParser::TStateTwoElements::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    const int position = fPhase++;
    if (position == 0 && EnterFirst(parser, element, attributes)) return;
    if (position == 1 && EnterSecond(parser, element, attributes)) return;
    parser.Unexpected();
}

// host, localnamespacepath
void TCIMXMLParser::TStateNamespacePath::StartElement(TCIMXMLParser& parser, EElement element,
                                                      TAttributes& attributes) {
    // Compatibility: a third child is refused in other words than elsewhere; see docs/oddities.md.
    if (fPhase == 2) parser.Corrupt();
    TStateTwoElements::StartElement(parser, element, attributes);
}

bool TCIMXMLParser::TStateNamespacePath::EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eHost) return false;
    parser.Enter<TStateHost>(attributes, parser, fHost);
    return true;
}

bool TCIMXMLParser::TStateNamespacePath::EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eLocalNamespacePath) return false;
    parser.Enter<TStateLocalNamespacePath>(attributes, fNamespace);
    return true;
}

// namespace+
void TCIMXMLParser::TStateLocalNamespacePath::StartElement(TCIMXMLParser& parser, EElement element,
                                                           TAttributes& attributes) {
    if (element != EElement::eNamespace) parser.Unexpected();
    fSeen = true;
    fNamespace += fCurrent;
    parser.Enter<TStateNamespace>(attributes, fCurrent);
}

void TCIMXMLParser::TStateLocalNamespacePath::EndElement(TCIMXMLParser& parser) {
    if (!fSeen) parser.FatalError("Unexpected at least 1 NAMESPACE element");
    fNamespace += fCurrent;
    TParseState::EndElement(parser);
}

void TCIMXMLParser::TStateHost::EndElement(TCIMXMLParser& parser) {
    const std::string& text = parser.fText;
    std::size_t length = text.size();
    while (length > 1 && IsBlank(text[length - 1])) --length;  // keeps the first byte, blank or not
    fHost.assign(text, 0, length);
    TParseState::EndElement(parser);
}

void TCIMXMLParser::TStateNamespace::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMName(attribute, &fName);
}

// namespacepath, classname
bool TCIMXMLParser::TStateClassPath::EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eNamespacePath) return false;
    parser.Enter<TStateNamespacePath>(attributes, fHost, fNamespace);
    return true;
}

bool TCIMXMLParser::TStateClassPath::EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eClassName) return false;
    parser.Enter<TStateClassName>(attributes, fClassName);
    return true;
}

// localnamespacepath, classname
bool TCIMXMLParser::TStateLocalClassPath::EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eLocalNamespacePath) return false;
    parser.Enter<TStateLocalNamespacePath>(attributes, fNamespace);
    return true;
}

bool TCIMXMLParser::TStateLocalClassPath::EnterSecond(TCIMXMLParser& parser, EElement element,
                                                      TAttributes& attributes) {
    if (element != EElement::eClassName) return false;
    parser.Enter<TStateClassName>(attributes, fClassName);
    return true;
}

// nothing
void TCIMXMLParser::TStateClassName::StartElement(TCIMXMLParser& parser, EElement, TAttributes&) {
    parser.Unexpected();
}

void TCIMXMLParser::TStateClassName::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMName(attribute, &fName);
}

// namespacepath, instancename
bool TCIMXMLParser::TStateInstancePath::EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eNamespacePath) return false;
    parser.Enter<TStateNamespacePath>(attributes, fHost, fNamespace);
    return true;
}

bool TCIMXMLParser::TStateInstancePath::EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eInstanceName) return false;
    parser.Enter<TStateInstanceName>(attributes, fReference);
    return true;
}

// localnamespacepath, instancename
bool TCIMXMLParser::TStateLocalInstancePath::EnterFirst(TCIMXMLParser& parser, EElement element,
                                                        TAttributes& attributes) {
    if (element != EElement::eLocalNamespacePath) return false;
    parser.Enter<TStateLocalNamespacePath>(attributes, fNamespace);
    return true;
}

bool TCIMXMLParser::TStateLocalInstancePath::EnterSecond(TCIMXMLParser& parser, EElement element,
                                                         TAttributes& attributes) {
    if (element != EElement::eInstanceName) return false;
    parser.Enter<TStateInstanceName>(attributes, fReference);
    return true;
}

// keybinding* | keyvalue | value.reference
void TCIMXMLParser::TStateInstanceName::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (fPhase < 0 || fPhase > 2) parser.Corrupt();
    if (fPhase != 2 && element == EElement::eKeyBinding) {
        fPhase = 1;
        return parser.Enter<TStateKeyBinding>(attributes, fClass, fReference);
    }
    if (fPhase == 0 && element == EElement::eKeyValue) {
        fPhase = 2;
        fHasKeyValue = true;
        return parser.Enter<TStateKeyValue>(attributes, parser, fKeyText);
    }
    if (fPhase == 0 && element == EElement::eValueReference) {
        fPhase = 2;
        fHasReference = true;
        return parser.Enter<TStateValueReference>(attributes, fValue);
    }
    parser.Unexpected();
}

void TCIMXMLParser::TStateInstanceName::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        if (!HandleClassName(attribute, &fClassName)) continue;
        fReference.SetClassName(fClassName);
        fClass = parser.fContainer->FindClass(fClassName);
        if (fClass == nullptr) parser.FatalError("Couldn't find class name " + fClassName);
    }
}

void TCIMXMLParser::TStateInstanceName::EndElement(TCIMXMLParser& parser) {
    if (fHasReference)
        fReference = fValue.operator TCIMReference();
    else if (fHasKeyValue)
        BindFirstKey(parser);
    TParseState::EndElement(parser);
}

void TCIMXMLParser::TStateInstanceName::BindFirstKey(TCIMXMLParser& parser) {
    if (fClass == nullptr) parser.FatalError("Couldn't find class name " + fClassName);
    const std::vector<const TCIMPropertyDecl*> declarations = fClass->EnumeratePropertyDecls();
    const auto key = std::find_if(declarations.begin(), declarations.end(),
                                  [](const TCIMPropertyDecl* declaration) { return IsKey(*declaration); });
    if (key != declarations.end())
        fReference.AddKeyValue((*key)->GetName(), parser.ParseValue((*key)->GetType(), fKeyText));
    else if (!parser.fContainer->isDiffContainer())
        parser.FatalError("Class " + fClassName + " doesn't have any key properties");
}

// (keyvalue | value.reference)*
void TCIMXMLParser::TStateKeyBinding::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eKeyValue) return parser.Enter<TStateKeyValue>(attributes, parser, fKeyText);
    if (element != EElement::eValueReference) parser.Unexpected();
    fIsReference = true;
    parser.Enter<TStateValueReference>(attributes, fValue);
}

void TCIMXMLParser::TStateKeyBinding::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMName(attribute, &fName);
}

void TCIMXMLParser::TStateKeyBinding::EndElement(TCIMXMLParser& parser) {
    if (fIsReference)
        fReference.AddKeyValue(fName, fValue);
    else
        BindText(parser);
    TParseState::EndElement(parser);
}

void TCIMXMLParser::TStateKeyBinding::BindText(TCIMXMLParser& parser) {
    if (fClass == nullptr) parser.FatalError("Couldn't find class name ");  // there was no CLASSNAME
    const TCIMPropertyDecl* const declaration = fClass->FindPropertyDecl(fName);
    if (declaration == nullptr)
        parser.FatalError("Couldn't find property name " + fName + " in class " + fClass->GetName());
    if (IsKey(*declaration))
        fReference.AddKeyValue(fName, parser.ParseValue(declaration->GetType(), fKeyText));
    else if (!parser.fContainer->isDiffContainer())
        // Compatibility: the text is that of a class without keys, though only this property is no key; see
        // docs/oddities.md.
        parser.FatalError("Class " + fClass->GetName() + " doesn't have any key properties");
}

void TCIMXMLParser::TStateKeyValue::EndElement(TCIMXMLParser& parser) {
    fText = parser.fText;
    TParseState::EndElement(parser);
}

// (instancepath | classpath)*
void TCIMXMLParser::TStateObjectPath::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eInstancePath)
        return parser.Enter<TStateInstancePath>(attributes, fHost, fNamespace, fReference);
    if (element == EElement::eClassPath)
        return parser.Enter<TStateClassPath>(attributes, fHost, fNamespace, fClassName);
    parser.Unexpected();
}
