#ifndef KYR_XML_PATHSTATES_H
#define KYR_XML_PATHSTATES_H

#include "kyr/TCIMReference.h"
#include "xml/TCIMXMLParser.h"

// These states write into variables of the states below them on the stack.

/// An element whose content is two elements in a fixed order.
class TCIMXMLParser::TStateTwoElements : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

private:
    /// Each enters the child with this name; false if another one must stand here.
    virtual bool EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) = 0;
    virtual bool EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) = 0;
};

class TCIMXMLParser::TStateNamespacePath : public TCIMXMLParser::TStateTwoElements {
public:
    TStateNamespacePath(std::string& host, std::string& nameSpace) : fHost(host), fNamespace(nameSpace) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

private:
    bool EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    bool EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string& fHost;
    std::string& fNamespace;
};

class TCIMXMLParser::TStateLocalNamespacePath : public TCIMXMLParser::TParseState {
public:
    explicit TStateLocalNamespacePath(std::string& nameSpace) : fNamespace(nameSpace) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    std::string& fNamespace;
    std::string fCurrent;
    bool fSeen = false;
};

class TCIMXMLParser::TStateHost : public TCIMXMLParser::TParseState {
public:
    TStateHost(TCIMXMLParser& parser, std::string& host) : fReader(parser), fHost(host) {}
    void EndElement(TCIMXMLParser& parser) override;

private:
    TTextReader fReader;
    std::string& fHost;
};

class TCIMXMLParser::TStateNamespace : public TCIMXMLParser::TParseState {
public:
    explicit TStateNamespace(std::string& name) : fName(name) {}
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

private:
    std::string& fName;
};

class TCIMXMLParser::TStateClassPath : public TCIMXMLParser::TStateTwoElements {
public:
    TStateClassPath(std::string& host, std::string& nameSpace, std::string& className)
        : fHost(host), fNamespace(nameSpace), fClassName(className) {}

private:
    bool EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    bool EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string& fHost;
    std::string& fNamespace;
    std::string& fClassName;
};

class TCIMXMLParser::TStateLocalClassPath : public TCIMXMLParser::TStateTwoElements {
public:
    TStateLocalClassPath(std::string& nameSpace, std::string& className)
        : fNamespace(nameSpace), fClassName(className) {}

private:
    bool EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    bool EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string& fNamespace;
    std::string& fClassName;
};

class TCIMXMLParser::TStateClassName : public TCIMXMLParser::TParseState {
public:
    explicit TStateClassName(std::string& name) : fName(name) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

private:
    std::string& fName;
};

class TCIMXMLParser::TStateInstancePath : public TCIMXMLParser::TStateTwoElements {
public:
    TStateInstancePath(std::string& host, std::string& nameSpace, TCIMReference& reference)
        : fHost(host), fNamespace(nameSpace), fReference(reference) {}

private:
    bool EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    bool EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string& fHost;
    std::string& fNamespace;
    TCIMReference& fReference;
};

class TCIMXMLParser::TStateLocalInstancePath : public TCIMXMLParser::TStateTwoElements {
public:
    TStateLocalInstancePath(std::string& nameSpace, TCIMReference& reference)
        : fNamespace(nameSpace), fReference(reference) {}

private:
    bool EnterFirst(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    bool EnterSecond(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

    std::string& fNamespace;
    TCIMReference& fReference;
};

class TCIMXMLParser::TStateInstanceName : public TCIMXMLParser::TParseState {
public:
    explicit TStateInstanceName(TCIMReference& reference) : fReference(reference) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    void BindFirstKey(TCIMXMLParser& parser);

    TCIMReference& fReference;
    std::string fClassName;
    std::string fKeyText;
    TCIMValue fValue;
    bool fHasKeyValue = false;
    bool fHasReference = false;
    TCIMClass* fClass = nullptr;  // null until the attribute CLASSNAME is read
};

class TCIMXMLParser::TStateKeyBinding : public TCIMXMLParser::TParseState {
public:
    TStateKeyBinding(TCIMClass* cls, TCIMReference& reference) : fClass(cls), fReference(reference) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    void BindText(TCIMXMLParser& parser);

    TCIMClass* fClass;
    TCIMReference& fReference;
    std::string fName;
    bool fIsReference = false;
    TCIMValue fValue;
    std::string fKeyText;
};

class TCIMXMLParser::TStateKeyValue : public TCIMXMLParser::TParseState {
public:
    TStateKeyValue(TCIMXMLParser& parser, std::string& text) : fReader(parser), fText(text) {}
    void EndElement(TCIMXMLParser& parser) override;

private:
    TTextReader fReader;
    std::string& fText;
};

class TCIMXMLParser::TStateObjectPath : public TCIMXMLParser::TParseState {
public:
    TStateObjectPath(std::string& host, std::string& nameSpace, TCIMReference& reference, const std::string& className)
        : fHost(host), fNamespace(nameSpace), fReference(reference), fClassName(className) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;

private:
    std::string& fHost;
    std::string& fNamespace;
    TCIMReference& fReference;
    std::string fClassName;  // a copy: the class name that is read is dropped
};

#endif
