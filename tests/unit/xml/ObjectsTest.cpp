#include "ReaderSupport.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMPropertyDecl.h"

namespace {

using Objects = ReaderTest;

const std::string kNew = "instance A.Id=\"k\" Id=k";

// clang-format off
TEST_F(Objects, PropertiesOfInstances) {
    Expect({
        {OfA(""), kNew},
        {OfA("<PROPERTY NAME='n' TYPE='UINT32' PROPAGATED='true'><VALUE>5</VALUE></PROPERTY>"), kNew + " N=5"},
        {OfA("<PROPERTY NAME='N' TYPE='uint32'/>"), kNew + " N=NULL"},
        {OfA("<PROPERTY.ARRAY NAME='Tags' TYPE='string'><VALUE.ARRAY><VALUE>x</VALUE></VALUE.ARRAY>"
                     "</PROPERTY.ARRAY>"), kNew + " Tags={ x }"},
        {OfA("<PROPERTY.ARRAY NAME='Tags' TYPE='string' ARRAYSIZE='3'/>"), kNew + " Tags=NULL"},
        {OfA("<PROPERTY NAME='N'/>"), "!Property type != property declaration type"},
        {OfA("<PROPERTY NAME='N' TYPE='uint8'/>"), "!Property type != property declaration type"},
        {OfA("<PROPERTY NAME='Tags' TYPE='string'/>"), "!Property type != property declaration type"},
        {OfA("<PROPERTY NAME='X' TYPE='uint8'/>"), "0:TCIMXMLParser: Couldn't find property X; kyrStatusNotFound"},
        {OfA("<PROPERTY.ARRAY NAME='X' TYPE='uint8'/>"), "kyrStatusNotFound"},
        {OfA("<PROPERTY.REFERENCE NAME='X'><X/>"), "kyrStatusNotFound"},
        {OfA("<PROPERTY.ARRAY NAME='Tags' TYPE='uint8'/>"),
         "0:SetValue: decl is type string but value is type uint8; kyrStatusTypeMismatch"},
    });
}

TEST_F(Objects, TR907ModeReadsByTheDeclarationsType) {
    Expect({
        {OfA("<PROPERTY NAME='N' TYPE='uint8'><VALUE>70000</VALUE></PROPERTY>"), kNew + " N=70000"},
        {OfA("<PROPERTY NAME='N'/>"), kNew + " N=NULL"},
        // What cannot be read by that type is skipped.
        {OfA("<PROPERTY NAME='Tags'><VALUE>x</VALUE></PROPERTY>"), kNew},
        {OfA("<PROPERTY NAME='X'><VALUE>x</VALUE></PROPERTY>"), "kyrStatusNotFound"},
    }, true);
}

TEST_F(Objects, AQualifierInAPropertyActsOnTheProperty) {
    Expect({
        // Its end tag ends the property, and the property's the instance, and so on up: the group is ended early.
        {OfA("<PROPERTY NAME='N' TYPE='uint32'><QUALIFIER NAME='When' TYPE='datetime'/></PROPERTY>"),
         kNew + " When=NULL"},
        {OfA("<PROPERTY NAME='N' TYPE='uint32'><VALUE>3</VALUE><QUALIFIER NAME='Id' TYPE='string'/>"),
         "0:SetValue: decl is type string but value is type uint32; kyrStatusTypeMismatch"},
        {OfA("<PROPERTY NAME='N' TYPE='uint32'><QUALIFIER NAME='Text' TYPE='string'/></PROPERTY>"),
         "0:TCIMXMLParser: Couldn't find property Text; kyrStatusNotFound"},
        {OfA("<PROPERTY.ARRAY NAME='N'><QUALIFIER NAME='Tags' TYPE='string' ARRAYSIZE='3'/></PROPERTY.ARRAY>"),
         kNew + " Tags=NULL"},
    });
}

TEST_F(Objects, AQualifierInAnInstanceMakesItAnew) {
    Expect({
        {Instance("A", "<QUALIFIER CLASSNAME='B'/>"),
         "0:Instance B: key property Id is NULL; kyrStatusInvalidInstance"},
        {Instance("A", "<QUALIFIER CLASSNAME='X'/>"), "0:TCIMXMLParser: Couldn't find class X; kyrStatusNotFound"},
        {Instance("A", "<QUALIFIER><VALUE/></QUALIFIER>"), "!Unexpected element value"},
    });
}

TEST_F(Objects, InstancesNeedTheirClassAndTheirKeys) {
    Expect({
        {Instance("X", ""), "0:TCIMXMLParser: Couldn't find class X; kyrStatusNotFound"},
        {Instance("A", ""), "0:Instance A: key property Id is NULL; kyrStatusInvalidInstance"},
        {"<VALUE.OBJECT><INSTANCE/></VALUE.OBJECT>", ""},  // of the root class
        {Instance("A", "<PROPERTY NAME='Id' TYPE='string'>"), "0:CIM-XML Parser line 1:Start and end element names "
         "don't match; at once kyrStatusInvalidSpecificationDocument"},
        {Instance("A", "<![CDATA["), ""},
    });
}
// clang-format on

// After a rename the path of an instance cannot be built any more, and the failure destroys the instance.
TEST_F(Objects, AnInstanceMayBeConsumedByAFailure) {
    fContainer.GetClass("A")->GetPropertyDecl("Id")->SetName("Renamed");
    ReadGroup(Instance("A", "<PROPERTY NAME='Renamed' TYPE='string'><VALUE>1</VALUE></PROPERTY>"));
    EXPECT_TRUE(fContainer.GetClass("A")->EnumerateInstances(true).empty());
}

TEST_F(Objects, ARepeatedInstanceIsAddedAgain) { EXPECT_EQ(ReadGroup(OfA("") + OfA("")), kNew + "; " + kNew); }

TEST_F(Objects, ReferencePropertiesOfInstances) {
    const std::string from =
        "<PROPERTY.REFERENCE NAME='From'><VALUE.REFERENCE><INSTANCENAME CLASSNAME='B'><KEYVALUE>1</KEYVALUE>"
        "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>";
    Expect({
        {Instance("L", from + "<PROPERTY.REFERENCE NAME='to' REFERENCECLASS='B'/>"),
         "instance L.From=\"B.Id=\"1\"\" From=B.Id=\"1\" To=NULL"},
        // Without a class the NULL references the root class, which is no subclass of A.
        {Instance("L", from + "<PROPERTY.REFERENCE NAME='to'/>"),
         "0:SetValue: decl references type A but value references <root>; kyrStatusTypeMismatch"},
    });
}

TEST_F(Objects, InEveryKindOfGroup) {
    const std::string path =
        "<NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME='x'/></LOCALNAMESPACEPATH></NAMESPACEPATH>";
    const std::string begin = "<CIM><DECLARATION><DECLGROUP.WITHNAME>";
    EXPECT_EQ(
        Read(begin + path + "<VALUE.NAMEDOBJECT><CLASS NAME='C1' SUPERCLASS='A'/></VALUE.NAMEDOBJECT>" +
             "</DECLGROUP.WITHNAME><DECLGROUP.WITHPATH><VALUE.OBJECTWITHPATH><CLASSPATH>" + path +
             "<CLASSNAME NAME='Ignored'/></CLASSPATH><CLASS NAME='C2' SUPERCLASS='A'/></VALUE.OBJECTWITHPATH>"
             "<VALUE.OBJECTWITHLOCALPATH><LOCALINSTANCEPATH/><INSTANCE CLASSNAME='C2'><PROPERTY NAME='Id' "
             "TYPE='string'>"
             "<VALUE>1</VALUE></PROPERTY></INSTANCE></VALUE.OBJECTWITHLOCALPATH></DECLGROUP.WITHPATH></DECLARATION>"
             "</CIM>"),
        "class C1:A; class C2:A; instance C2.Id=\"1\" Id=1");
    EXPECT_EQ(fCollected, std::vector<std::string>({"C1", "C2"}));
    // A path's reference has no container, so an instance name with a class cannot be read there.
    EXPECT_EQ(Read(begin + "<VALUE.NAMEDOBJECT><INSTANCENAME CLASSNAME='A'/>"),
              "0:SetClassName() called before container set; kyrStatusInvalidOpSequence");
}

}  // namespace
