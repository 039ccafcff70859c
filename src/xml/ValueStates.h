#ifndef KYR_XML_VALUESTATES_H
#define KYR_XML_VALUESTATES_H

#include "kyr/TCIMReference.h"
#include "xml/TCIMXMLParser.h"

class TCIMXMLParser::TStateValue : public TCIMXMLParser::TParseState {
public:
    TStateValue(TCIMXMLParser& parser, TCIMValue& target, TCIMValue::TCIMType type)
        : fReader(parser), fTarget(&target), fType(type) {}
    void EndElement(TCIMXMLParser& parser) override;

private:
    TTextReader fReader;
    TCIMValue* fTarget;
    TCIMValue::TCIMType fType;
};

class TCIMXMLParser::TStateValueArray : public TCIMXMLParser::TParseState {
public:
    TStateValueArray(TCIMXMLParser& parser, TCIMValue& target, TCIMValue::TCIMType type, unsigned int arraySize)
        : fTarget(&target), fType(type), fArraySize(arraySize), fElements(parser.fElements) {
        fElements.clear();
    }
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    TCIMValue* fTarget;
    TCIMValue::TCIMType fType;
    unsigned int fArraySize;
    std::vector<TCIMValue>& fElements;  // must not grow while a TStateValue points to the last element
};

class TCIMXMLParser::TStateValueReference : public TCIMXMLParser::TParseState {
public:
    explicit TStateValueReference(TCIMValue& target) : fTarget(&target) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    TCIMValue* fTarget;
    bool fIsInstanceName = false;
    bool fIsClassRef = false;
    std::string fHost;
    std::string fNamespace;
    TCIMReference fReference = nullptr;
    std::string fClassName;
};

class TCIMXMLParser::TStateValueRefArray : public TCIMXMLParser::TParseState {
public:
    explicit TStateValueRefArray(TCIMValue& target) : fTarget(&target) {}
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    TCIMValue* fTarget;
    std::vector<TCIMValue> fElements;
};

#endif
