#include "ReaderSupport.h"
#include "kyr/TCIMClass.h"

namespace {

using Declarations = ReaderTest;

std::string Q(const std::string& attributes, const std::string& content) {
    return "<QUALIFIER.DECLARATION " + attributes + ">" + content + "</QUALIFIER.DECLARATION>";
}

const std::string kScope = "<SCOPE CLASS='false' METHOD='true' PROPERTY='x'/>";

// clang-format off
TEST_F(Declarations, OfQualifiers) {
    const std::string array = kScope + "<VALUE.ARRAY><VALUE>a</VALUE></VALUE.ARRAY>";
    Expect({
        {"<QUALIFIER.DECLARATION NAME='Q1' TYPE='boolean'/>", "qualifier Q1 boolean=NULL scope 0 flavor 3"},
        {Q("NAME='Q2' TYPE='String' OVERRIDABLE='false' TRANSLATABLE='true' X='y'",
           kScope + "<VALUE>a</VALUE><VALUE>b </VALUE>"), "qualifier Q2 string=b  scope 5 flavor 6"},
        {Q("NAME='Q3' TYPE='uint8'", "<SCOPE ASSOCIATION='' REFERENCE=''/>"),
         "qualifier Q3 uint8=NULL scope 10 flavor 3"},
        {Q("NAME='Q4' TYPE='string' ISARRAY='true' ARRAYSIZE='0'", ""), "qualifier Q4 string[0]=NULL scope 0 flavor 3"},
        {Q("NAME='Q5' TYPE='string' ARRAYSIZE='0x10'", array), "qualifier Q5 string[16]={ a } scope 5 flavor 3"},
        {Q("NAME='q1' TYPE='string'", ""), "3:TContainer: qualifier q1 already defined"},
        {Q("NAME='R' TYPE='string' ISARRAY='false' ARRAYSIZE='3'", ""), "!Incompatible attributes"},
        {Q("NAME='R' TYPE='string' ARRAYSIZE='3'", kScope + "<VALUE>a</VALUE>"), "!Incompatible attributes"},
        {Q("NAME='R' TYPE='string' ARRAYSIZE='3' ISARRAY='false'", array), "!Incompatible attributes"},
        {Q("NAME='R' TYPE='string' ISARRAY='true'", kScope + "<VALUE>a</VALUE>"), "!Incompatible attributes"},
        {Q("NAME='R' TYPE='string'", array), "!Incompatible attributes"},
        {Q("NAME='R' TYPE='string' ISARRAY='true' ARRAYSIZE='2'", array), "kyrStatusTypeMismatch"},
        {Q("NAME='R' TYPE='char'", ""), "kyrStatusTypeMismatch"},
        {Q("NAME='1R' TYPE='string'", ""), "0:CIM name '1R' is invalid; kyrStatusInvalidCIMName"},
    });
}

TEST_F(Declarations, AScopeWithAChildEndsTheDeclaration) {
    Expect({
        {Q("NAME='Q' TYPE='string'", "<SCOPE><X/></SCOPE>"), "qualifier Q string=NULL scope 0 flavor 3"},
        {Q("NAME='R' TYPE='string'", "<SCOPE><X/></SCOPE><VALUE/>"),
         "!Unexpected element value; qualifier R string=NULL scope 0 flavor 3"},
    });
}

// End tags that outnumber the states empty the stack; whatever comes then does nothing.
TEST_F(Declarations, SurviveAStackThatHasRunEmpty) {
    Expect({
        {Q("NAME='Q1' TYPE='string'", kScope + "<VALUE>a<X/></VALUE>"), "qualifier Q1 string=a scope 5 flavor 3"},
        {Q("NAME='Q2' TYPE='string'", kScope + "<VALUE><X><Y/></X></VALUE>"), "qualifier Q2 string= scope 5 flavor 3"},
        {Q("NAME='Q3' TYPE='string'", kScope + "<VALUE><A><B><C><D><E><F><G/></F></E></D></C></B></A></VALUE><X/>"),
         "qualifier Q3 string= scope 5 flavor 3"},
    });
}

TEST_F(Declarations, OfVersions) {
    const std::vector<TCase> documents = {
        {"<CIM CIMVERSION='2.8' DTDVERSION='2.1'/>", ""},
        {"<CIM CIMVERSION='2.0' DTDVERSION='2.0'/>", ""},
        {"<CIM CIMVERSION='2.3'/>", "!Unknown CIM version"},
        {"<CIM DTDVERSION='2.8'/>", "!Unknown DTD version"},
        {"<CIM><MESSAGE ID='1' PROTOCOLVERSION='1.0'/><DECLARATION/></CIM>", ""},
        {"<CIM><MESSAGE PROTOCOLVERSION='1.1'/></CIM>", "!Unknown protocol version"},
    };
    for (const TCase& c : documents) EXPECT_EQ(Read(c.content), c.outcome) << c.content;
}

TEST_F(Declarations, OfClassesAndTheirProperties) {
    const std::string text = "<QUALIFIER NAME='Text' TYPE='string'><VALUE>t</VALUE></QUALIFIER>";
    Expect({
        {Class("C1", text + "<PROPERTY NAME='P' TYPE='uint8' CLASSORIGIN='x'><VALUE>0x10</VALUE>"
               "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER></PROPERTY>"
               "<PROPERTY.ARRAY NAME='Q' TYPE='uint8' ARRAYSIZE='4'/><PROPERTY.ARRAY NAME='R' TYPE='uint8'>"
               "<VALUE.ARRAY><VALUE>1</VALUE><VALUE>010</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>", "a"),
         "class C1:A {Text=t/2}; property C1.P uint8=16 {Key=true/3}; property C1.Q uint8[4]=NULL; "
         "property C1.R uint8[0]={ 1, 8 }"},
        {Class("C2", "<QUALIFIER NAME='Abstract' TYPE='boolean' TOSUBCLASS='false' TRANSLATABLE='true'>"
               "<VALUE>true</VALUE></QUALIFIER><QUALIFIER NAME='Text' TYPE='string' PROPAGATED='true'>"
               "<VALUE>other</VALUE></QUALIFIER>" + text + "<QUALIFIER NAME='Key'/>", "C1"),
         "class C2:C1 {Abstract=true/5} {Key=NULL/3} {Text=t/2}"},
        {Class("D", "<QUALIFIER NAME='Text' TYPE='string'/>", "C1"), "kyrStatusNotOverridable"},
        {Class("C3", "<PROPERTY NAME='n' TYPE='uint32'/>"),
         "0:Attempt to add property n to class C3: already exists; class C3:A"},
        {Class("a", "", "B"), "3:TContainer: class a already defined"},
        {Class("D", "", "Nowhere"), "kyrStatusNotFound"},
        {"<VALUE.OBJECT><CLASS NAME='D'/></VALUE.OBJECT>", "0:Class D has no keys; kyrStatusInvalidClass"},
        {Class("D", "<QUALIFIER NAME='None' PROPAGATED='true'/>"),
         "0:TCIMXMLParser: Couldn't find qualifier None; kyrStatusNotFound"},
        {Class("D", "<PROPERTY.REFERENCE NAME='R' REFERENCECLASS='A'/>"),
         "0:Attempt to add reference property R to non-association class D; kyrStatusNotAssociation"},
        {Class("E", "<PROPERTY.REFERENCE NAME='R' REFERENCECLASS='b'/><PROPERTY.REFERENCE NAME='S'/>", "L"),
         "class E:L {Association=true/3}; property E.R reference(B)=NULL; property E.S reference(<root>)=NULL"},
        {Class("D", "<PROPERTY.REFERENCE NAME='R' REFERENCECLASS='None'/>", "L"), "kyrStatusNotFound"},
        {"<VALUE.OBJECT/>", "!CIM element syntax error"},
    });
}

TEST_F(Declarations, AClassThatFailsBehindTheCatalogueStaysInIt) {
    EXPECT_EQ(ReadGroup(Class("F", "<QUALIFIER NAME='Association' TYPE='string'><VALUE>x</VALUE></QUALIFIER>")),
              "kyrStatusTypeMismatch; class F:A {Association=x/3}");
}

TEST_F(Declarations, ClassesAreCollectedInOrderAndOnce) {
    ReadGroup(Class("Z", "") + Class("Y", "") + Class("z", ""));
    EXPECT_EQ(fCollected, std::vector<std::string>({"Z", "Y"}));
}

TEST_F(Declarations, AMethodTakesTheClassesPlace) {
    Expect({
        {Class("G", "<PROPERTY NAME='P' TYPE='uint8'/><METHOD NAME='M'/>"), "class M:A"},
        {Class("G", "<METHOD NAME='N'/><METHOD NAME='O'/>"), "!Unexpected element method"},
        {Class("G", "<METHOD NAME='1'/>"), "0:CIM name '1' is invalid; kyrStatusInvalidCIMName"},
    });
}

TEST_F(Declarations, InMessages) {
    const std::string begin = "<CIM><MESSAGE><SIMPLEREQ><IMETHODCALL NAME='CreateClass'>"
                              "<LOCALNAMESPACEPATH><NAMESPACE NAME='root'/></LOCALNAMESPACEPATH>";
    const std::string end = "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    const std::vector<TCase> documents = {
        {begin + "<IPARAMVALUE NAME='NewInstance'><CLASS NAME='New' SUPERCLASS='A'/></IPARAMVALUE>"
         "<IPARAMVALUE NAME='NewClass'><CLASS NAME='A' SUPERCLASS='B'/></IPARAMVALUE><IPARAMVALUE NAME='NewClass'>"
         "<INSTANCE CLASSNAME=''/></IPARAMVALUE>" + end, "3:TContainer: class A already defined; class New:A"},
        {begin + "<IPARAMVALUE NAME='ClassName'/>", "!Unexpected IParamValue parameter name"},
        {begin + "<IPARAMVALUE NAME='NewClass'/>", "!CIM element syntax error"},
        {"<CIM><MESSAGE><SIMPLEREQ><IMETHODCALL NAME='createclass'/>", "!Unexpected IMethodCall method createclass"},
        {"<CIM><MESSAGE><SIMPLEREQ><IMETHODCALL/>", "!Unexpected IMethodCall method "},
        {"<CIM><MESSAGE><MULTIREQ><SIMPLEREQ/></MULTIREQ>", "!Invalid MULTIREQ"},
        {"<CIM><MESSAGE><MULTIREQ><SIMPLEREQ/><SIMPLEREQ/><SIMPLEREQ/></MULTIREQ></MESSAGE></CIM>", ""},
    };
    for (const TCase& c : documents) {
        EXPECT_EQ(Read(c.content), c.outcome) << c.content;
        EXPECT_TRUE(fCollected.empty()) << c.content;
    }
    EXPECT_EQ(fContainer.GetRootClass()->EnumerateInstances(false).size(), 1u);
}
// clang-format on

}  // namespace
