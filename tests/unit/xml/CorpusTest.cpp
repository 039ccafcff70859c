// Real schema and instance documents against tables of what is in them.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/SchemaBuilder.h"

namespace {

template <typename TList>
std::string Number(const TList& list) {
    return std::to_string(list.size());
}

std::string SortedNames(const std::vector<TCIMClass*>& classes) {
    TLines names = NamesOf(classes);
    std::sort(names.begin(), names.end());
    return Joined(names, " ");
}

class Corpus : public SchemaTest, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        if (std::getenv("KYRCORE_CORPUS") != nullptr) fFolder = std::string(std::getenv("KYRCORE_CORPUS")) + "/";
        if (!std::filesystem::exists(fFolder + GetParam() + ".xml"))
            GTEST_SKIP() << "no corpus; its folder can be named by KYRCORE_CORPUS";
    }

    std::vector<TCIMClass*> Populate(const std::string& extension) {
        return fContainer.PopulateContainerFromFile(fFolder + GetParam() + extension);
    }
    std::vector<TLines> Rows(const std::string& table);
    void CheckClasses(const std::vector<TCIMClass*>& collected);

    std::string fFolder = std::string(KYRCORE_CORPUS_FOLDER) + "/";
};

/// The rows of a table without the one of its headings.
std::vector<TLines> Corpus::Rows(const std::string& table) {
    std::ifstream stream(fFolder + "expect/" + GetParam() + "." + table + ".tsv");
    std::vector<TLines> rows;
    for (std::string line; std::getline(stream, line);) rows.push_back(Split(line + '\t', '\t'));
    if (!rows.empty()) rows.erase(rows.begin());
    return rows;
}

// clang-format off
void Corpus::CheckClasses(const std::vector<TCIMClass*>& collected) {
    const std::vector<TLines> rows = Rows("classes");
    ASSERT_EQ(collected.size(), rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        const TCIMClass& cls = *collected[i];
        const auto own = [&cls](const TCIMPropertyDecl* property) { return property->GetClass() == &cls; };
        const std::vector<const TCIMPropertyDecl*> properties = cls.EnumeratePropertyDecls();
        const TCIMClass* const superclass = cls.GetSuperClass();
        const TLines found = {
            cls.GetName(), superclass == fContainer.GetRootClass() ? "" : superclass->GetName(),
            std::to_string(cls.IsAbstract()), std::to_string(cls.IsAssociation()), Number(properties),
            std::to_string(std::count_if(properties.begin(), properties.end(), own)),
            Joined(cls.EnumerateKeyNames(), ","), Number(cls.EnumerateQualifiers()),
            Number(cls.EnumerateSubClasses(false)), Number(cls.EnumerateSubClasses(true))};
        EXPECT_EQ(found, TLines(rows[i].begin(), rows[i].begin() + 10));
    }
}

TEST_P(Corpus, IsReadAsItsTablesSay) {
    CheckClasses(Populate(".xml"));
    EXPECT_EQ(fContainer.EnumerateQualifiers().size(), Rows("qualifiers").size());
    for (const TLines& row : Rows("qualifiers")) {
        const TCIMQualifierDecl& declaration = *fContainer.GetQualifierDecl(row[0]);
        EXPECT_EQ(row, TLines({declaration.GetName(), declaration.GetType().ToString(),
                             declaration.IsArray() ? "array" : "scalar", std::to_string(declaration.GetScope()),
                             std::to_string(declaration.GetFlavor()), TextOf(declaration.GetValue())}));
    }
    for (const TLines& row : Rows("properties")) {
        const TCIMClass& cls = *fContainer.GetClass(row[0]);
        const TCIMPropertyDecl& property = *cls.GetPropertyDecl(row[1]);
        const TLines keys = cls.EnumerateKeyNames();
        const TCIMValue& value = property.GetValue();
        EXPECT_EQ(row, TLines({cls.GetName(), property.GetName(), property.GetClass()->GetName(),
                             property.GetType().ToString(), std::to_string(property.IsArray()),
                             std::to_string(value.GetMaxArraySize()),
                             value.IsReference() ? value.GetReferencedClass()->GetName() : "",
                             std::to_string(std::count(keys.begin(), keys.end(), property.GetName())),
                             Number(property.EnumerateQualifiers()), TextOf(value)}));
    }
    for (const TLines& row : Rows("associations")) {
        const TCIMClass& cls = *fContainer.GetClass(row[0]);
        const std::vector<TCIMClass*> references = cls.References("", "");
        const std::vector<TCIMClass*> associators = cls.Associators("", "", "", "");
        EXPECT_EQ(row, TLines({cls.GetName(), Number(references), Number(associators), SortedNames(references),
                             SortedNames(associators)}));
    }
    for (const TLines& row : Rows("left-out")) EXPECT_EQ(fContainer.FindClass(row[0]), nullptr) << row[0];
}
// clang-format on

TEST_P(Corpus, HasTheInstancesOfItsTable) {
    Populate(".xml");
    std::vector<TLines> rows = Rows("instances");
    std::vector<TLines> found;
    for (const TCIMInstance* instance : fContainer.GetRootClass()->EnumerateInstances(true)) {
        const std::vector<const TCIMProperty*> properties = instance->EnumerateProperties();
        const auto isSet = [](const TCIMProperty* property) { return !property->GetPropagated(); };
        found.push_back({instance->GetClass()->GetName(), instance->BuildPath().GetPath(), Number(properties),
                         std::to_string(std::count_if(properties.begin(), properties.end(), isSet))});
    }
    std::sort(rows.begin(), rows.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, rows);
}

TEST_P(Corpus, ReadsTheSameFromTheCompressedDocumentAndNothingTheSecondTime) {
    CheckClasses(Populate(".xml.gz"));
    EXPECT_TRUE(Populate(".xml").empty());
}

INSTANTIATE_TEST_SUITE_P(Documents, Corpus,
                         ::testing::Values("cim249-core", "cim249-system", "cim249-device", "cim249-core-system-device",
                                           "pegasus-family", "pegasus-registrations", "dmtf242-sample"));

}  // namespace
