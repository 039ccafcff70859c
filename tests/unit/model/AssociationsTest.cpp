#include <map>
#include <set>

#include "support/SchemaBuilder.h"

using TSorted = std::multiset<std::string>;

namespace {

/// System and Disk (NVMe below it) under Hosts (SubHosts below it) and Mirrors, from Disk to Disk; Lone under nothing.
class AssociationsTest : public SchemaTest {
protected:
    TCIMClass& fSystem = fSchema.AddClass("System", {Key("ID")});
    TCIMClass& fDisk = fSchema.AddClass("Disk", {Key("ID")});
    TCIMClass& fNVMe = fSchema.AddClass("NVMe", {}, &fDisk);
    TCIMClass& fLone = fSchema.AddClass("Lone", {Key("ID")});
    TCIMClass& fHosts = fSchema.AddClass(
        "Hosts", {KeyReference("Group", fSystem), {"Note", TCIMValue("x")}, KeyReference("Part", fDisk)}, nullptr,
        {"ASSOCIATION"});
    TCIMClass& fSubHosts = fSchema.AddClass("SubHosts", {}, &fHosts);
    TCIMClass& fMirrors = fSchema.AddClass("Mirrors", {KeyReference("First", fDisk), KeyReference("Second", fDisk)},
                                           nullptr, {"ASSOCIATION"});

    const TCIMClass& Class(const std::string& name) const { return *fContainer.GetClass(name); }
    TCIMInstance& Add(TCIMClass& cls, const char* id) { return Tie(id, cls, {{"ID", TCIMValue(id)}}); }
    /// An instance, by a name for the lists below.
    TCIMInstance& Tie(const char* name, TCIMClass& cls, const SchemaBuilder::TValues& values) {
        TCIMInstance& instance = fSchema.AddInstance(cls, values);
        fNames[&instance] = name;
        return instance;
    }
    TSorted Names(const std::vector<TCIMInstance*>& instances) {
        TSorted names;
        for (const TCIMInstance* instance : instances) names.insert(fNames[instance]);
        return names;
    }

    std::map<const TCIMInstance*, std::string> fNames;
};

TEST_F(AssociationsTest, ClassFindsTheAssociationsThatPointToIt) {
    // clang-format off
    // The order among associations is that of their addresses.
    const std::tuple<const char*, const char*, const char*, TSorted> kCases[] = {
        {"System", "", "", {"Hosts", "SubHosts"}}, {"Disk", "", "", {"Hosts", "Mirrors", "SubHosts"}},
        {"NVMe", "", "", {"Hosts", "Mirrors", "SubHosts"}}, {"Lone", "", "", {}}, {"Hosts", "", "", {}},
        {"", "", "", {}}, {"Disk", "hOSTS", "", {"Hosts", "SubHosts"}}, {"Disk", "SubHosts", "", {"SubHosts"}},
        {"Disk", "Lone", "", {}}, {"Disk", "Unknown", "", {}}, {"Disk", "", "pART", {"Hosts", "SubHosts"}},
        {"Disk", "", "Second", {"Mirrors"}}, {"Disk", "", "Group", {}}, {"Disk", "", "Note", {}}, {"Disk", "", "None", {}},
        {"NVMe", "", "Part", {}},
    };
    // clang-format on
    for (const auto& [from, assocClass, role, expected] : kCases) {
        const TLines names = NamesOf(Class(from).References(assocClass, role));
        EXPECT_EQ(TSorted(names.begin(), names.end()), expected) << from << " (" << assocClass << ", " << role << ')';
    }
    EXPECT_EQ(StatusOf([&] { fDisk.References("", "no name"); }), kyrStatusInvalidCIMName);
    EXPECT_NO_THROW(fLone.References("", "no name")) << "nothing to look the role up in";
}

TEST_F(AssociationsTest, ClassFindsWhatStandsAtTheOtherEnds) {
    // clang-format off
    // In walking order, which each case keeps within one association or one result.
    const std::tuple<const char*, const char*, const char*, const char*, const char*, TLines> kCases[] = {
        {"System", "", "", "", "", {"Disk", "Disk"}}, {"Disk", "Hosts", "", "", "", {"System", "System"}},
        {"Disk", "SubHosts", "", "", "", {"System"}}, {"Disk", "Mirrors", "", "", "", {"Disk"}},
        {"NVMe", "SubHosts", "", "", "", {"System", "Disk"}}, {"NVMe", "Mirrors", "", "", "", {"Disk", "Disk"}},
        {"NVMe", "SubHosts", "", "Part", "", {}}, {"NVMe", "SubHosts", "", "", "Part", {"Disk"}},
        {"Disk", "SubHosts", "", "pART", "", {"System"}}, {"Disk", "SubHosts", "", "Part", "gROUP", {"System"}},
        {"Disk", "SubHosts", "", "Group", "", {}}, {"Disk", "Mirrors", "", "Second", "", {"Disk"}},
        {"Disk", "SubHosts", "", "", "Part", {"Disk"}}, {"Disk", "SubHosts", "", "", "Note", {}},
        {"Disk", "SubHosts", "", "", "None", {}}, {"Disk", "SubHosts", "Disk", "", "", {}},
        {"System", "SubHosts", "dISK", "", "", {"Disk"}}, {"System", "SubHosts", "NVMe", "", "", {}},
        {"System", "SubHosts", "System", "", "Part", {}}, {"System", "", "Unknown", "", "", {}},
        {"System", "Unknown", "", "", "", {}}, {"Lone", "", "", "", "", {}}, {"", "", "", "", "", {}},
        {"Disk", "", "Unknown", "no name", "", {}},  // the empty result comes first
    };
    // clang-format on
    for (const auto& [from, assocClass, resultClass, role, resultRole, expected] : kCases)
        EXPECT_EQ(NamesOf(Class(from).Associators(assocClass, resultClass, role, resultRole)), expected)
            << from << " (" << assocClass << ", " << resultClass << ", " << role << ", " << resultRole << ')';
    EXPECT_EQ(StatusOf([&] { fLone.Associators("", "", "no name", ""); }), kyrStatusInvalidCIMName);
    EXPECT_EQ(StatusOf([&] { fDisk.Associators("", "", "", "no name"); }), kyrStatusInvalidCIMName);
}

TEST_F(AssociationsTest, InstanceFindsTheAssociationInstancesThatPointToIt) {
    TCIMInstance &s = Add(fSystem, "s"), &a = Add(fDisk, "a"), &b = Add(fDisk, "b"), &n = Add(fNVMe, "n");
    Tie("sa", fHosts, {{"Group", To(fSystem, "s")}, {"Part", To(fDisk, "a")}});
    Tie("sn", fSubHosts, {{"Group", To(fSystem, "s")}, {"Part", To(fNVMe, "n")}});
    Tie("goneb", fHosts, {{"Group", To(fSystem, "gone")}, {"Part", To(fDisk, "b")}});
    Tie("aa", fMirrors, {{"First", To(fDisk, "a")}, {"Second", To(fDisk, "a")}});
    // clang-format off
    const std::tuple<TCIMInstance&, const char*, const char*, TSorted> kCases[] = {
        {s, "", "", {"sa", "sn"}}, {a, "", "", {"aa", "sa"}}, {b, "", "", {"goneb"}}, {n, "", "", {"sn"}},
        {a, "hosts", "", {"sa"}}, {a, "", "pART", {"sa"}}, {a, "", "Second", {"aa"}}, {s, "", "Part", {}},
        {s, "Unknown", "", {}},
        {n, "", "Part", {}},  // the role points to the superclass
        {Add(fLone, "l"), "", "", {}},
    };
    // clang-format on
    for (const auto& [from, assocClass, role, expected] : kCases)
        EXPECT_EQ(Names(from.References(assocClass, role)), expected) << assocClass << ' ' << role;
}

TEST_F(AssociationsTest, InstanceFindsWhatStandsAtTheOtherEnds) {
    TCIMInstance &s = Add(fSystem, "s"), &a = Add(fDisk, "a"), &n = Add(fNVMe, "n");
    Tie("sa", fHosts, {{"Group", To(fSystem, "s")}, {"Part", To(fDisk, "a")}});
    Tie("sn", fSubHosts, {{"Group", To(fSystem, "s")}, {"Part", To(fNVMe, "n")}});
    Tie("gonea", fHosts, {{"Group", To(fSystem, "gone")}, {"Part", To(fDisk, "a")}});
    // clang-format off
    const std::tuple<TCIMInstance&, const char*, const char*, const char*, const char*, TSorted> kCases[] = {
        {s, "", "", "", "", {"a", "n"}}, {s, "SubHosts", "", "", "", {"n"}}, {s, "", "nvme", "", "", {"n"}},
        {s, "", "", "gROUP", "pART", {"a", "n"}}, {s, "", "System", "", "Part", {}}, {s, "", "", "", "Note", {}},
        {s, "", "", "", "None", {}}, {s, "", "Unknown", "no name", "", {}}, {s, "Unknown", "", "", "", {}},
        {s, "", "", "", "Group", {"s", "s"}},  // the own end by its role
        {n, "", "", "", "", {"s"}},  // the own end goes by the value's class
        {a, "", "", "", "", {"s"}}, {a, "", "", "Part", "", {"s"}},  // the system that is gone is passed over
    };
    // clang-format on
    for (const auto& [from, assocClass, resultClass, role, resultRole, expected] : kCases)
        EXPECT_EQ(Names(from.Associators(assocClass, resultClass, role, resultRole)), expected)
            << assocClass << ", " << resultClass << ", " << role << ", " << resultRole;
    EXPECT_EQ(StatusOf([&] { a.Associators("", "", "", "Group"); }), kyrStatusNotFound) << "not by its role";
    EXPECT_EQ(StatusOf([&] { s.Associators("Lone", "", "no name", ""); }), kyrStatusInvalidCIMName);
}

TEST_F(AssociationsTest, OwnEndOfAnInstanceIsTheFirstOfItsClass) {
    TCIMInstance &a = Add(fDisk, "a"), &b = Add(fDisk, "b");
    Tie("ba", fMirrors, {{"First", To(fDisk, "b")}, {"Second", To(fDisk, "a")}});
    EXPECT_EQ(Names(b.Associators("", "", "", "")), TSorted{"a"});
    EXPECT_EQ(Names(a.Associators("", "", "", "")), TSorted{"a"}) << "itself, and not the other one";
    EXPECT_EQ(Names(a.Associators("", "", "Second", "")), TSorted{"b"});
}

TEST_F(AssociationsTest, NullReferenceFailsTheCallThatMeetsIt) {
    TCIMClass& odd = fSchema.AddClass(
        "Odd", {{"Before", NullReferenceTo(fLone)}, KeyReference("Part", fDisk), {"Zone", NullReferenceTo(fLone)}},
        nullptr, {"ASSOCIATION"});
    TCIMInstance &a = Add(fDisk, "a"), &tie = Tie("odd", odd, {{"Part", To(fDisk, "a")}});
    EXPECT_EQ(StatusOf([&] { a.References("", ""); }), kyrStatusValueIsNULL);
    EXPECT_EQ(Names(a.References("", "Part")), TSorted{"odd"});
    EXPECT_EQ(StatusOf([&] { a.Associators("", "", "Part", ""); }), kyrStatusValueIsNULL);
    EXPECT_EQ(Names(a.Associators("", "Disk", "Part", "")), TSorted{}) << "NULLs of another class are not looked at";
    Add(fLone, "l");
    tie.SetPropertyValue("Before", To(fLone, "l"));
    EXPECT_EQ(Names(a.References("", "")), TSorted{"odd"}) << "the hit comes before the other NULL";
    EXPECT_EQ(Names(a.Associators("", "", "Part", "Before")), TSorted{"l"});
}

}  // namespace
