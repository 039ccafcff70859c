// What of reading documents takes more to tell than a text and its outcome in cases/.
#include <random>

#include "ReaderSupport.h"
#include "support/ContainerText.h"

namespace {

/// A host's classes, which attach copies of the qualifiers and leave to the reader what it made.
struct TCopyingContainer : TContainer {
    struct TCopyingClass : TCIMClass {
        using TCIMClass::TCIMClass;
        void AddQualifier(TCIMQualifier& qualifier) override {
            auto copy = std::make_unique<TCIMQualifier>(qualifier);
            TCIMClass::AddQualifier(*copy);
            if (GetQualifier(copy->GetName()) == copy.get()) copy.release();
        }
    };
    TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const override {
        return new TCopyingClass(const_cast<TCopyingContainer&>(*this), name, superclass);
    }
};

/// A host's classes, which own their qualifiers themselves.
struct TOwningContainer : TContainer {
    struct TOwningClass : TCIMClass {
        using TCIMClass::TCIMClass;
        void AddQualifier(TCIMQualifier& qualifier) override { fOwned.emplace_back(&qualifier); }
        TCIMQualifier* GetQualifier(const std::string&) const override { return fOwned.back().get(); }
        std::vector<std::unique_ptr<TCIMQualifier>> fOwned;
    };
    TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const override {
        return new TOwningClass(const_cast<TOwningContainer&>(*this), name, superclass);
    }
};

/// A host's classes, which take qualifiers and have no use for them.
struct TDroppingContainer : TContainer {
    struct TDroppingClass : TCIMClass {
        using TCIMClass::TCIMClass;
        void AddQualifier(TCIMQualifier& qualifier) override { delete &qualifier; }
    };
    TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const override {
        return new TDroppingClass(const_cast<TDroppingContainer&>(*this), name, superclass);
    }
};

/// Declarations of qualifiers, and abstract classes that carry them in any combination, refused ones among them.
std::string RandomQualifiers(unsigned int seed) {
    std::mt19937 dice(seed);
    const auto one = [&](std::vector<std::string> texts) { return texts[dice() % texts.size()]; };
    const auto flavor = [&] { return one({"", "", " OVERRIDABLE='false'", " TOSUBCLASS='false'"}); };
    std::string text = "<QUALIFIER.DECLARATION NAME='Abstract' TYPE='boolean'/>";
    for (const char* name : {"One", "Two", "Three"})
        text += std::string("<QUALIFIER.DECLARATION NAME='") + name + "' TYPE='string'" + flavor() + "/>";
    const char* const kAbstract = "<QUALIFIER NAME='Abstract' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
    for (const char* name : {"A", "B", "C"}) {
        std::string qualifiers = kAbstract;
        for (int i = 0; i < 4; ++i)
            qualifiers += "<QUALIFIER NAME='" + one({"One", "TWO", "three"}) + "' TYPE='" +
                          one({"string", "string", "uint8", "real64"}) + "'" + flavor() +
                          one({"", " PROPAGATED='true'"}) + ">" +
                          one({"", "<VALUE>1</VALUE>", "<VALUE>a longer text than fits in a string</VALUE>",
                               "<VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY>", "<VALUE>nan</VALUE>"}) +
                          "</QUALIFIER>";
        text += Class(name, qualifiers, name[0] == 'A' ? "" : "A");
    }
    return "<CIM><DECLARATION><DECLGROUP>" + text + "</DECLGROUP></DECLARATION></CIM>";
}

using Documents = ReaderTest;

TEST_F(Documents, ClassesAreCollectedInOrderAndOnce) {
    ReadGroup(Class("Z", "") + Class("Y", "") + Class("z", ""));
    EXPECT_EQ(fCollected, std::vector<std::string>({"Z", "Y"}));
}

TEST_F(Documents, InMessagesCollectNoClasses) {
    EXPECT_EQ(Read("<CIM><MESSAGE><SIMPLEREQ><IMETHODCALL NAME='CreateClass'>"
                   "<LOCALNAMESPACEPATH><NAMESPACE NAME='root'/></LOCALNAMESPACEPATH><IPARAMVALUE NAME='NewInstance'>"
                   "<CLASS NAME='New' SUPERCLASS='A'/></IPARAMVALUE><IPARAMVALUE NAME='NewClass'>"
                   "<CLASS NAME='A' SUPERCLASS='B'/></IPARAMVALUE><IPARAMVALUE NAME='NewClass'>"
                   "<INSTANCE CLASSNAME=''/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>"),
              "3:TContainer: class A already defined; class New:A");
    EXPECT_THAT(fCollected, testing::IsEmpty());
    EXPECT_EQ(fContainer.GetRootClass()->EnumerateInstances(false).size(), 1u);
}

TEST_F(Documents, TR907ModeReadsByTheDeclarationsType) {
    const std::string kNew = "instance A.Id=\"k\" Id=k";
    const std::pair<std::string, std::string> cases[] = {
        {OfA("<PROPERTY NAME='N' TYPE='uint8'><VALUE>70000</VALUE></PROPERTY>"), kNew + " N=70000"},
        {OfA("<PROPERTY NAME='N'/>"), kNew + " N=NULL"},
        // What cannot be read by that type is skipped.
        {OfA("<PROPERTY NAME='Tags'><VALUE>x</VALUE></PROPERTY>"), kNew},
        {OfA("<PROPERTY NAME='X'><VALUE>x</VALUE></PROPERTY>"), "kyrStatusNotFound"},
    };
    for (const auto& [content, outcome] : cases) EXPECT_EQ(ReadGroup(content, true), outcome) << content;
}

TEST_F(Documents, HoldObjectsInEveryKindOfGroup) {
    const std::string path =
        "<NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME='x'/></LOCALNAMESPACEPATH></NAMESPACEPATH>";
    EXPECT_EQ(
        Read("<CIM><DECLARATION><DECLGROUP.WITHNAME>" + path +
             "<VALUE.NAMEDOBJECT><CLASS NAME='C1' SUPERCLASS='A'/></VALUE.NAMEDOBJECT>" +
             "</DECLGROUP.WITHNAME><DECLGROUP.WITHPATH><VALUE.OBJECTWITHPATH><CLASSPATH>" + path +
             "<CLASSNAME NAME='Ignored'/></CLASSPATH><CLASS NAME='C2' SUPERCLASS='A'/></VALUE.OBJECTWITHPATH>"
             "<VALUE.OBJECTWITHLOCALPATH><LOCALINSTANCEPATH/><INSTANCE CLASSNAME='C2'><PROPERTY NAME='Id' "
             "TYPE='string'>"
             "<VALUE>1</VALUE></PROPERTY></INSTANCE></VALUE.OBJECTWITHLOCALPATH></DECLGROUP.WITHPATH></DECLARATION>"
             "</CIM>"),
        "class C1:A; class C2:A; instance C2.Id=\"1\" Id=1");
    EXPECT_EQ(fCollected, std::vector<std::string>({"C1", "C2"}));
}

// More states than the reader keeps memory for, open when it fails and again when it succeeds.
TEST_F(Documents, MayNestDeep) {
    const std::string isTrue = " TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
    ReadGroup(Class("Chain",
                    "<QUALIFIER NAME='Association'" + isTrue + "<PROPERTY.REFERENCE NAME='Next' REFERENCECLASS=''>" +
                        "<QUALIFIER NAME='Key'" + isTrue + "</PROPERTY.REFERENCE>",
                    ""));
    const auto nested = [](int depth, std::string reference) {
        for (; depth != 0; --depth)
            reference = "<VALUE.REFERENCE><INSTANCENAME CLASSNAME='Chain'><KEYBINDING NAME='Next'>" + reference +
                        "</KEYBINDING></INSTANCENAME></VALUE.REFERENCE>";
        return Instance("Chain", "<PROPERTY.REFERENCE NAME='Next'>" + reference + "</PROPERTY.REFERENCE>");
    };
    EXPECT_EQ(ReadGroup(nested(500, "<X/>")), "!Unexpected element x");
    const std::string outcome =
        ReadGroup(nested(10,
                         "<VALUE.REFERENCE><INSTANCENAME CLASSNAME='A'><KEYVALUE>k</KEYVALUE></INSTANCENAME>"
                         "</VALUE.REFERENCE>"));
    EXPECT_THAT(outcome, testing::HasSubstr("Chain.Next=\"Chain.Next="));
}

class QualifiersOfHosts : public LoggedTest {
protected:
    template <typename TAnyContainer>
    std::string Read(std::string document) {
        TAnyContainer container;
        document.insert(0, 1, '\0');
        const std::string status = Outcome([&] { TCIMXMLParser(&container).Parse(&document[1]); });
        return status + "\n" + TextOf(container);
    }
};

TEST_F(QualifiersOfHosts, AreTheSameWhoeverOwnsThem) {
    unsigned int refused = 0;
    for (unsigned int seed = 0; seed < 500; ++seed) {
        const std::string outcome = Read<TContainer>(RandomQualifiers(seed));
        refused += outcome[0] != '\n';
        ASSERT_EQ(Read<TCopyingContainer>(RandomQualifiers(seed)), outcome) << seed;
    }
    EXPECT_GT(refused, 50u);
    EXPECT_LT(refused, 450u);
}

TEST_F(QualifiersOfHosts, AreLeftToTheHostThatOwnsThem) {
    const std::string text = "<QUALIFIER NAME='Text' TYPE='string'><VALUE>text</VALUE></QUALIFIER>";
    const std::string key = "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
    const std::string document =
        "<CIM><DECLARATION><DECLGROUP><QUALIFIER.DECLARATION NAME='Text' TYPE='string'/>"
        "<QUALIFIER.DECLARATION NAME='Key' TYPE='boolean'/>" +
        Class("C", text + text + "<PROPERTY NAME='P' TYPE='string'>" + key + "</PROPERTY>", "") +
        "</DECLGROUP></DECLARATION></CIM>";
    for (const std::string& outcome : {Read<TOwningContainer>(document), Read<TDroppingContainer>(document)}) {
        EXPECT_THAT(outcome, testing::StartsWith("\n"));
        EXPECT_THAT(outcome, testing::HasSubstr("class C : <root>\n declares P"));
    }
}

// After a rename the path of an instance cannot be built any more, and the failure destroys the instance.
TEST_F(Documents, AnInstanceMayBeConsumedByAFailure) {
    fContainer.GetClass("A")->GetPropertyDecl("Id")->SetName("Renamed");
    ReadGroup(Instance("A", "<PROPERTY NAME='Renamed' TYPE='string'><VALUE>1</VALUE></PROPERTY>"));
    EXPECT_TRUE(fContainer.GetClass("A")->EnumerateInstances(true).empty());
}

TEST_F(Documents, KeepTheLineEndsOfTexts) {
    EXPECT_EQ(ReadGroup(Class("V", "<PROPERTY NAME='P' TYPE='string'><VALUE> 12 \r\n</VALUE></PROPERTY>")),
              "class V:A; property V.P string= 12 \r\n");
}

TEST_F(Documents, ABadDateTimeIsDefaultedAndLogged) {
    EXPECT_THAT(ReadGroup(Class("V", "<PROPERTY NAME='P' TYPE='datetime'><VALUE>garbage</VALUE></PROPERTY>")),
                testing::MatchesRegex("0:Invalid datetime found on line 1\\.  Defaulting the datetime to .*\\.; "
                                      "class V:A; property V\\.P datetime=19700101000000\\.000000\\+000"));
}

TEST_F(Documents, ArraysMayBeLong) {
    const std::string item = "a rather long element of the array";
    std::string values, text = item;
    for (int i = 0; i < 100; ++i) values += "<VALUE>" + item + "</VALUE>";
    for (int i = 1; i < 100; ++i) text += ", " + item;
    EXPECT_EQ(ReadGroup(Class("V", "<PROPERTY.ARRAY NAME='P' TYPE='string'><VALUE.ARRAY>" + values +
                                       "</VALUE.ARRAY></PROPERTY.ARRAY>")),
              "class V:A; property V.P string[0]={ " + text + " }");
}

TEST_F(Documents, ADifferenceContainerLeavesBindingsOutThatAreNoKeys) {
    fContainer.hackhack_TurnIntoADiffContainer();
    const std::string begin =
        "<PROPERTY.REFERENCE NAME='R' REFERENCECLASS='A'><VALUE.REFERENCE><INSTANCENAME CLASSNAME=";
    const std::string end = "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>";
    const std::string binding = "<KEYBINDING NAME='N'><KEYVALUE>5</KEYVALUE></KEYBINDING>";
    EXPECT_THAT(ReadGroup(Class("V", begin + "'A'>" + binding + end, "L")), testing::EndsWith("reference(A)=A"));
    EXPECT_THAT(ReadGroup(Class("W", begin + "''><KEYVALUE>5</KEYVALUE>" + end, "L")), testing::EndsWith("=<root>"));
}

}  // namespace
