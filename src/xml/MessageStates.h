#ifndef KYR_XML_MESSAGESTATES_H
#define KYR_XML_MESSAGESTATES_H

#include "xml/WrapperStates.h"

class TCIMXMLParser::TStateMessage : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateMultiReq : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;
};

class TCIMXMLParser::TStateSimpleReq : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
};

class TCIMXMLParser::TStateIMethodCall : public TCIMXMLParser::TParseState {
public:
    void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) override;
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;

private:
    std::string fName;
    std::string fNamespace;
};

class TCIMXMLParser::TStateIParamValue : public TCIMXMLParser::TStateAnyWrapper {
public:
    TStateIParamValue() : TStateAnyWrapper(eEither) {}
    void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) override;
    void EndElement(TCIMXMLParser& parser) override;

private:
    std::string fName;
};

#endif
