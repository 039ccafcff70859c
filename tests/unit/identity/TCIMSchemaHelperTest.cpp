#include "kyr/TCIMSchemaHelper.h"

#include "support/SchemaBuilder.h"

namespace {

/// What comes out, and the texts that it comes from.
using TOrigins = std::vector<std::pair<std::string, TLines>>;

constexpr const char* kRefused = "kyrStatusInvalidFormat";

TCIMValue Text(const std::string& text) { return TCIMValue(text); }
TCIMValue NoText() { return Null(CIM::eCIMString); }

class TCIMSchemaHelperTest : public SchemaTest {
protected:
    /// A class of that name with one instance that has the properties.
    TCIMInstance& AddSole(const std::string& name, const SchemaBuilder::TValues& values) {
        std::vector<PropertySketch> properties = {Key("Id", TCIMValue("1"))};
        for (const auto& [property, value] : values) properties.push_back({property, Null(value.GetType())});
        return fSchema.AddInstance(fSchema.AddClass(name, properties), values);
    }
    template <typename TQuestion>
    std::string Ask(TQuestion question) {
        std::string answer;
        const kyrStatusCode status = StatusOf([&] { answer = question(&fContainer); });
        return status == kyrStatusOK ? answer : kyrTranslateStatusCode(status);
    }
};

TEST_F(TCIMSchemaHelperTest, MachineTypeAndModelComeFromTheProductName) {
    const TOrigins cases = {
        {"4185C2X",
         {"Server-[4185C2X]-", "Server-[4185C2X]-more", "-[4185C2X]-", "4185C2X", "4185C2X   ",
          "Halvex Toral p21-[4185C2X]", "Halvex Toral p21-[4185C2X]-"}},
        {"4185 2X", {"Server-[4185 2X]-", "4185 2X"}},
        {"4185xxx", {"Server-[4185]-", "Server-[4185   ]-", "Halvex Toral p21-[4185]-"}},
        {"4185   ", {"Halvex Toral p21-[4185   ]"}},
        {"4170xxx", {"Kestrel 3100"}},
        {"4171xxx", {"Kestrel 3100 M10", "Kestrel 3100 M10   "}},
        {"4172xxx", {"Kestrel 3100 M20"}},
        {"4182xxx", {"Kestrel 3400    "}},
        {"4190xxx", {"Kestrel 6200 M10"}},
        // In "a-[b-[...]-" the first bracket counts.
        {kRefused,
         {"Server-[4185C2X]", "Server-[4185C2X] -", "Server-[4185-2X]-", "Server-[4185C2]-", "Server-[41.5]-",
          "a-[b-[4185C2X]-", "Server-[", "4185", "41852", "4185C2XX", "4185-2X", "", "   ", "Kestrel 6200",
          "Halvex Toral p21-[4185.2X]"}},
    };
    TCIMInstance& system = AddSole("MOLTA_ComputerSystem", {{"ProductName", NoText()}});
    for (const auto& [mtm, names] : cases) {
        for (const std::string& name : names) {
            system.SetPropertyValue("ProductName", Text(name));
            EXPECT_EQ(Ask(TCIMSchemaHelper::GetMTM), mtm) << '"' << name << '"';
            const TLines lines = {"3:TCIMSchemaHelper- Detected MTM " + mtm};
            EXPECT_EQ(fLog.TakeLines(), mtm == kRefused ? TLines() : lines);
        }
    }
}

TEST_F(TCIMSchemaHelperTest, TheBIOSComesBeforeTheProductName) {
    AddSole("MOLTA_ComputerSystem", {{"ProductName", Text("9999ABC")}});
    TCIMClass& bios = fSchema.AddClass("MOLTA_SystemBIOSElement", {Key("Id"), {"MachineTypeModel", NoText()}});
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetMTM), "9999ABC");
    TCIMInstance& first = fSchema.AddInstance(bios, {{"Id", Text("1")}});
    fSchema.AddInstance(bios, {{"Id", Text("2")}, {"MachineTypeModel", Text("2222222")}});
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetMTM), "9999ABC");
    first.SetPropertyValue("MachineTypeModel", Text("4185C2X"));
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetRawMTMString), "4185C2X");
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetMachineType) + Ask(TCIMSchemaHelper::GetModelNumber), "4185C2X");
}

TEST_F(TCIMSchemaHelperTest, ABIOSModelOfAnotherTypeIsAMismatch) {
    AddSole("MOLTA_SystemBIOSElement", {{"MachineTypeModel", TCIMValue(5u)}});
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetMTM), "kyrStatusTypeMismatch");
}

TEST_F(TCIMSchemaHelperTest, WhatIsMissingIsToldInTheLog) {
    const auto expectMissing = [this](auto question, const std::string& reason) {
        EXPECT_EQ(Ask(question), "kyrStatusNotFound");
        EXPECT_EQ(fLog.TakeLines(), TLines{"3:TCIMSchemaHelper: " + reason});
    };
    expectMissing(TCIMSchemaHelper::GetMTM, "no computer system");
    TCIMClass& system = fSchema.AddClass("MOLTA_ComputerSystem", {Key("Id")});
    expectMissing(TCIMSchemaHelper::GetMTM, "computer system instances != 1");
    TCIMInstance& bare = fSchema.AddInstance(system, {{"Id", Text("1")}});
    expectMissing(TCIMSchemaHelper::GetMTM, "didn't find ProductName property");
    expectMissing(TCIMSchemaHelper::GetSerialNumber, "didn't find SerialNumber property");
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetSystemProductName), "kyrStatusNotFound");
    system.RemoveInstance(bare);
    fSchema.AddProperty(system, {"ProductName", NoText()});
    fSchema.AddProperty(system, {"SerialNumber", TCIMValue(5u)});
    fSchema.AddInstance(system, {{"Id", Text("1")}});
    expectMissing(TCIMSchemaHelper::GetMTM, "ProductName is NULL");
    expectMissing(TCIMSchemaHelper::GetSerialNumber, "SerialNumber wasn't a string");
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetSystemProductName), "kyrStatusValueIsNULL");
    fSchema.AddInstance(system, {{"Id", Text("2")}});
    expectMissing(TCIMSchemaHelper::GetSerialNumber, "computer system instances != 1");
}

TEST_F(TCIMSchemaHelperTest, ASerialNumberHasSevenLettersAndDigits) {
    const TOrigins cases = {{"AB12345", {"AB12345", "AB12345  "}},
                            {kRefused, {" AB12345", "AB-2345", "AB123456", "AB1234 ", ""}}};
    TCIMInstance& system = AddSole("MOLTA_ComputerSystem", {{"SerialNumber", NoText()}});
    for (const auto& [serial, texts] : cases) {
        for (const std::string& text : texts) {
            system.SetPropertyValue("SerialNumber", Text(text));
            EXPECT_EQ(Ask(TCIMSchemaHelper::GetSerialNumber), serial) << '"' << text << '"';
        }
    }
}

TEST_F(TCIMSchemaHelperTest, TheVersionIsCutAtItsDots) {
    const char* const none = "kyrStatusNotFound";
    const TLines cases[] = {{"1.23.456", "1", "23", "456"}, {"12.34.56", "12", "34.", "56"},
                            {"1.2", "1", "2", "2"},         {"1.2.3", "1", "2.", "3"},
                            {".5", "", "5", "5"},           {"7.", "7", "", ""},
                            {"12", none, none, none}};
    TCIMInstance& product = AddSole("MOLTA_ORQProduct", {{"Version", NoText()}});
    for (const TLines& expected : cases) {
        product.SetPropertyValue("Version", Text(expected[0]));
        const TLines parts = {
            Ask(TCIMSchemaHelper::GetDataSourceVersion), Ask(TCIMSchemaHelper::GetDataSourceMajorVersion),
            Ask(TCIMSchemaHelper::GetDataSourceMinorVersion), Ask(TCIMSchemaHelper::GetDataSourceBuildVersion)};
        EXPECT_EQ(parts, expected);
    }
}

TEST_F(TCIMSchemaHelperTest, PlainFactsComeFromTheOneInstanceSubclassesIncluded) {
    TCIMClass& base = fSchema.AddClass("MOLTA_OperatingSystem",
                                       {Key("Name"), {"Version", NoText()}, {"OSType", Null(CIM::eCIMUint16)}});
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetOperatingSystemName), "kyrStatusNotFound");
    TCIMClass& linux = fSchema.AddClass("Linux", {}, &base);
    fSchema.AddInstance(linux, {{"Name", Text("Debian")}, {"OSType", TCIMValue(static_cast<unsigned short>(36))}});
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetOperatingSystemName), "Debian");
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetOperatingSystemVersion), "kyrStatusValueIsNULL");
    EXPECT_EQ(TCIMSchemaHelper::GetOperatingSystemType(&fContainer), 36);
    fSchema.AddInstance(linux, {{"Name", Text("Other")}});
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetOperatingSystemName), "kyrStatusNotFound");
    EXPECT_EQ(Ask(TCIMSchemaHelper::GetSystemName), "kyrStatusNotFound");
    EXPECT_EQ(TCIMSchemaHelper::GetOperatingSystemCreationClassName(nullptr), "MOLTA_OperatingSystem");
    EXPECT_TRUE(fLog.TakeLines().empty());
}

TEST(TCIMSchemaHelperFormTest, OnlyTheLeadingCharactersAreLookedAt) {
    const TOrigins cases = {{"MTM", {"4185C2X", "4185   ", "4185C2X-more"}},
                            {"type", {"4185-", "4185C2", "4185"}},
                            {"none", {"418 C2X", "418", "", "\xe4\xe4\xe4\xe4"}}};
    for (const auto& [form, texts] : cases) {
        for (const std::string& text : texts) {
            EXPECT_EQ(TCIMSchemaHelper::IsValidMachineType(text), form != "none") << text;
            EXPECT_EQ(TCIMSchemaHelper::IsValidMTM(text), form == "MTM") << text;
        }
    }
}

}  // namespace
