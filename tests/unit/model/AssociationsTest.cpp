#include <map>
#include <memory>
#include <random>
#include <set>

#include "model/TCIMInstanceImpl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TCIMReferenceValueImpl.h"
#include "support/OddLocale.h"
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

TEST_F(AssociationsTest, InstanceFindsAReferenceThatTookTheDefault) {
    TCIMInstance& b = (Add(fDisk, "a"), Add(fDisk, "b"));
    TCIMClass& tied =
        fSchema.AddClass("Tied", {Key("ID"), {"Part", TCIMValue(To(fDisk, "b"))}}, nullptr, {"ASSOCIATION"});
    TCIMInstance &own = Tie("own", tied, {{"ID", "1"}, {"Part", To(fDisk, "a")}}),
                 &none = Tie("none", tied, {{"ID", "2"}});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Names(b.References("", "")), TSorted{"none"});
    *own.GetProperty("Part") = *none.GetProperty("Part");
    EXPECT_EQ(Names(b.References("", "")), (TSorted{"none", "own"}));
}

/// A container that the same numbers change in the same way as another one.
class TTwin {
public:
    struct TChange {
        unsigned int kind, first, second, third;
    };

    void Apply(const TChange& change) {
        const auto [kind, first, second, third] = change;
        TCIMInstance* const link = fLinks.empty() ? nullptr : fLinks[first % fLinks.size()];
        if (kind < 3) return Add(fDisks, fSchema.NewInstance(fDisk, {{"ID", Id(first)}}).release());
        if (kind < 6 || link == nullptr) return AddLink(first, second, third);
        if (kind == 6) return (void)StatusOf([&] { link->SetPropertyValue("Part", ValueTo(change.second)); });
        const char* const end = second % 2 == 0 ? "Group" : "Part";
        if (kind == 7) return link->SetProperty(*fLinks[second % fLinks.size()]->GetProperty(end));
        if (kind == 8) return fLink.GetPropertyDecl("Group")->SetValue(ValueTo(second));
        if (kind == 9) return link->AddToContainer();
        if (kind == 10) return link->GetClass()->RemoveInstance(*link);
        if (!fDisks.empty()) fDisk.RemoveInstance(*fDisks[first % fDisks.size()]);
    }

    const TCIMInstance* Disk(unsigned int number) const {
        return fDisks.empty() ? nullptr : fDisks[number % fDisks.size()];
    }
    std::string NumbersOf(const std::vector<TCIMInstance*>& links) const {
        std::string text;
        for (const TCIMInstance* link : links)
            text += std::to_string(std::find(fLinks.begin(), fLinks.end(), link) - fLinks.begin()) + ' ';
        return text;
    }

private:
    static TCIMValue Id(unsigned int number) { return TCIMValue(std::to_string(number % 6)); }
    TCIMValue ValueTo(unsigned int number) {
        if (number % 20 == 0) return NullReferenceTo(fDisk);
        if (number % 9 == 1) return TCIMValue(To(fDisk));
        return TCIMValue(To(fDisk, std::to_string(number % 6).c_str()));
    }
    void AddLink(unsigned int first, unsigned int second, unsigned int third) {
        std::unique_ptr<TCIMInstance> link = fSchema.NewInstance(third % 3 == 0 ? fMirror : fLink, {{"ID", Id(first)}});
        if (third % 7 != 0) link->SetPropertyValue("Group", ValueTo(second));
        link->SetPropertyValue("Part", ValueTo(third));
        Add(fLinks, link.release());
    }
    /// Keeps it alive beyond its removal, so that no other one gets its address.
    void Add(std::vector<TCIMInstance*>& list, TCIMInstance* instance) {
        instance->AddToContainer();
        list.push_back(instance);
        fOwners.push_back(TCIMInstanceImpl::Of(*instance).Adopt());
    }

    /// Makes instances of a host's own class.
    struct THost : TContainer {
        struct TTagged : TCIMInstance {
            using TCIMInstance::TCIMInstance;
            std::string fTag = "the host's";
        };
        TCIMInstance* AllocateInstance(TCIMClass* cls) const override { return new TTagged(cls); }
    };

    THost fContainer;
    SchemaBuilder fSchema{fContainer};
    TCIMClass& fDisk = fSchema.AddClass("Disk", {Key("ID")});
    TCIMClass& fLink =
        fSchema.AddClass("Link", {Key("ID"), {"Group", NullReferenceTo(fDisk)}, {"Part", NullReferenceTo(fDisk)}},
                         nullptr, {"ASSOCIATION"});
    TCIMClass& fMirror =
        fSchema.AddClass("Mirror", {Key("ID"), {"Group", NullReferenceTo(fDisk)}, {"Part", NullReferenceTo(fDisk)}},
                         nullptr, {"ASSOCIATION"});
    std::vector<boost::shared_ptr<TCIMInstance>> fOwners;
    std::vector<TCIMInstance*> fDisks, fLinks;
};

bool RefersTo(const TCIMProperty& property, const TCIMInstance& target) {
    const TCIMValue& value = property.GetBody()->Value();
    if (!value.IsReference()) return false;
    if (value.IsNull()) throw TKYRException(kyrStatusValueIsNULL);
    return TCIMReferenceImpl::Of(TCIMReferenceValueImpl::ReferenceOf(value)).FindCIMElement() == &target;
}

bool RefersTo(const TCIMInstance& link, const TCIMInstance& target, const std::string& role) {
    if (!role.empty()) return RefersTo(*link.GetProperty(role), target);
    for (const TCIMProperty* property : link.EnumerateProperties())
        if (RefersTo(*property, target)) return true;
    return false;
}

/// References by a look at every instance.
std::vector<TCIMInstance*> Scan(const TCIMInstance& target, const std::string& assocClass, const std::string& role) {
    std::vector<TCIMInstance*> found;
    for (const TCIMClass* association : target.GetClass()->References(assocClass, role))
        for (TCIMInstance* link : association->EnumerateInstances(false))
            if (RefersTo(*link, target, role)) found.push_back(link);
    return found;
}

TEST_F(AssociationsTest, InstanceFindsWhatALookAtEveryInstanceFinds) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        const auto number = [&] { return static_cast<unsigned int>(random() % 1000); };
        TTwin found, scanned;
        for (int i = 0; i < 60; ++i) {
            const TTwin::TChange change = {number() % (seed % 2 == 0 ? 12 : 7), number(), number(), number()};
            found.Apply(change);
            scanned.Apply(change);
            const std::unique_ptr<TOddLocale> locale(number() % 3 == 0 ? new TOddLocale : nullptr);
            for (int walk = 0; walk < 4; ++walk) {
                const unsigned int disk = number();
                const std::string assocClass = number() % 2 == 0 ? "Link" : "Mirror",
                                  role = number() % 3 == 0 ? "Part" : "";
                if (found.Disk(disk) == nullptr) continue;
                std::string numbers, expected;
                const std::string outcome =
                    Outcome([&] { numbers = found.NumbersOf(found.Disk(disk)->References(assocClass, role)); });
                const std::string expectedOutcome =
                    Outcome([&] { expected = scanned.NumbersOf(Scan(*scanned.Disk(disk), assocClass, role)); });
                ASSERT_EQ(numbers + outcome, expected + expectedOutcome) << seed << ' ' << i;
            }
        }
    }
}

}  // namespace
