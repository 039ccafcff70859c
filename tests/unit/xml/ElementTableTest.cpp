// Which element may stand where: every parent of cases/elements.txt is tried with every name of the vocabulary.

#include <algorithm>
#include <fstream>
#include <random>

#include "ReaderSupport.h"
#include "support/OddLocale.h"
#include "xml/ObjectStates.h"
#include "xml/PathStates.h"
#include "xml/ValueStates.h"
#include "xml/WrapperStates.h"

namespace {

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
        StartElement(InAnyCase(name).c_str(), attributes);
    }

private:
    std::string InAnyCase(std::string name) {
        for (char& c : name)
            if (fgDice() % 3 == 0) c = static_cast<char>(toupper(c));
        return name;
    }

    static inline std::mt19937 fgDice;
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
        if (step == "(document)")
            continue;
        else if (known != kShort.end())
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
    TLines paths;  // to states that take the same children
    TLines children;
    std::string refusal;
};

/// The rows of cases/elements.txt.
std::vector<TRow> Rows() {
    std::ifstream stream(KYRCORE_CASES "/elements.txt");
    std::vector<TRow> rows(1);
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (!rows.back().children.empty()) rows.emplace_back();
        if (line[0] != ' ') {
            rows.back().paths.push_back(line);
            continue;
        }
        const size_t end = line.find(" ! ");
        rows.back().children = Split(line.substr(4, end == std::string::npos ? end : end - 4), ' ');
        rows.back().refusal = end == std::string::npos ? "Unexpected element " : line.substr(end + 3);
    }
    return rows;
}

class ElementTable : public ReaderTest {
protected:
    /// What the reader says to a child, empty if it takes it.
    std::string Try(const std::string& path, const std::string& child) {
        TDriver driver(&fContainer);
        EXPECT_EQ(StatusOf([&] { driver.Walk(path); }), kyrStatusOK) << "cannot get to " << path;
        fLog.TakeLines();
        const kyrStatusCode status = StatusOf([&] { driver.Open(child); });
        const TLines log = fLog.TakeLines();
        return status == kyrStatusInvalidSpecificationDocument ? log.at(0) : "";
    }
};

TEST_F(ElementTable, EveryParentTakesItsChildrenAndRefusesAllOthers) {
    for (const auto& [paths, children, refusal] : Rows())
        for (const std::string& path : paths)
            for (const std::string& child : Split(kVocabulary, ' ')) {
                const bool isTaken = std::count(children.begin(), children.end(), child) != 0 || children.back() == "*";
                std::string expected = "0:CIM-XML Parser line 1:" + refusal;
                if (expected.back() == ' ') expected += child;
                EXPECT_EQ(Try(path, child), isTaken ? "" : expected) << "in " << path << " the child " << child;
            }
}

TEST_F(ElementTable, NamesMayBeInAnyCase) {
    for (const char* root : {"CIM", "cim", "Cim"}) EXPECT_EQ(Read(std::string("<") + root + "/>"), "") << root;
    EXPECT_EQ(Read("<message/>"), "!Unexpected element message");
    const TOddLocale locale;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Read("<CIM/>"), "!Unexpected element c\xfdm");
        EXPECT_EQ(Read("<CiM/>"), "");
    }
}

}  // namespace
