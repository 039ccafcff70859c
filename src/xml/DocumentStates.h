#ifndef KYR_XML_DOCUMENTSTATES_H
#define KYR_XML_DOCUMENTSTATES_H

#include "xml/TCIMXMLParser.h"

class TCIMXMLParser::TStateStart : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateCIM : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateDeclaration : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateDeclGroup : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

protected:
    /// Enters a child that holds an object; false if this group does not allow this element.
    virtual bool EnterObject(TCIMXMLParser& parser, EElement element, TAttributes& attributes);

private:
    // Read to check the syntax only; all objects go into the one container.
    std::string fHost;
    std::string fNamespace;
};

class TCIMXMLParser::TStateDeclGroupWithName : public TCIMXMLParser::TStateDeclGroup {
protected:
    bool EnterObject(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateDeclGroupWithPath : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateQualifierDeclaration : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

    void AddScope(TCIMQualifierDecl::EScope scope) { fScope = fScope | scope; }

private:
    bool IsConsistent() const;

    TCIMQualifierDecl::EScope fScope = {};
    std::string fName;
    TCIMValue::TCIMType fType = TCIMValue::TCIMType::eCIMNone;
    bool fIsArray = false;
    bool fIsArraySet = false;
    unsigned int fArraySize = 0;
    TCIMQualifierDecl::EFlavor fFlavor = TCIMQualifierDecl::eFlavorOverridable | TCIMQualifierDecl::eFlavorToSubclass;
    TCIMValue fValue;
    bool fHasValue = false;
};

class TCIMXMLParser::TStateScope : public TCIMXMLParser::TParseState {
public:
    explicit TStateScope(TStateQualifierDeclaration& declaration) : fDeclaration(declaration) {}
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

private:
    TStateQualifierDeclaration& fDeclaration;
};

#endif
