#include "xml/WrapperStates.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "model/InstanceCloser.h"
#include "model/TCIMClassImpl.h"
#include "xml/ObjectStates.h"
#include "xml/PathStates.h"

TCIMXMLParser::TStateAnyWrapper::~TStateAnyWrapper() {
    delete fClass;
    delete fInstance;
}

void TCIMXMLParser::TStateAnyWrapper::EnterClass(TCIMXMLParser& parser, TAttributes& attributes, int nextPhase) {
    fPhase = nextPhase;
    fIsClass = true;
    parser.Enter<TStateClass>(attributes, &fClass);
}

void TCIMXMLParser::TStateAnyWrapper::EnterInstance(TCIMXMLParser& parser, TAttributes& attributes, int nextPhase) {
    fPhase = nextPhase;
    parser.Enter<TStateInstance>(attributes, &fInstance);
}

TCIMClass* TCIMXMLParser::TStateAnyWrapper::AddToContainer(TCIMXMLParser& parser, int completePhase) {
    if (fPhase != completePhase || (fIsClass ? fClass == nullptr : fInstance == nullptr))
        parser.FatalError("CIM element syntax error");
    if (!fIsClass) {
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
        if (fClass->GetBody()->IsAdded()) fClass = nullptr;  // failed behind the point where the container took it
        throw;
    }
    fClass = nullptr;
}

void TCIMXMLParser::TStateAnyWrapper::Finish(TCIMXMLParser& parser, std::string& name, int completePhase) {
    TCIMClass* const cls = AddToContainer(parser, completePhase);
    if (cls != nullptr) parser.fClassesCollected.push_back(cls);
    TParseState::EndElement(parser, name);
}

// class | instance
void TCIMXMLParser::TStateValueObject::StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (Is(name, "class")) return EnterClass(parser, attributes, 1);
            if (Is(name, "instance")) return EnterInstance(parser, attributes, 1);
            break;
        case 1:
            break;
        default:
            parser.Corrupt();
    }
    parser.Unexpected(name);
}

void TCIMXMLParser::TStateValueObject::EndElement(TCIMXMLParser& parser, std::string& name) { Finish(parser, name, 1); }

// class | (instancename, instance)
void TCIMXMLParser::TStateValueNamedObject::StartElement(TCIMXMLParser& parser, std::string& name,
                                                         TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (Is(name, "class")) return EnterClass(parser, attributes, 2);
            if (!Is(name, "instancename")) break;
            fPhase = 1;
            return parser.Enter<TStateInstanceName>(attributes, fReference);
        case 1:
            if (Is(name, "instance")) return EnterInstance(parser, attributes, 2);
            break;
        case 2:
            break;
        default:
            parser.Corrupt();
    }
    parser.Unexpected(name);
}

void TCIMXMLParser::TStateValueNamedObject::EndElement(TCIMXMLParser& parser, std::string& name) {
    Finish(parser, name, 2);
}

// (classpath, class) | (instancepath, instance)
void TCIMXMLParser::TStateValueObjectWithPath::StartElement(TCIMXMLParser& parser, std::string& name,
                                                            TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (Is(name, "classpath")) {
                fPhase = 1;
                return parser.Enter<TStateClassPath>(attributes, fHost, fNamespace, fClassName);
            }
            if (!Is(name, "instancepath")) break;
            fPhase = 2;
            return parser.Enter<TStateInstancePath>(attributes, fHost, fNamespace, fReference);
        case 1:
            if (Is(name, "class")) return EnterClass(parser, attributes, 3);
            break;
        case 2:
            if (Is(name, "instance")) return EnterInstance(parser, attributes, 3);
            break;
        case 3:
            break;
        default:
            parser.Corrupt();
    }
    parser.Unexpected(name);
}

void TCIMXMLParser::TStateValueObjectWithPath::EndElement(TCIMXMLParser& parser, std::string& name) {
    Finish(parser, name, 3);
}

// (localclasspath, class) | (localinstancepath, instance)
void TCIMXMLParser::TStateValueObjectWithLocalPath::StartElement(TCIMXMLParser& parser, std::string& name,
                                                                 TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (Is(name, "localclasspath")) {
                fPhase = 1;
                return parser.Enter<TStateLocalClassPath>(attributes, fNamespace, fClassName);
            }
            if (!Is(name, "localinstancepath")) break;
            fPhase = 2;
            return parser.Enter<TStateLocalInstancePath>(attributes, fNamespace, fReference);
        case 1:
            if (Is(name, "class")) return EnterClass(parser, attributes, 3);
            break;
        case 2:
            if (Is(name, "instance")) return EnterInstance(parser, attributes, 3);
            break;
        case 3:
            break;
        default:
            parser.Corrupt();
    }
    parser.Unexpected(name);
}

void TCIMXMLParser::TStateValueObjectWithLocalPath::EndElement(TCIMXMLParser& parser, std::string& name) {
    Finish(parser, name, 3);
}

// instancename, instance
void TCIMXMLParser::TStateValueNamedInstance::StartElement(TCIMXMLParser& parser, std::string& name,
                                                           TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (!Is(name, "instancename")) break;
            fPhase = 1;
            return parser.Enter<TStateInstanceName>(attributes, fReference);
        case 1:
            if (Is(name, "instance")) return EnterInstance(parser, attributes, 2);
            break;
        case 2:
            break;
        default:
            parser.Corrupt();
    }
    parser.Unexpected(name);
}

void TCIMXMLParser::TStateValueNamedInstance::EndElement(TCIMXMLParser& parser, std::string& name) {
    Finish(parser, name, 2);
}
