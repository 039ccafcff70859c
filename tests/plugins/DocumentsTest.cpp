// What every class and property of our documents owes its readers beyond the rules of kyr check.
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

bool HasRepeats(const std::vector<std::string>& texts) {
    return std::set<std::string>(texts.begin(), texts.end()).size() != texts.size();
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
    if (HasRepeats(Texts(property, "Values"))) return "a word stands twice";
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

TEST(DocumentsTest, EveryClassAndPropertyObeysOurOwnRules) {
    const LogCapture log;
    TContainer container;
    const std::vector<std::string> documents = Documents();
    EXPECT_GE(documents.size(), 12u);
    for (const std::string& document : documents)
        for (const TCIMClass* cls : container.PopulateContainerFromFile(document)) {
            if (!cls->IsAbstract()) {
                EXPECT_THAT(cls->GetName(), ::testing::StartsWith("MOLTA_"));
            }
            for (const TCIMPropertyDecl* property : cls->EnumeratePropertyDecls())
                EXPECT_EQ(Fault(*property), "") << cls->GetName() << '.' << property->GetName();
        }
}
