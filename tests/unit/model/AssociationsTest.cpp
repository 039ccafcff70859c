#include <gmock/gmock.h>

#include <algorithm>

#include "support/SchemaBuilder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using TNames = std::vector<std::string>;

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
    TCIMInstance& Add(TCIMClass& cls, const char* id) { return fSchema.AddInstance(cls, {{"ID", TCIMValue(id)}}); }
    TCIMInstance& Tie(TCIMClass& cls, const TCIMReference& system, const TCIMReference& disk) {
        return fSchema.AddInstance(cls, {{"Group", system}, {"Part", disk}});
    }
    TCIMInstance& Mirror(const char* first, const char* second) {
        return fSchema.AddInstance(fMirrors, {{"First", To(fDisk, first)}, {"Second", To(fDisk, second)}});
    }
};

TEST_F(AssociationsTest, ClassFindsTheAssociationsThatPointToIt) {
    // clang-format off
    // Sorted: the order among associations is that of their addresses.
    const std::tuple<const char*, const char*, const char*, TNames> kCases[] = {
        {"System", "", "", {"Hosts", "SubHosts"}}, {"Disk", "", "", {"Hosts", "Mirrors", "SubHosts"}},
        {"NVMe", "", "", {"Hosts", "Mirrors", "SubHosts"}}, {"Lone", "", "", {}}, {"Hosts", "", "", {}}, {"", "", "", {}},
        {"Disk", "hOSTS", "", {"Hosts", "SubHosts"}}, {"Disk", "SubHosts", "", {"SubHosts"}}, {"Disk", "Lone", "", {}},
        {"Disk", "Unknown", "", {}}, {"Disk", "", "pART", {"Hosts", "SubHosts"}}, {"Disk", "", "Second", {"Mirrors"}},
        {"Disk", "", "Group", {}}, {"Disk", "", "Note", {}}, {"Disk", "", "None", {}}, {"NVMe", "", "Part", {}},
    };
    // clang-format on
    for (const auto& [from, assocClass, role, expected] : kCases) {
        TNames names = NamesOf(Class(from).References(assocClass, role));
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, expected) << from << " (" << assocClass << ", " << role << ')';
    }
    EXPECT_EQ(StatusOf([&] { fDisk.References("", "no name"); }), kyrStatusInvalidCIMName);
    EXPECT_NO_THROW(fLone.References("", "no name")) << "nothing to look the role up in";
}

TEST_F(AssociationsTest, ClassFindsWhatStandsAtTheOtherEnds) {
    // clang-format off
    // In walking order, which each case keeps within one association or one result.
    const std::tuple<const char*, const char*, const char*, const char*, const char*, TNames> kCases[] = {
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
    TCIMInstance &sa = Tie(fHosts, To(fSystem, "s"), To(fDisk, "a")), &aa = Mirror("a", "a"),
                 &sn = Tie(fSubHosts, To(fSystem, "s"), To(fNVMe, "n")),
                 &dangling = Tie(fHosts, To(fSystem, "gone"), To(fDisk, "b"));
    EXPECT_THAT(s.References("", ""), UnorderedElementsAre(&sa, &sn));
    EXPECT_THAT(a.References("", ""), UnorderedElementsAre(&sa, &aa)) << "each once";
    EXPECT_THAT(b.References("", ""), ElementsAre(&dangling));
    EXPECT_THAT(n.References("", ""), ElementsAre(&sn));
    EXPECT_THAT(a.References("hosts", ""), ElementsAre(&sa));
    EXPECT_THAT(a.References("", "pART"), ElementsAre(&sa));
    EXPECT_THAT(a.References("", "Second"), ElementsAre(&aa));
    EXPECT_THAT(n.References("", "Part"), IsEmpty()) << "the role points to the superclass";
    EXPECT_THAT(s.References("", "Part"), IsEmpty());
    EXPECT_THAT(s.References("Unknown", ""), IsEmpty());
    EXPECT_THAT(Add(fLone, "l").References("", ""), IsEmpty());
}

TEST_F(AssociationsTest, InstanceFindsWhatStandsAtTheOtherEnds) {
    TCIMInstance &s = Add(fSystem, "s"), &a = Add(fDisk, "a"), &n = Add(fNVMe, "n");
    Tie(fHosts, To(fSystem, "s"), To(fDisk, "a"));
    Tie(fSubHosts, To(fSystem, "s"), To(fNVMe, "n"));
    Tie(fHosts, To(fSystem, "gone"), To(fDisk, "a"));
    EXPECT_THAT(s.Associators("", "", "", ""), UnorderedElementsAre(&a, &n));
    EXPECT_THAT(s.Associators("SubHosts", "", "", ""), ElementsAre(&n));
    EXPECT_THAT(s.Associators("", "nvme", "", ""), ElementsAre(&n));
    EXPECT_THAT(s.Associators("", "", "gROUP", "pART"), UnorderedElementsAre(&a, &n));
    EXPECT_THAT(s.Associators("", "", "", "Group"), UnorderedElementsAre(&s, &s)) << "the own end by its role";
    EXPECT_THAT(s.Associators("", "System", "", "Part"), IsEmpty());
    EXPECT_THAT(s.Associators("", "", "", "Note"), IsEmpty());
    EXPECT_THAT(s.Associators("", "", "", "None"), IsEmpty());
    EXPECT_THAT(n.Associators("", "", "", ""), ElementsAre(&s)) << "the own end goes by the value's class";
    EXPECT_THAT(a.Associators("", "", "", ""), ElementsAre(&s)) << "the system that is gone is passed over";
    EXPECT_THAT(a.Associators("", "", "Part", ""), ElementsAre(&s));
    EXPECT_EQ(StatusOf([&] { a.Associators("", "", "", "Group"); }), kyrStatusNotFound) << "but not by its role";
    EXPECT_THAT(s.Associators("", "Unknown", "no name", ""), IsEmpty());
    EXPECT_THAT(s.Associators("Unknown", "", "", ""), IsEmpty());
    EXPECT_EQ(StatusOf([&] { s.Associators("Lone", "", "no name", ""); }), kyrStatusInvalidCIMName);
}

TEST_F(AssociationsTest, OwnEndOfAnInstanceIsTheFirstOfItsClass) {
    TCIMInstance &a = Add(fDisk, "a"), &b = Add(fDisk, "b");
    Mirror("b", "a");
    EXPECT_THAT(b.Associators("", "", "", ""), ElementsAre(&a));
    EXPECT_THAT(a.Associators("", "", "", ""), ElementsAre(&a)) << "itself, and not the other one";
    EXPECT_THAT(a.Associators("", "", "Second", ""), ElementsAre(&b));
}

TEST_F(AssociationsTest, NullReferenceFailsTheCallThatMeetsIt) {
    TCIMClass& odd = fSchema.AddClass(
        "Odd", {{"Before", NullReferenceTo(fLone)}, KeyReference("Part", fDisk), {"Zone", NullReferenceTo(fLone)}},
        nullptr, {"ASSOCIATION"});
    TCIMInstance &a = Add(fDisk, "a"), &l = Add(fLone, "l");
    TCIMInstance& tie = fSchema.AddInstance(odd, {{"Part", To(fDisk, "a")}});
    EXPECT_EQ(StatusOf([&] { a.References("", ""); }), kyrStatusValueIsNULL);
    EXPECT_THAT(a.References("", "Part"), ElementsAre(&tie));
    EXPECT_EQ(StatusOf([&] { a.Associators("", "", "Part", ""); }), kyrStatusValueIsNULL);
    EXPECT_THAT(a.Associators("", "Disk", "Part", ""), IsEmpty()) << "NULLs of another class are not looked at";
    tie.SetPropertyValue("Before", To(fLone, "l"));
    EXPECT_THAT(a.References("", ""), ElementsAre(&tie)) << "the hit comes before the other NULL";
    EXPECT_THAT(a.Associators("", "", "Part", "Before"), ElementsAre(&l));
}

}  // namespace
