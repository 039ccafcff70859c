#include "xml/WrapperStates.h"

#include <utility>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "model/TCIMClassImpl.h"
#include "model/TCIMInstanceImpl.h"
#include "xml/ObjectStates.h"
#include "xml/PathStates.h"

TCIMXMLParser::TStateAnyWrapper::~TStateAnyWrapper() {
    delete fClass;
    delete fInstance;
}

// (a name or path)?, (class | instance)
void TCIMXMLParser::TStateAnyWrapper::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    const EObject allowed = std::exchange(fAllowed, eNoObject);
    const bool isPathAllowed = std::exchange(fIsPathAllowed, false);
    if ((allowed & eClass) != 0 && element == EElement::eClass) return parser.Enter<TStateClass>(attributes, &fClass);
    if ((allowed & eInstance) != 0 && element == EElement::eInstance)
        return parser.Enter<TStateInstance>(attributes, &fInstance);
    if (isPathAllowed) fAllowed = EnterPath(parser, element, attributes);
    if (fAllowed == eNoObject) parser.Unexpected();
}

auto TCIMXMLParser::TStateAnyWrapper::EnterPath(TCIMXMLParser&, EElement, TAttributes&) -> EObject { return eNoObject; }

TCIMClass* TCIMXMLParser::TStateAnyWrapper::AddToContainer(TCIMXMLParser& parser) {
    if (fClass == nullptr && fInstance == nullptr) parser.FatalError("CIM element syntax error");
    if (fInstance != nullptr) {
        CloseInstance(fInstance);
        fInstance = nullptr;
        return nullptr;
    }
    TCIMClass* const cls = fClass;
    return AddUnlessPresent([this] { AddClass(); }) ? cls : nullptr;
}

void TCIMXMLParser::TStateAnyWrapper::AddClass() {
    try {
        fClass->AddToContainer();
    } catch (...) {
        if (fClass->GetBody()->IsAdded()) fClass = nullptr;  // it failed after the container had taken the class over
        throw;
    }
    fClass = nullptr;
}

void TCIMXMLParser::TStateAnyWrapper::EndElement(TCIMXMLParser& parser) {
    TCIMClass* const cls = AddToContainer(parser);
    if (cls != nullptr) parser.fClassesCollected.push_back(cls);
    TParseState::EndElement(parser);
}

// class | (instancename, instance)
auto TCIMXMLParser::TStateValueNamedObject::EnterPath(TCIMXMLParser& parser, EElement element, TAttributes& attributes)
    -> EObject {
    if (element != EElement::eInstanceName) return eNoObject;
    parser.Enter<TStateInstanceName>(attributes, fReference);
    return eInstance;
}

// (classpath, class) | (instancepath, instance)
auto TCIMXMLParser::TStateValueObjectWithPath::EnterPath(TCIMXMLParser& parser, EElement element,
                                                         TAttributes& attributes) -> EObject {
    if (element == EElement::eClassPath) {
        parser.Enter<TStateClassPath>(attributes, fHost, fNamespace, fClassName);
        return eClass;
    }
    if (element != EElement::eInstancePath) return eNoObject;
    parser.Enter<TStateInstancePath>(attributes, fHost, fNamespace, fReference);
    return eInstance;
}

// (localclasspath, class) | (localinstancepath, instance)
auto TCIMXMLParser::TStateValueObjectWithLocalPath::EnterPath(TCIMXMLParser& parser, EElement element,
                                                              TAttributes& attributes) -> EObject {
    if (element == EElement::eLocalClassPath) {
        parser.Enter<TStateLocalClassPath>(attributes, fNamespace, fClassName);
        return eClass;
    }
    if (element != EElement::eLocalInstancePath) return eNoObject;
    parser.Enter<TStateLocalInstancePath>(attributes, fNamespace, fReference);
    return eInstance;
}

// instancename, instance
auto TCIMXMLParser::TStateValueNamedInstance::EnterPath(TCIMXMLParser& parser, EElement element,
                                                        TAttributes& attributes) -> EObject {
    if (element != EElement::eInstanceName) return eNoObject;
    parser.Enter<TStateInstanceName>(attributes, fReference);
    return eInstance;
}
