// What every class and property of the schema owes its readers, whichever document brings it.
#include <filesystem>
#include <set>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"
#include "support/TestSupport.h"

namespace {

std::vector<std::string> Texts(const TCIMPropertyDecl& property, const char* qualifier) {
    std::vector<std::string> texts;
    if (const TCIMQualifier* const found = property.FindQualifier(qualifier)) {
        const TCIMValue value = found->GetValue();
        for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
            texts.push_back(element.ToString(10));
    }
    return texts;
}

bool IsNumeric(const TCIMPropertyDecl& property) {
    using TType = TCIMValue::TCIMType;
    const int element = property.GetType() & ~TType::eCIMArrayFlag;
    return element >= TType::eCIMUint8 && element <= TType::eCIMReal64;
}

bool HasRepeats(const std::vector<std::string>& texts) {
    return std::set<std::string>(texts.begin(), texts.end()).size() != texts.size();
}

template <typename TCarrier>
bool IsDescribed(const TCarrier& carrier) {
    const TCIMQualifier* const description = carrier.FindQualifier("Description");
    return description != nullptr && !description->GetValue().IsNull();
}

/// Whether the text of NullMeans, if there is one, begins with a word for the reason.
bool IsReasonGiven(const TCIMPropertyDecl& property) {
    const TCIMQualifier* const meaning = property.FindQualifier("NullMeans");
    if (meaning == nullptr) return true;
    const std::string text = meaning->GetValue();
    for (const char* reason : {"does not apply: ", "not present: ", "not reported: "})
        if (text.rfind(reason, 0) == 0) return true;
    return false;
}

/// What is wrong with a property; empty if nothing.
std::string Fault(const TCIMPropertyDecl& property) {
    const std::vector<std::string> map = Texts(property, "ValueMap"), values = Texts(property, "Values");
    if (!IsDescribed(property)) return "no Description";
    if (map.size() != values.size()) return "ValueMap and Values differ in length";
    if (HasRepeats(map) || HasRepeats(values)) return "a value or a word stands twice";
    if (IsNumeric(property) && map.empty() && property.FindQualifier("Units") == nullptr)
        return "a number with neither Units nor ValueMap";
    if (!IsReasonGiven(property)) return "NullMeans does not begin with a reason";
    return "";
}

/// The base documents, and then those of the plugins.
std::vector<std::string> Documents() {
    std::set<std::string> documents;
    for (const auto& file : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/plugins"))
        if (file.path().extension() == ".xml") documents.insert(file.path());
    std::vector<std::string> all = {SOURCE_DIR "/schema/kyrcore.xml", SOURCE_DIR "/schema/collection.xml"};
    all.insert(all.end(), documents.begin(), documents.end());
    return all;
}

}  // namespace

TEST(DocumentsTest, EveryClassAndPropertyIsDescribedAndCounted) {
    const LogCapture log;
    TContainer container;
    const std::vector<std::string> documents = Documents();
    EXPECT_EQ(documents.size(), 11u);
    for (const std::string& document : documents)
        for (const TCIMClass* cls : container.PopulateContainerFromFile(document)) {
            EXPECT_TRUE(IsDescribed(*cls)) << cls->GetName();
            if (!cls->IsAbstract()) {
                EXPECT_THAT(cls->GetName(), ::testing::StartsWith("MOLTA_"));
            }
            for (const TCIMPropertyDecl* property : cls->EnumeratePropertyDecls())
                EXPECT_EQ(Fault(*property), "") << cls->GetName() << '.' << property->GetName();
        }
}
