// Which element may stand where, as data: every parent in every phase is tried with every name of the vocabulary.

#include <algorithm>
#include <sstream>

#include "ReaderSupport.h"
#include "xml/ObjectStates.h"
#include "xml/PathStates.h"
#include "xml/ValueStates.h"
#include "xml/WrapperStates.h"

namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::istringstream stream(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

const char* const kVocabulary =
    "cim declaration declgroup declgroup.withname declgroup.withpath qualifier.declaration scope value.object "
    "value.namedobject value.objectwithpath value.objectwithlocalpath value value.array value.reference namespacepath "
    "localnamespacepath host namespace classpath localclasspath classname instancepath localinstancepath instancename "
    "keybinding keyvalue class instance qualifier property property.array property.reference method message multireq "
    "simplereq imethodcall iparamvalue "
    // and what the DTD has beyond
    "value.null value.namedinstance value.refarray objectpath parameter parameter.reference expmethodcall error";

/// Opens elements by their names, and closes one at once whose name ends in a slash.
class TDriver : public TCIMXMLParser {
public:
    using TCIMXMLParser::TCIMXMLParser;

    void Walk(const std::string& path);
    /// With attributes that let every element pass.
    void Open(const std::string& name) {
        TAttributes attributes = {{"name", "Id"}, {"type", "string"}, {"referenceclass", "A"}};
        if (name == "class") attributes = {{"name", "T_New"}, {"superclass", "A"}};
        if (name == "instance") attributes = {{"classname", "A"}};
        if (name == "qualifier") attributes["name"] = "Text";
        if (name == "property.array") attributes["name"] = "Tags";
        if (name == "imethodcall") attributes["name"] = "CreateClass";
        if (name == "iparamvalue") attributes["name"] = "NewClass";
        StartElement(name.c_str(), attributes);
    }

private:
    TCIMValue fValue;
    std::string fString;
    TCIMReference fReference = nullptr;
};

void TDriver::Walk(const std::string& path) {
    static const std::map<std::string, std::string> kShort = {
        {"GROUP", "cim declaration declgroup"},
        {"NAMED", "cim declaration declgroup.withname value.namedobject"},
        {"PATH", "cim declaration declgroup.withpath value.objectwithpath"},
        {"LOCAL", "cim declaration declgroup.withpath value.objectwithlocalpath"},
        {"CLASS", "cim declaration declgroup value.object class"},
        {"INSTANCE", "cim declaration declgroup value.object instance"},
        {"CALL", "cim message simplereq imethodcall"},
        {"NAMESPACE/", "localnamespacepath namespace/ /localnamespacepath"},
    };
    for (const std::string& step : Split(path, ' ')) {
        const auto known = kShort.find(step);
        if (known != kShort.end())
            Walk(known->second);
        else if (step == "(ValueNamedInstance)")
            fStates.push(boost::make_shared<TStateValueNamedInstance>());
        else if (step == "(ValueRefArray)")
            fStates.push(boost::make_shared<TStateValueRefArray>(fValue));
        else if (step == "(ObjectPath)")
            fStates.push(boost::make_shared<TStateObjectPath>(fString, fString, fReference, fString));
        else if (step[0] != '/')
            Open(step.substr(0, step.find('/')));
        if (step[0] == '/' || (known == kShort.end() && step.back() == '/')) EndElement(step.c_str());
    }
}

struct TRow {
    const char* paths;     // to states that take the same children
    const char* children;  // "*": the state takes any child for nothing
    std::string refusal = "Unexpected element ";
};

// clang-format off
const TRow kRows[] = {
    {"", "cim"},
    {"cim", "declaration message"},
    {"cim declaration", "declgroup declgroup.withname declgroup.withpath"},
    {"GROUP", "namespacepath localnamespacepath qualifier.declaration value.object"},
    {"GROUP namespacepath/,GROUP qualifier.declaration/", "qualifier.declaration value.object"},
    {"GROUP value.object class/ /value.object", "value.object"},
    {"cim declaration declgroup.withname", "namespacepath localnamespacepath qualifier.declaration value.namedobject"},
    {"NAMED class/ /value.namedobject", "value.namedobject"},
    {"cim declaration declgroup.withpath", "value.objectwithpath value.objectwithlocalpath"},
    {"GROUP qualifier.declaration", "scope", "Expected SCOPE element"},
    {"GROUP qualifier.declaration scope/,GROUP qualifier.declaration scope/ value/", "value value.array"},
    {"GROUP qualifier.declaration scope,CLASS qualifier value,GROUP namespacepath host,"
     "GROUP localnamespacepath namespace,NAMED instancename keyvalue", "*"},
    {"GROUP value.object,CALL NAMESPACE/ iparamvalue", "class instance"},
    {"GROUP value.object class/,NAMED class/,PATH classpath/ class/,LOCAL localinstancepath/ instance/,"
     "CALL NAMESPACE/ iparamvalue class/", ""},
    {"NAMED", "class instancename"},
    {"PATH", "classpath instancepath"},
    {"LOCAL", "localclasspath localinstancepath"},
    {"NAMED instancename/,PATH instancepath/,LOCAL localinstancepath/", "instance"},
    {"PATH classpath/,LOCAL localclasspath/", "class"},
    {"CLASS", "qualifier property property.array property.reference method"},
    {"CLASS property/", "property property.array property.reference method"},
    {"CLASS method", "method"},
    {"CLASS qualifier", "value value.array"},
    {"CLASS qualifier value.array", "value"},
    {"INSTANCE", "qualifier property property.array property.reference"},
    {"INSTANCE property/", "property property.array property.reference"},
    {"CLASS property,CLASS property value/,INSTANCE property", "qualifier value"},
    {"CLASS property.array,INSTANCE property.array", "qualifier value.array"},
    {"CLASS property.reference,INSTANCE property.reference", "qualifier value.reference"},
    {"CLASS property.reference value.reference",
     "classpath localclasspath classname instancepath localinstancepath instancename"},
    {"GROUP namespacepath", "host"},
    {"GROUP namespacepath host/,LOCAL localclasspath,LOCAL localinstancepath,CALL", "localnamespacepath"},
    {"GROUP namespacepath host/ NAMESPACE/", "", "Parser state corrupt"},
    {"GROUP localnamespacepath", "namespace"},
    {"PATH classpath,PATH instancepath", "namespacepath"},
    {"PATH classpath namespacepath/,LOCAL localclasspath NAMESPACE/", "classname"},
    {"PATH instancepath namespacepath/,LOCAL localinstancepath NAMESPACE/", "instancename"},
    {"PATH classpath namespacepath/ classname,PATH classpath namespacepath/ classname/,"
     "LOCAL localclasspath NAMESPACE/ classname/,PATH instancepath namespacepath/ instancename/,"
     "LOCAL localinstancepath NAMESPACE/ instancename/", ""},
    {"NAMED instancename", "keybinding keyvalue value.reference"},
    {"NAMED instancename keybinding", "keyvalue value.reference"},
    {"cim message", "simplereq multireq"},
    {"cim message multireq,cim message multireq simplereq/ simplereq/", "simplereq"},
    {"cim message simplereq", "imethodcall"},
    {"CALL NAMESPACE/", "iparamvalue"},
    // States that no element leads to.
    {"(ValueNamedInstance)", "instancename"},
    {"(ValueNamedInstance) instancename/", "instance"},
    {"(ValueNamedInstance) instancename/ instance/", ""},
    {"(ValueRefArray)", "value.reference"},
    {"(ObjectPath)", "instancepath classpath"},
};
// clang-format on

class ElementTable : public ReaderTest {
protected:
    /// What the reader says to a child, empty if it takes it.
    std::string Try(const std::string& path, const std::string& child) {
        TDriver driver(&fContainer);
        EXPECT_EQ(StatusOf([&] { driver.Walk(path); }), kyrStatusOK) << "cannot get to " << path;
        fLog.TakeTexts();
        const kyrStatusCode status = StatusOf([&] { driver.Open(child); });
        const std::vector<std::string> log = fLog.TakeTexts();
        return status == kyrStatusInvalidSpecificationDocument ? log.at(0) : "";
    }
};

TEST_F(ElementTable, EveryParentTakesItsChildrenAndRefusesAllOthers) {
    for (const TRow& row : kRows) {
        const std::vector<std::string> children = Split(row.children, ' ');
        for (const std::string& path : Split(std::string(row.paths) + ",", ','))
            for (const std::string& child : Split(kVocabulary, ' ')) {
                std::string expected = "CIM-XML Parser line 1:" + row.refusal;
                if (expected.back() == ' ') expected += child;
                if (row.children[0] == '*' || std::count(children.begin(), children.end(), child) != 0) expected = "";
                EXPECT_EQ(Try(path, child), expected) << "in " << path << " the child " << child;
            }
    }
}

TEST_F(ElementTable, NamesMayBeInAnyCase) {
    for (const char* root : {"CIM", "cim", "Cim"}) EXPECT_EQ(Read(std::string("<") + root + "/>"), "") << root;
    EXPECT_EQ(Read("<message/>"), "!Unexpected element message");
}

}  // namespace
