#include "model/TNormalizedName.h"

#include <memory>
#include <random>

#include "support/OddLocale.h"
#include "support/SchemaBuilder.h"

namespace {

class TNormalizedNameTest : public SchemaTest {
protected:
    unsigned int Below(unsigned int limit) { return static_cast<unsigned int>(fRandom() % limit); }
    std::string AnyName() {
        // Mostly what names are made of, so that most are valid up to their end.
        static constexpr char kUsual[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";
        std::string name;
        for (unsigned int i = Below(90); i != 0; --i) name += kUsual[Below(sizeof kUsual - 1)];
        while (!name.empty() && Below(3) == 0) name[Below(static_cast<unsigned int>(name.size()))] = AnyCharacter();
        return name;
    }
    char AnyCharacter() { return static_cast<char>(Below(256)); }

    std::mt19937 fRandom;
};

/// Character by character with the tables of the present locale.
std::string Expected(const std::string& name) {
    std::string lower;
    for (const char character : name) {
        const int c = (*__ctype_tolower_loc())[static_cast<unsigned char>(character)];
        const auto classes = (*__ctype_b_loc())[c];
        if (c != '_' && (classes & (lower.empty() ? _ISalpha : _ISalnum)) == 0)
            return "kyrStatusInvalidCIMName 0:CIM name '" + name + "' is invalid";
        lower += static_cast<char>(c);
    }
    return lower;
}

}  // namespace

TEST_F(TNormalizedNameTest, FollowsTheTablesOfTheLocale) {
    for (const bool isOdd : {false, true, false}) {
        const std::unique_ptr<TOddLocale> locale(isOdd ? new TOddLocale : nullptr);
        EXPECT_EQ(TNormalizedName("ID").View(), isOdd ? "\xfd"
                                                        "d"
                                                      : "id");
        for (int i = 0; i < 5000; ++i) {
            const std::string name = AnyName();
            std::string lower;
            const std::string outcome = Outcome([&] { lower = TNormalizedName(name).View(); });
            ASSERT_EQ(lower + outcome, Expected(name)) << testing::PrintToString(name);
        }
    }
}

// Names alike at both ends are all looked for at one place.
TEST_F(TNormalizedNameTest, FindsEachPropertyAndNoOther) {
    for (const bool isOdd : {false, true}) {
        const std::unique_ptr<TOddLocale> locale(isOdd ? new TOddLocale : nullptr);
        TCIMClass cls(fContainer, "C", nullptr);
        TLines names = {"a", "b", "ab", "aXb", "Is", "id", "DateTimeOfCollectio", "ateTimeOfCollection"};
        for (int i = 0; i < 60; ++i) names.push_back("SameBeginning" + std::to_string(i) + "AndSameEnd");
        for (const std::string& name : names) fSchema.AddProperty(cls, {name, TCIMValue(1u)});
        const TCIMInstance instance(&cls);
        for (std::string name : names) {
            const TCIMProperty* const property = instance.FindProperty(name);
            ASSERT_NE(property, nullptr) << name;
            EXPECT_EQ(property->GetName(), name);
            EXPECT_EQ(instance.FindProperty(name + "x"), nullptr) << name;
            EXPECT_EQ(instance.FindProperty(name.replace(name.size() / 2, 1, "y")), nullptr) << name;
        }
        EXPECT_EQ(instance.FindProperty("is") != nullptr, !isOdd);
        EXPECT_EQ(instance.FindProperty(""), nullptr);
    }
}
