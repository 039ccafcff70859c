#include "xml/MessageStates.h"

#include "xml/PathStates.h"

// (simplereq | multireq)*
void TCIMXMLParser::TStateMessage::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eSimpleReq) return parser.Enter<TStateSimpleReq>(attributes);
    if (element == EElement::eMultiReq) return parser.Enter<TStateMultiReq>(attributes);
    parser.Unexpected();
}

void TCIMXMLParser::TStateMessage::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    const auto version = attributes.find("protocolversion");
    if (version != attributes.end() && version->second != "1.0") parser.FatalError("Unknown protocol version");
}

// simplereq, simplereq+
void TCIMXMLParser::TStateMultiReq::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (fPhase < 0 || fPhase > 2) parser.Corrupt();
    if (element != EElement::eSimpleReq) parser.Unexpected();
    if (fPhase != 2) ++fPhase;
    parser.Enter<TStateSimpleReq>(attributes);
}

void TCIMXMLParser::TStateMultiReq::EndElement(TCIMXMLParser& parser) {
    if (fPhase != 2) parser.FatalError("Invalid MULTIREQ");
    TParseState::EndElement(parser);
}

// imethodcall*
void TCIMXMLParser::TStateSimpleReq::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    if (element == EElement::eIMethodCall) return parser.Enter<TStateIMethodCall>(attributes);
    parser.Unexpected();
}

// nothing | localnamespacepath, iparamvalue*
void TCIMXMLParser::TStateIMethodCall::StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes) {
    switch (fPhase) {
        case 0:
            if (element != EElement::eLocalNamespacePath) break;
            fPhase = 1;
            return parser.Enter<TStateLocalNamespacePath>(attributes, fNamespace);
        case 1:
            if (element == EElement::eIParamValue) return parser.Enter<TStateIParamValue>(attributes);
            break;
        default:
            parser.Corrupt();
    }
    parser.Unexpected();
}

void TCIMXMLParser::TStateIMethodCall::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMName(attribute, &fName);
    if (fName != "CreateClass" && fName != "CreateInstance")
        parser.FatalError("Unexpected IMethodCall method " + fName);
}

void TCIMXMLParser::TStateIParamValue::HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes) {
    for (TAttribute attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
        HandleCIMName(attribute, &fName);
    if (fName != "NewClass" && fName != "NewInstance") parser.FatalError("Unexpected IParamValue parameter name");
}

void TCIMXMLParser::TStateIParamValue::EndElement(TCIMXMLParser& parser) {
    AddToContainer(
        parser);  // Compatibility: the class is not collected, unlike below a declaration; see docs/oddities.md.
    TParseState::EndElement(parser);
}
