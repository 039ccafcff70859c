#include "xml/ObjectStates.h"

#include <typeinfo>

#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/TCIMInstanceImpl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TCIMQualifierImpl.h"
#include "platform/CoreLog.h"
#include "xml/ValueStates.h"

namespace {

/// Runs an action; if it raises kyrStatusNotFound, logs the text with the name that was not found.
template <typename TAction>
void LogMissing(const char* text, const std::string& name, TAction&& action) {
    try {
        action();
    } catch (const TKYRException& e) {
        if (e.fCode == kyrStatusNotFound) LogCoreError(text + name);
        throw TKYRException(e.fCode);
    }
}

}  // namespace

// qualifier*, (property | property.array | property.reference)*, method*
void TCIMXMLParser::TStateClass::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (element == EElement::eQualifier) return parser.Enter<TStateQualifier>(attributes, **fOut);
            fPhase = 1;
            [[fallthrough]];
        case 1:
            if (element == EElement::eProperty) return parser.Enter<TStatePropertyDecl>(attributes, **fOut);
            if (element == EElement::ePropertyArray) return parser.Enter<TStatePropertyArrayDecl>(attributes, **fOut);
            if (element == EElement::ePropertyReference)
                return parser.Enter<TStatePropertyReferenceDecl>(attributes, **fOut);
            fPhase = 2;
            [[fallthrough]];
        case 2:
            // Compatibility: METHOD has no state, so that its attributes replace the class by an empty one named like
            // the method; see docs/oddities.md.
            if (element == EElement::eMethod) return parser.HandleAttrsOnTop(attributes);
            parser.Unexpected();
        default:
            parser.Corrupt();
    }
}

void TCIMXMLParser::TStateClass::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMName(attribute, &fName) || HandleSuperClass(attribute, &fSuperClass);
    TCIMClass* const superclass = parser.fContainer->GetClass(fSuperClass);
    TCIMClass* const cls = parser.fContainer->AllocateClass(fName, superclass);
    delete *fOut;
    *fOut = cls;
}

// qualifier*, (property | property.array | property.reference)*
void TCIMXMLParser::TStateInstance::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            // Compatibility: QUALIFIER has no state here and makes the instance anew; see docs/oddities.md.
            if (element == EElement::eQualifier) return parser.HandleAttrsOnTop(attributes);
            fPhase = 1;
            [[fallthrough]];
        case 1:
            if (element == EElement::eProperty) return parser.Enter<TStateProperty>(attributes, **fOut);
            if (element == EElement::ePropertyArray) return parser.Enter<TStatePropertyArray>(attributes, **fOut);
            if (element == EElement::ePropertyReference)
                return parser.Enter<TStatePropertyReference>(attributes, **fOut);
            parser.Unexpected();
        default:
            parser.Corrupt();
    }
}

void TCIMXMLParser::TStateInstance::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleClassName(attribute, &fClassName);
    LogMissing("TCIMXMLParser: Couldn't find class ", fClassName, [&] {
        TCIMClass* const cls = parser.fContainer->GetClass(fClassName);
        TCIMInstance* const instance = parser.fContainer->AllocateInstance(cls);
        delete *fOut;
        *fOut = instance;
    });
}

// (value | value.array)*
void TCIMXMLParser::TStateQualifier::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    fHasValue = true;
    if (element == EElement::eValue) return parser.Enter<TStateValue>(attributes, parser, fValue, fType);
    if (element == EElement::eValueArray) return parser.Enter<TStateValueArray>(attributes, parser, fValue, fType, 0u);
    parser.Unexpected();
}

void TCIMXMLParser::TStateQualifier::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        if (HandleCIMName(attribute, &fName)) break;
    LogMissing("TCIMXMLParser: Couldn't find qualifier ", fName, [&] {
        fDeclaration = parser.fContainer->GetQualifierDecl(fName);
        fFlavor = fDeclaration->GetFlavor();
    });
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMType(attribute, &fType) || HandlePropagated(attribute, &fPropagated) ||
            HandleQualifierFlavor(attribute, &fFlavor);
}

void TCIMXMLParser::TStateQualifier::EndElement(TCIMXMLParser& parser) {
    // A propagated qualifier is already there, inherited from the superclass.
    if (!fPropagated) LogMissing("TCIMXMLParser: Couldn't find qualifier ", fName, [this] { AddQualifier(); });
    TParseState::EndElement(parser);
}

void TCIMXMLParser::TStateQualifier::AddQualifier() {
    if (!fHasValue) fValue = TCIMValue(fDeclaration->GetType(), 0);
    std::unique_ptr<TCIMQualifier> qualifier(new TCIMQualifier(*fDeclaration, TCIMValue(), fFlavor));
    TCIMQualifierImpl::Of(*qualifier).TakeValue(fValue);
    fTarget.AddQualifier(*qualifier);
    if (IsAdopted(qualifier.get())) qualifier.release();
}

/// False if an equal qualifier was kept instead. A carrier of a class of the host's is asked, since it may own the
/// qualifier without the core's knowing, and may watch what it is asked for. One that has none of that name has taken
/// the qualifier elsewhere, and may have destroyed it.
bool TCIMXMLParser::TStateQualifier::IsAdopted(const TCIMQualifier* qualifier) const {
    const std::type_info& carrier = typeid(fTarget);
    const bool isOwn = carrier == typeid(TCIMPropertyDecl) || carrier == typeid(TCIMClass);
    if (isOwn && TCIMQualifierImpl::Of(*qualifier).IsAdopted()) return true;
    try {
        return fTarget.GetQualifier(fDeclaration->GetName()) == qualifier;
    } catch (const TKYRException& e) {
        if (isOwn || e.fCode != kyrStatusNotFound) throw;
        return true;
    }
}

bool TCIMXMLParser::TStateAnyPropertyDecl::HandleCommonAttr(TAttribute attribute) {
    return HandleCIMName(attribute, &fName) || HandleClassOrigin(attribute, &fClassOrigin) ||
           HandlePropagated(attribute, &fPropagated);
}

/// Called at the start tag, because qualifiers are attached to the declaration before its end.
void TCIMXMLParser::TStateAnyPropertyDecl::MakeDeclaration() {
    fDeclaration.reset(new TCIMPropertyDecl(fName, fClass, TCIMValue()));
}

bool TCIMXMLParser::TStateAnyPropertyDecl::EnterQualifier(TCIMXMLParser& parser, EElement element,
                                                          TAttributes& attributes) {
    if (element != EElement::eQualifier) return false;
    parser.Enter<TStateQualifier>(attributes, *fDeclaration);
    return true;
}

void TCIMXMLParser::TStateAnyPropertyDecl::EndElement(TCIMXMLParser& parser) {
    if (!fHasValue) SetNullValue(parser);
    fDeclaration->SetValue(fValue);
    if (AddUnlessPresent([this] { fDeclaration->AddToContainer(); })) fDeclaration.release();
    TParseState::EndElement(parser);
}

// (qualifier | value)*
void TCIMXMLParser::TStatePropertyDecl::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (EnterQualifier(parser, element, attributes)) return;
    if (element != EElement::eValue) parser.Unexpected();
    fHasValue = true;
    parser.Enter<TStateValue>(attributes, parser, fValue, fType);
}

void TCIMXMLParser::TStatePropertyDecl::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCommonAttr(attribute) || HandleCIMType(attribute, &fType);
    MakeDeclaration();
}

void TCIMXMLParser::TStatePropertyDecl::SetNullValue(TCIMXMLParser&) { fValue = TCIMValue(fType, 0); }

// (qualifier | value.array)*
void TCIMXMLParser::TStatePropertyArrayDecl::StartElement(TCIMXMLParser& parser, EElement element,
                                                          TAttributes& attributes) {
    if (EnterQualifier(parser, element, attributes)) return;
    if (element != EElement::eValueArray) parser.Unexpected();
    fHasValue = true;
    parser.Enter<TStateValueArray>(attributes, parser, fValue, fType, fArraySize);
}

void TCIMXMLParser::TStatePropertyArrayDecl::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCommonAttr(attribute) || HandleCIMType(attribute, &fType) || HandleArraySize(attribute, &fArraySize);
    MakeDeclaration();
}

void TCIMXMLParser::TStatePropertyArrayDecl::SetNullValue(TCIMXMLParser&) {
    fValue = TCIMValue(ArrayOf(fType), fArraySize);
}

// (qualifier | value.reference)*
void TCIMXMLParser::TStatePropertyReferenceDecl::StartElement(TCIMXMLParser& parser, EElement element,
                                                              TAttributes& attributes) {
    if (EnterQualifier(parser, element, attributes)) return;
    if (element != EElement::eValueReference) parser.Unexpected();
    fHasValue = true;
    parser.Enter<TStateValueReference>(attributes, fValue);
}

void TCIMXMLParser::TStatePropertyReferenceDecl::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCommonAttr(attribute) || HandleReferenceClass(attribute, &fReferenceClass);
    MakeDeclaration();
}

void TCIMXMLParser::TStatePropertyReferenceDecl::SetNullValue(TCIMXMLParser& parser) {
    fValue = TCIMValue(TCIMValue::TCIMType::eCIMReference, 0);
    fValue.SetReferencedClass(*parser.fContainer->GetClass(fReferenceClass));
}

bool TCIMXMLParser::TStateAnyProperty::HandleCommonAttr(TAttribute attribute) {
    return HandleCIMName(attribute, &fName) || HandleClassOrigin(attribute, &fClassOrigin) ||
           HandlePropagated(attribute, &fPropagated);
}

void TCIMXMLParser::TStateAnyProperty::SetPropertyValue() {
    TCIMInstanceImpl::Of(fInstance).TakePropertyValue(fName, fValue);
}

TCIMProperty& TCIMXMLParser::TStateProperty::GetProperty() {
    if (fProperty == nullptr) fProperty = fInstance.GetProperty(fName);
    return *fProperty;
}

// (qualifier | value)*
// Compatibility: QUALIFIER has no state here. Its attributes are taken for those of the property, and its end tag ends
// the property. See docs/oddities.md.
void TCIMXMLParser::TStateProperty::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eQualifier) return parser.HandleAttrsOnTop(attributes);
    if (element != EElement::eValue) parser.Unexpected();
    fHasValue = true;
    parser.Enter<TStateValue>(attributes, parser, fValue, GetProperty().GetType());
}

void TCIMXMLParser::TStateProperty::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    TCIMValue::TCIMType type = TCIMValue::TCIMType::eCIMNone;
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCommonAttr(attribute) || HandleCIMType(attribute, &type);
    fProperty = nullptr;
    if (parser.fTR907Mode) return;
    LogMissing("TCIMXMLParser: Couldn't find property ", fName, [&] {
        if (type != GetProperty().GetType()) parser.FatalError("Property type != property declaration type");
    });
}

void TCIMXMLParser::TStateProperty::EndElement(TCIMXMLParser& parser) {
    if (!fHasValue) fValue = TCIMValue(GetProperty().GetType(), 0);
    if (!parser.fTR907Mode || fValue.GetType() == GetProperty().GetType()) GetProperty().GetBody()->TakeValue(fValue);
    TParseState::EndElement(parser);
}

// (qualifier | value.array)*
void TCIMXMLParser::TStatePropertyArray::StartElement(TCIMXMLParser& parser, EElement element,
                                                      TAttributes& attributes) {
    if (element == EElement::eQualifier) return parser.HandleAttrsOnTop(attributes);
    if (element != EElement::eValueArray) parser.Unexpected();
    fHasValue = true;
    parser.Enter<TStateValueArray>(attributes, parser, fValue, fType, fArraySize);
}

void TCIMXMLParser::TStatePropertyArray::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCommonAttr(attribute) || HandleCIMType(attribute, &fType) || HandleArraySize(attribute, &fArraySize);
}

void TCIMXMLParser::TStatePropertyArray::EndElement(TCIMXMLParser& parser) {
    if (!fHasValue) fValue = TCIMValue(ArrayOf(fType), fArraySize);
    SetPropertyValue();
    TParseState::EndElement(parser);
}

// (qualifier | value.reference)*
void TCIMXMLParser::TStatePropertyReference::StartElement(TCIMXMLParser& parser, EElement element,
                                                          TAttributes& attributes) {
    if (element == EElement::eQualifier) return parser.HandleAttrsOnTop(attributes);
    if (element != EElement::eValueReference) parser.Unexpected();
    fHasValue = true;
    parser.Enter<TStateValueReference>(attributes, fValue);
}

void TCIMXMLParser::TStatePropertyReference::HandleAttrs(TCIMXMLParser&, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCommonAttr(attribute) || HandleReferenceClass(attribute, &fReferenceClass);
    fInstance.GetClass()->GetPropertyDecl(fName);  // raises if the class does not declare it
}

void TCIMXMLParser::TStatePropertyReference::EndElement(TCIMXMLParser& parser) {
    if (!fHasValue) {
        fValue = TCIMValue(TCIMValue::TCIMType::eCIMReference, 0);
        fValue.SetReferencedClass(*parser.fContainer->GetClass(fReferenceClass));
    }
    SetPropertyValue();
    TParseState::EndElement(parser);
}
