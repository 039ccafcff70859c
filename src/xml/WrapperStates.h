#ifndef KYR_XML_WRAPPERSTATES_H
#define KYR_XML_WRAPPERSTATES_H

#include "kyr/TCIMReference.h"
#include "xml/TCIMXMLParser.h"

/// An element that holds exactly one class or instance, with its name or path in front where the element has one. The
/// object is made at its start tag and joins the container at the end of the wrapper, which owns it until then.
class TCIMXMLParser::TStateAnyWrapper : public TCIMXMLParser::TParseState {
public:
    ~TStateAnyWrapper() override;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

protected:
    enum EObject { eNoObject = 0, eClass = 1, eInstance = 2, eEither = eClass | eInstance };

    /// Takes the objects that may come without a name or path in front.
    explicit TStateAnyWrapper(EObject allowed) : fAllowed(allowed) {}
    /// Adds the object to the container. Returns the class if there is one and the container did not have it before.
    TCIMClass* AddToContainer(TCIMXMLParser& parser);

private:
    /// Enters a name or path and returns the object that must follow it; eNoObject if this is another element.
    virtual EObject EnterPath(TCIMXMLParser& parser, EElement element, TAttributes& attributes);
    void AddClass();

    EObject fAllowed;  // as the next child
    bool fIsPathAllowed = true;
    TCIMClass* fClass = nullptr;
    TCIMInstance* fInstance = nullptr;
};

class TCIMXMLParser::TStateValueObject : public TCIMXMLParser::TStateAnyWrapper {
public:
    TStateValueObject() : TStateAnyWrapper(eEither) {}
};

class TCIMXMLParser::TStateValueNamedObject : public TCIMXMLParser::TStateAnyWrapper {
public:
    TStateValueNamedObject() : TStateAnyWrapper(eClass) {}

private:
    EObject EnterPath(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    TCIMReference fReference = nullptr;
};

class TCIMXMLParser::TStateValueObjectWithPath : public TCIMXMLParser::TStateAnyWrapper {
public:
    TStateValueObjectWithPath() : TStateAnyWrapper(eNoObject) {}

private:
    EObject EnterPath(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string fHost;
    std::string fNamespace;
    std::string fClassName;
    TCIMReference fReference = nullptr;
};

class TCIMXMLParser::TStateValueObjectWithLocalPath : public TCIMXMLParser::TStateAnyWrapper {
public:
    TStateValueObjectWithLocalPath() : TStateAnyWrapper(eNoObject) {}

private:
    EObject EnterPath(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string fNamespace;
    std::string fClassName;
    TCIMReference fReference = nullptr;
};

class TCIMXMLParser::TStateValueNamedInstance : public TCIMXMLParser::TStateAnyWrapper {
public:
    TStateValueNamedInstance() : TStateAnyWrapper(eNoObject) {}

private:
    EObject EnterPath(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    TCIMReference fReference = nullptr;
};

#endif
