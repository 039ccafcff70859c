#include "ReaderSupport.h"

namespace {

class Values : public ReaderTest {
protected:
    /// The default of a property that a class of its own declares, or else the whole outcome.
    std::string DefaultOf(const std::string& property) {
        const std::string outcome = ReadGroup(Class("V" + std::to_string(++fNumber), property, "L"));
        const size_t begin = outcome.find("; property ");
        return outcome.rfind("class ", 0) == 0 ? outcome.substr(outcome.find('=', begin) + 1) : outcome;
    }
    std::string DefaultReference(const std::string& content) {
        return DefaultOf("<PROPERTY.REFERENCE NAME='R' REFERENCECLASS='A'><VALUE.REFERENCE>" + content +
                         "</VALUE.REFERENCE></PROPERTY.REFERENCE>");
    }

private:
    int fNumber = 0;
};

// clang-format off
TEST_F(Values, AreReadByTheTypeFromAllTheTextSinceTheStartTag) {
    const struct { const char* attribute; const char* value; const char* text; } cases[] = {
        {"TYPE='uint32'", "<VALUE> 12 </VALUE>", "12"},
        {"TYPE='string'", "<VALUE> 12 \r\n</VALUE>", " 12 \r\n"},
        {"TYPE='string'", "<VALUE></VALUE>", ""},
        {"TYPE='string'", "", "NULL"},
        {"TYPE='string'", "junk<VALUE>a&amp;&#0;b</VALUE>junk", "a&b"},
        {"TYPE='string'", "<VALUE>1<!-- c -->2</VALUE>", "12"},
        {"TYPE='string'", "<VALUE>a</VALUE><VALUE>b</VALUE>", "b"},
        {"TYPE='uint8'", "<VALUE>0x10</VALUE>", "16"},
        {"TYPE='uint8'", "<VALUE>010</VALUE>", "8"},
        {"TYPE='sint16'", "<VALUE>junk</VALUE>", "0"},
        {"TYPE='boolean'", "<VALUE>true</VALUE>", "true"},
        {"TYPE='boolean'", "<VALUE>TRUE</VALUE>", "false"},
        {"TYPE='real32'", "<VALUE>2.5e1</VALUE>", "25"},
        {"TYPE='datetime'", "<VALUE>20261121073000.000000+000</VALUE>", "20261121073000.000000+000"},
        {"TYPE='datetime'", "<VALUE>20261121073000.000000+000</VALUE><VALUE>00000001000000.000000:000</VALUE>",
         "kyrStatusInvalidDateTime"},
        {"", "<VALUE>a</VALUE>", "NULL"},  // of no type, as which nothing can be read
    };
    for (const auto& c : cases)
        EXPECT_EQ(DefaultOf(std::string("<PROPERTY NAME='P' ") + c.attribute + ">" + c.value + "</PROPERTY>"), c.text)
            << c.attribute << " " << c.value;
}

TEST_F(Values, ABadDateTimeIsDefaultedAndLogged) {
    const std::string outcome = DefaultOf("<PROPERTY NAME='P' TYPE='datetime'><VALUE>garbage</VALUE></PROPERTY>");
    EXPECT_EQ(outcome.rfind("0:Invalid datetime found on line 1.  Defaulting the datetime to ", 0), 0u) << outcome;
    EXPECT_NE(outcome.find(".; class V1:"), std::string::npos) << outcome;
    EXPECT_NE(outcome.find("property V1.P datetime=19700101000000.000000+000"), std::string::npos) << outcome;
}

TEST_F(Values, OfArrays) {
    std::string many;
    std::string manyText;
    for (int i = 0; i < 100; ++i) {
        many += "<VALUE>a rather long element of the array</VALUE>";
        manyText += (i != 0 ? ", " : "") + std::string("a rather long element of the array");
    }
    const std::vector<TCase> cases = {
        {"<VALUE.ARRAY></VALUE.ARRAY>", "{  }"},
        {"<VALUE.ARRAY><VALUE>a</VALUE><VALUE/><VALUE>b</VALUE></VALUE.ARRAY>", "{ a, , b }"},
        {"<VALUE.ARRAY><VALUE>a</VALUE></VALUE.ARRAY><VALUE.ARRAY><VALUE>b</VALUE></VALUE.ARRAY>", "{ b }"},
        {"<VALUE.ARRAY>" + many + "</VALUE.ARRAY>", "{ " + manyText + " }"},
    };
    for (const TCase& c : cases)
        EXPECT_EQ(DefaultOf("<PROPERTY.ARRAY NAME='P' TYPE='string'>" + c.content + "</PROPERTY.ARRAY>"), c.outcome);
}

// The child's end tag ends the value, and its own end tag the property; the class's ends the wrapper.
TEST_F(Values, AChildOfAValueEndsIt) {
    Expect({
        {Class("W", "<PROPERTY NAME='P' TYPE='uint32'><VALUE>12<X/>3</VALUE></PROPERTY>"),
         "class W:A; property W.P uint32=12"},
        {Class("X", "<PROPERTY NAME='P' TYPE='string'><VALUE>a<X>b</X></VALUE><VALUE>c</VALUE></PROPERTY>"),
         "!Unexpected element value"},
    });
}

TEST_F(Values, OfReferences) {
    const std::string path = "<LOCALNAMESPACEPATH><NAMESPACE NAME='x'/></LOCALNAMESPACEPATH>";
    const std::string hostPath = "<NAMESPACEPATH><HOST> h </HOST>" + path + "</NAMESPACEPATH>";
    const std::string name = "<INSTANCENAME CLASSNAME='a'>";
    const std::string key1 = name + "<KEYVALUE>1</KEYVALUE></INSTANCENAME>";
    const std::string early = "0:SetClassName() called before container set; kyrStatusInvalidOpSequence";
    const std::vector<TCase> cases = {
        {"<CLASSNAME NAME='b'/>", "B"},
        {name + "</INSTANCENAME>", "A"},
        {name + "<KEYVALUE TYPE='x'>7</KEYVALUE></INSTANCENAME>", "A.Id=\"7\""},
        {key1 + "<CLASSNAME NAME='L'/>", "A.Id=\"1\""},
        {name + "<KEYBINDING NAME='Id'><KEYVALUE> 7</KEYVALUE></KEYBINDING>"
         "<KEYBINDING NAME='ID'><KEYVALUE>8</KEYVALUE></KEYBINDING></INSTANCENAME>", "A.ID=\"8\",Id=\" 7\""},
        {"<INSTANCENAME CLASSNAME='L'><KEYBINDING NAME='From'><VALUE.REFERENCE>" + key1 +
         "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>", "L.From=\"A.Id=\"1\"\""},
        {"<INSTANCENAME CLASSNAME='L'><VALUE.REFERENCE>" + key1 + "</VALUE.REFERENCE></INSTANCENAME>", "A.Id=\"1\""},
        {"", "0:GetClass() called before container set; kyrStatusInvalidReference"},
        {"<CLASSNAME NAME='None'/>", "kyrStatusNotFound"},
        {"<INSTANCENAME CLASSNAME='None'/>", "kyrStatusNotFound"},
        {"<CLASSPATH>" + hostPath + "<CLASSNAME NAME='A'/></CLASSPATH>", early},
        {"<LOCALCLASSPATH>" + path + "<CLASSNAME NAME='A'/></LOCALCLASSPATH>", early},
        {"<INSTANCEPATH>" + hostPath + name + "</INSTANCENAME></INSTANCEPATH>", early},
        {"<LOCALINSTANCEPATH><LOCALNAMESPACEPATH/>", "!Unexpected at least 1 NAMESPACE element"},
        {name + "<KEYBINDING NAME='X'><KEYVALUE/></KEYBINDING>", "!Couldn't find property name X in class A"},
        {name + "<KEYBINDING NAME='N'><KEYVALUE/></KEYBINDING>", "!Class A doesn't have any key properties"},
        {"<INSTANCENAME><KEYVALUE/></INSTANCENAME>", "!Couldn't find class name "},
        {"<INSTANCENAME><KEYBINDING NAME='Id'><KEYVALUE/></KEYBINDING>", "!Couldn't find class name "},
        {"<INSTANCENAME CLASSNAME=''><KEYVALUE/></INSTANCENAME>", "!Class  doesn't have any key properties"},
        {"<INSTANCENAME CLASSNAME='L'><KEYVALUE>x</KEYVALUE></INSTANCENAME>", "kyrStatusTypeMismatch"},
    };
    for (const TCase& c : cases) EXPECT_EQ(DefaultReference(c.content), c.outcome) << c.content;
}
// clang-format on

TEST_F(Values, ADifferenceContainerLeavesBindingsOutThatAreNoKeys) {
    fContainer.hackhack_TurnIntoADiffContainer();
    EXPECT_EQ(DefaultReference("<INSTANCENAME CLASSNAME='A'><KEYBINDING NAME='N'><KEYVALUE>5</KEYVALUE></KEYBINDING>"
                               "</INSTANCENAME>"),
              "A");
    EXPECT_EQ(DefaultReference("<INSTANCENAME CLASSNAME=''><KEYVALUE>5</KEYVALUE></INSTANCENAME>"), "<root>");
}

}  // namespace
