#ifndef KYR_XML_ELEMENTNAME_H
#define KYR_XML_ELEMENTNAME_H

#include <string_view>

/// The elements of CIM-XML that the reader knows.
enum class EElement : unsigned char {
    eUnknown,
    eCIM,
    eClass,
    eClassName,
    eClassPath,
    eDeclaration,
    eDeclGroup,
    eDeclGroupWithName,
    eDeclGroupWithPath,
    eHost,
    eIMethodCall,
    eInstance,
    eInstanceName,
    eInstancePath,
    eIParamValue,
    eKeyBinding,
    eKeyValue,
    eLocalClassPath,
    eLocalInstancePath,
    eLocalNamespacePath,
    eMessage,
    eMethod,
    eMultiReq,
    eNamespace,
    eNamespacePath,
    eProperty,
    ePropertyArray,
    ePropertyReference,
    eQualifier,
    eQualifierDeclaration,
    eScope,
    eSimpleReq,
    eValue,
    eValueArray,
    eValueNamedObject,
    eValueObject,
    eValueObjectWithLocalPath,
    eValueObjectWithPath,
    eValueReference,
    eEnd
};

/// The element of that name in lower case.
EElement FindElement(std::string_view name);

#endif
