#ifndef KYR_XML_WRAPPERSTATES_H
#define KYR_XML_WRAPPERSTATES_H

#include "kyr/TCIMReference.h"
#include "xml/TCIMXMLParser.h"

/// What holds exactly one class or instance. The object is made at its start tag and joins the container at the end
/// of the wrapper, which owns it until then.
class TCIMXMLParser::TStateAnyWrapper : public TCIMXMLParser::TParseState {
public:
    ~TStateAnyWrapper() override;

protected:
    void EnterClass(TCIMXMLParser& parser, TAttributes& attributes, int nextPhase);
    void EnterInstance(TCIMXMLParser& parser, TAttributes& attributes, int nextPhase);
    /// The class, if one has joined the container.
    TCIMClass* AddToContainer(TCIMXMLParser& parser, int completePhase);
    /// EndElement of those below a declaration.
    void Finish(TCIMXMLParser& parser, std::string& name, int completePhase);

private:
    void AddClass();

    bool fIsClass = false;
    TCIMClass* fClass = nullptr;
    TCIMInstance* fInstance = nullptr;
};

class TCIMXMLParser::TStateValueObject : public TCIMXMLParser::TStateAnyWrapper {
public:
    void StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser, std::string& name) override;
};

class TCIMXMLParser::TStateValueNamedObject : public TCIMXMLParser::TStateAnyWrapper {
public:
    void StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser, std::string& name) override;

private:
    TCIMReference fReference = nullptr;
};

class TCIMXMLParser::TStateValueObjectWithPath : public TCIMXMLParser::TStateAnyWrapper {
public:
    void StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser, std::string& name) override;

private:
    std::string fHost;
    std::string fNamespace;
    std::string fClassName;
    TCIMReference fReference = nullptr;
};

class TCIMXMLParser::TStateValueObjectWithLocalPath : public TCIMXMLParser::TStateAnyWrapper {
public:
    void StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser, std::string& name) override;

private:
    std::string fNamespace;
    std::string fClassName;
    TCIMReference fReference = nullptr;
};

class TCIMXMLParser::TStateValueNamedInstance : public TCIMXMLParser::TStateAnyWrapper {
public:
    void StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser, std::string& name) override;

private:
    TCIMReference fReference = nullptr;
};

#endif
