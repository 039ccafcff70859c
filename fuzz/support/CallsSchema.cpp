#include "support/CallsSchema.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "support/Documents.h"
#include "support/FuzzSupport.h"
#include "xml/TCIMXMLParser.h"

namespace {

const std::string kKey = "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";

// The types whose values can be made from text.
constexpr const char* kTypes[] = {"boolean", "uint8",  "sint8",  "uint16", "sint16", "uint32",  "sint32",
                                  "uint64",  "sint64", "real32", "real64", "string", "datetime"};

std::string Class(const std::string& attributes, const std::string& content) {
    return "<VALUE.OBJECT><CLASS " + attributes + ">" + content + "</CLASS></VALUE.OBJECT>";
}
std::string True(const std::string& qualifier) {
    return "<QUALIFIER NAME='" + qualifier + "' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
}
std::string Property(const std::string& name, const std::string& type, const std::string& qualifiers) {
    return "<PROPERTY NAME='" + name + "' TYPE='" + type + "'>" + qualifiers + "</PROPERTY>";
}
std::string Array(const std::string& type) { return "<PROPERTY.ARRAY NAME='" + type + "s' TYPE='" + type + "'/>"; }
std::string Reference(const std::string& name, const std::string& cls, const std::string& qualifiers) {
    return "<PROPERTY.REFERENCE NAME='" + name + "' REFERENCECLASS='" + cls + "'>" + qualifiers +
           "</PROPERTY.REFERENCE>";
}

std::string Document() {
    std::string all = Property("Id", "string", kKey);
    std::string keys;
    for (const char* type : kTypes) {
        all += Property(type, type, "") + Array(type);
        keys += Property(type, type, kKey);
    }
    std::string document = "<CIM><DECLARATION><DECLGROUP>";
    for (const char* name : {"Key", "Association", "Abstract"})
        document += "<QUALIFIER.DECLARATION NAME='" + std::string(name) + "' TYPE='boolean'/>";
    document += Class("NAME='F_All'", all) + Class("NAME='F_Sub' SUPERCLASS='F_All'", "");
    document +=
        Class("NAME='F_Keys'", keys) + Class("NAME='F_Abstract'", True("Abstract") + Property("Id", "string", ""));
    document +=
        Class("NAME='F_Link'", True("Association") + Reference("From", "F_All", kKey) +
                                   Reference("To", "F_Keys", kKey) + Property("DateTimeOfCollection", "datetime", ""));
    document += Class("NAME='F_Outer' SUPERCLASS='F_Link'", Reference("Inner", "F_Link", ""));
    return document + "</DECLGROUP></DECLARATION></CIM>";
}

std::unique_ptr<TContainer> ReadSchema() {
    auto container = std::make_unique<TContainer>();
    TDocumentText text(Document());
    TCIMXMLParser parser(container.get());
    parser.Parse(text.Begin());
    Require(parser.GetClassesCollected().size() == 6, "the schema of the calls is read whole");
    return container;
}

std::unique_ptr<TContainer>& Container() {
    static std::unique_ptr<TContainer> container = ReadSchema();
    return container;
}

/// False if an instance is left, because its keys have changed since it was stored.
bool RemoveInstances(TCIMClass& cls) {
    std::vector<TCIMInstance*> left = cls.EnumerateInstances(false);
    while (!left.empty()) {
        const std::size_t before = left.size();
        cls.RemoveInstance(*left.front());
        left = cls.EnumerateInstances(false);
        if (left.size() == before) return false;
    }
    return true;
}

bool RemoveAllInstances(const TContainer& container) {
    std::vector<TCIMClass*> classes = container.GetRootClass()->EnumerateSubClasses(true);
    classes.push_back(container.GetRootClass());  // it may have instances too
    return std::all_of(classes.begin(), classes.end(), [](TCIMClass* cls) { return RemoveInstances(*cls); });
}

}  // namespace

TContainer& CallsContainer() { return *Container(); }

void EmptyCallsContainer() {
    if (!RemoveAllInstances(*Container())) Container() = ReadSchema();
}
