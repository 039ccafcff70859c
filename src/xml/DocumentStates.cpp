#include "xml/DocumentStates.h"

#include "kyr/TContainer.h"
#include "xml/MessageStates.h"
#include "xml/PathStates.h"
#include "xml/ValueStates.h"
#include "xml/WrapperStates.h"

// cim
void TCIMXMLParser::TStateStart::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eCIM) return parser.Enter<TStateCIM>(attributes);
    parser.Unexpected();
}

// (declaration | message)*
void TCIMXMLParser::TStateCIM::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eDeclaration) return parser.Enter<TStateDeclaration>(attributes);
    if (element == EElement::eMessage) return parser.Enter<TStateMessage>(attributes);
    parser.Unexpected();
}

void TCIMXMLParser::TStateCIM::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (const auto& [name, value] : attributes) {
        if (name == "cimversion" && value != "2.8" && value != "2.0") parser.FatalError("Unknown CIM version");
        if (name == "dtdversion" && value != "2.1" && value != "2.0") parser.FatalError("Unknown DTD version");
    }
}

// (declgroup | declgroup.withname | declgroup.withpath)*
void TCIMXMLParser::TStateDeclaration::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eDeclGroup) return parser.Enter<TStateDeclGroup>(attributes);
    if (element == EElement::eDeclGroupWithName) return parser.Enter<TStateDeclGroupWithName>(attributes);
    if (element == EElement::eDeclGroupWithPath) return parser.Enter<TStateDeclGroupWithPath>(attributes);
    parser.Unexpected();
}

// (namespacepath | localnamespacepath)?, qualifier.declaration*, object*
void TCIMXMLParser::TStateDeclGroup::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            fPhase = 1;
            if (element == EElement::eNamespacePath)
                return parser.Enter<TStateNamespacePath>(attributes, fHost, fNamespace);
            if (element == EElement::eLocalNamespacePath)
                return parser.Enter<TStateLocalNamespacePath>(attributes, fNamespace);
            [[fallthrough]];
        case 1:
            if (element == EElement::eQualifierDeclaration) return parser.Enter<TStateQualifierDeclaration>(attributes);
            fPhase = 2;
            [[fallthrough]];
        case 2:
            if (EnterObject(parser, element, attributes)) return;
            parser.Unexpected();
        default:
            parser.Corrupt();
    }
}

bool TCIMXMLParser::TStateDeclGroup::EnterObject(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element != EElement::eValueObject) return false;
    parser.Enter<TStateValueObject>(attributes);
    return true;
}

bool TCIMXMLParser::TStateDeclGroupWithName::EnterObject(TCIMXMLParser& parser, EElement element,
                                                         TAttributes& attributes) {
    if (element != EElement::eValueNamedObject) return false;
    parser.Enter<TStateValueNamedObject>(attributes);
    return true;
}

// (value.objectwithpath | value.objectwithlocalpath)*
void TCIMXMLParser::TStateDeclGroupWithPath::StartElement(TCIMXMLParser& parser, EElement element,
                                                          TAttributes& attributes) {
    if (element == EElement::eValueObjectWithPath) return parser.Enter<TStateValueObjectWithPath>(attributes);
    if (element == EElement::eValueObjectWithLocalPath) return parser.Enter<TStateValueObjectWithLocalPath>(attributes);
    parser.Unexpected();
}

// nothing | scope, (value | value.array)*
void TCIMXMLParser::TStateQualifierDeclaration::StartElement(TCIMXMLParser& parser, EElement element,
                                                             TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (element != EElement::eScope) parser.FatalError("Expected SCOPE element");
            fPhase = 1;
            return parser.Enter<TStateScope>(attributes, *this);
        case 1:
            fHasValue = true;
            if (element == EElement::eValue) return parser.Enter<TStateValue>(attributes, parser, fValue, fType);
            if (element == EElement::eValueArray)
                return parser.Enter<TStateValueArray>(attributes, parser, fValue, fType, fArraySize);
            parser.Unexpected();
        default:
            parser.Corrupt();
    }
}

void TCIMXMLParser::TStateQualifierDeclaration::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        if (HandleCIMName(attribute, &fName) || HandleCIMType(attribute, &fType)) continue;
        if (Is(attribute->first, "isarray")) {
            fIsArray = ConvertBool(attribute->second);
            fIsArraySet = true;
            continue;
        }
        HandleArraySize(attribute, &fArraySize) || HandleQualifierFlavor(attribute, &fFlavor);
    }
    if (fIsArray) fType = ArrayOf(fType);
}

void TCIMXMLParser::TStateQualifierDeclaration::EndElement(TCIMXMLParser& parser) {
    if (!IsConsistent()) parser.FatalError("Incompatible attributes");
    if (!fHasValue) fValue = TCIMValue(fType, fArraySize);
    AddUnlessPresent(
        [&] { parser.fContainer->AllocateQualifierDecl(fName, fValue, fScope, fFlavor)->AddToContainer(); });
    TParseState::EndElement(parser);
}

bool TCIMXMLParser::TStateQualifierDeclaration::IsConsistent() const {
    if (fIsArraySet && fArraySize != 0 && !fIsArray) return false;
    if (!fHasValue) return true;
    if (fIsArraySet && fValue.IsArray() != fIsArray) return false;
    return fValue.IsArray() == (fArraySize != 0);  // an array needs ARRAYSIZE, unlike in the DTD; see docs/oddities.md
}

void TCIMXMLParser::TStateScope::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    // Compatibility: the value is ignored, "false" too; see docs/oddities.md.
    for (const auto& [name, value] : attributes) {
        if (name == "class") fDeclaration.AddScope(TCIMQualifierDecl::eScopeClass);
        if (name == "association") fDeclaration.AddScope(TCIMQualifierDecl::eScopeAssociation);
        if (name == "reference") fDeclaration.AddScope(TCIMQualifierDecl::eScopeReference);
        if (name == "property") fDeclaration.AddScope(TCIMQualifierDecl::eScopeProperty);
    }
}
