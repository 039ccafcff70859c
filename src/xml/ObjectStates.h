#ifndef KYR_XML_OBJECTSTATES_H
#define KYR_XML_OBJECTSTATES_H

#include <memory>

#include "kyr/TCIMPropertyDecl.h"
#include "xml/TCIMXMLParser.h"

class TCIMProperty;
class TCIMQualifier;

// TStateClass and TStateInstance store the object in a pointer of the wrapper state below them, which owns it.

class TCIMXMLParser::TStateClass : public TCIMXMLParser::TParseState {
public:
    explicit TStateClass(TCIMClass** out) : fOut(out) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

private:
    std::string fName;
    std::string fSuperClass;
    TCIMClass** fOut;
};

class TCIMXMLParser::TStateInstance : public TCIMXMLParser::TParseState {
public:
    explicit TStateInstance(TCIMInstance** out) : fOut(out) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

private:
    std::string fClassName;
    TCIMInstance** fOut;
};

class TCIMXMLParser::TStateQualifier : public TCIMXMLParser::TParseState {
public:
    explicit TStateQualifier(ICIMAllowQualifiers& target) : fTarget(target) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    void AddQualifier();
    bool IsAdopted(const TCIMQualifier* qualifier) const;

    ICIMAllowQualifiers& fTarget;
    std::string fName;
    TCIMQualifierDecl* fDeclaration = nullptr;  // the container's
    TCIMValue::TCIMType fType = TCIMValue::TCIMType::eCIMNone;
    bool fPropagated = false;
    TCIMQualifierDecl::EFlavor fFlavor = TCIMQualifierDecl::eFlavorOverridable | TCIMQualifierDecl::eFlavorToSubclass;
    TCIMValue fValue;
    bool fHasValue = false;
};

/// Base of the three kinds of property declaration.
class TCIMXMLParser::TStateAnyPropertyDecl : public TCIMXMLParser::TParseState {
public:
    explicit TStateAnyPropertyDecl(TCIMClass& cls) : fClass(cls) {}
    void EndElement(TCIMXMLParser& parser) override;

protected:
    bool HandleCommonAttr(TAttribute attribute);
    void MakeDeclaration();
    bool EnterQualifier(TCIMXMLParser& parser, EElement element, TAttributes& attributes);
    virtual void SetNullValue(TCIMXMLParser& parser) = 0;

    TCIMValue fValue;
    bool fHasValue = false;

private:
    TCIMClass& fClass;
    std::string fName;
    std::string fClassOrigin;
    bool fPropagated = false;
    std::unique_ptr<TCIMPropertyDecl> fDeclaration;  // until the class owns it
};

class TCIMXMLParser::TStatePropertyDecl : public TCIMXMLParser::TStateAnyPropertyDecl {
public:
    using TStateAnyPropertyDecl::TStateAnyPropertyDecl;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

protected:
    void SetNullValue(TCIMXMLParser& parser) override;

private:
    TCIMValue::TCIMType fType = TCIMValue::TCIMType::eCIMNone;
};

class TCIMXMLParser::TStatePropertyArrayDecl : public TCIMXMLParser::TStateAnyPropertyDecl {
public:
    using TStateAnyPropertyDecl::TStateAnyPropertyDecl;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

protected:
    void SetNullValue(TCIMXMLParser& parser) override;

private:
    TCIMValue::TCIMType fType = TCIMValue::TCIMType::eCIMNone;
    unsigned int fArraySize = 0;
};

class TCIMXMLParser::TStatePropertyReferenceDecl : public TCIMXMLParser::TStateAnyPropertyDecl {
public:
    using TStateAnyPropertyDecl::TStateAnyPropertyDecl;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

protected:
    void SetNullValue(TCIMXMLParser& parser) override;

private:
    std::string fReferenceClass;
};

/// Base of the three kinds of property of an instance.
class TCIMXMLParser::TStateAnyProperty : public TCIMXMLParser::TParseState {
public:
    explicit TStateAnyProperty(TCIMInstance& instance) : fInstance(instance) {}

protected:
    bool HandleCommonAttr(TAttribute attribute);
    void SetPropertyValue();

    TCIMInstance& fInstance;
    std::string fName;
    TCIMValue fValue;
    bool fHasValue = false;

private:
    std::string fClassOrigin;
    bool fPropagated = false;
};

class TCIMXMLParser::TStateProperty : public TCIMXMLParser::TStateAnyProperty {
public:
    using TStateAnyProperty::TStateAnyProperty;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    TCIMProperty& GetProperty();

    TCIMProperty* fProperty = nullptr;  // of the instance; null until looked up by fName
};

class TCIMXMLParser::TStatePropertyArray : public TCIMXMLParser::TStateAnyProperty {
public:
    using TStateAnyProperty::TStateAnyProperty;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    TCIMValue::TCIMType fType = TCIMValue::TCIMType::eCIMNone;
    unsigned int fArraySize = 0;
};

class TCIMXMLParser::TStatePropertyReference : public TCIMXMLParser::TStateAnyProperty {
public:
    using TStateAnyProperty::TStateAnyProperty;
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    std::string fReferenceClass;
};

#endif
