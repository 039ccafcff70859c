#include <functional>

#include "model/TContainerImpl.h"
#include "support/SchemaBuilder.h"

using Decl = TCIMQualifierDecl;

static_assert(Decl::eFlavorOverridable == 1 && Decl::eFlavorToSubclass == 2 && Decl::eFlavorTranslatable == 4);
static_assert(Decl::eScopeClass == 1 && Decl::eScopeAssociation == 2 && Decl::eScopeProperty == 4 &&
              Decl::eScopeReference == 8);

namespace {

constexpr Decl::EFlavor kNone{}, kOverridable = Decl::eFlavorOverridable, kToSubclass = Decl::eFlavorToSubclass,
                                 kTranslatable = Decl::eFlavorTranslatable;

using CIMNameTest = SchemaTest;
using TActions = std::vector<std::function<void()>>;

TEST_F(CIMNameTest, IsLowerCasedAndChecked) {
    for (const std::string name : {"", "_", "molta_disk2", "_9"}) EXPECT_EQ(TContainerImpl::NormalizeName(name), name);
    EXPECT_EQ(TContainerImpl::NormalizeName("MOLTA_Disk2"), "molta_disk2");
    for (const std::string name : {"9x", "a b", " a", "a ", "a.b", "A-b", "<root>", "a\n", "\xC3\xA4", "Gr\xF6\xDF"})
        EXPECT_EQ(Outcome([&] { TContainerImpl::NormalizeName(name); }),
                  "kyrStatusInvalidCIMName 0:CIM name '" + name + "' is invalid");
}

TEST_F(CIMNameTest, IsRefusedByEveryLookUp) {
    const std::string bad = "a b";
    const TCIMValue value(1u);
    TCIMClass cls(fContainer, bad, nullptr);
    Decl decl(fContainer, bad, value, {}, kNone);
    TCIMPropertyDecl property(bad, cls, value);
    TCIMQualifier qualifier(decl, value);
    TCIMInstance instance(&cls);
    // clang-format off
    const TActions kActions = {
        [&] { fContainer.FindClass(bad); }, [&] { fContainer.FindClass("<root>"); },
        [&] { fContainer.RemoveClass(cls); }, [&] { fContainer.AddClass(cls); },
        [&] { fContainer.FindQualifierDecl(bad); }, [&] { fContainer.GetRootClass()->References(bad, ""); },
        [&] { fContainer.RemoveQualifierDecl(decl); }, [&] { cls.FindPropertyDecl(bad); },
        [&] { cls.RemovePropertyDecl(property); }, [&] { cls.FindQualifier(bad); },
        [&] { property.AddQualifier(qualifier); }, [&] { property.RemoveQualifier(qualifier); },
        [&] { instance.FindProperty(bad); }, [&] { instance.SetProperty(TCIMProperty(property)); },
        [&] { (void)(decl == decl); }, [&] { (void)(decl < decl); }, [&] { (void)(property == property); },
        [&] { (void)(property < property); }, [&] { To(cls).AddKeyValue(bad, value); },
    };
    // clang-format on
    for (const auto& act : kActions) EXPECT_EQ(StatusOf(act), kyrStatusInvalidCIMName) << (&act - kActions.data());
}

using TCIMQualifierTest = SchemaTest;

TEST_F(TCIMQualifierTest, DeclarationStartsEmptyAndTakesWhatIsSet) {
    Decl decl(fContainer);
    EXPECT_EQ(decl.GetContainer(), &fContainer);
    EXPECT_EQ(std::tuple(decl.GetName(), TypeOf(decl), decl.GetScope(), decl.GetFlavor()),
              std::tuple("", CIM::eCIMNone, Decl::EScope{}, kNone));
    decl.SetValue(Null(CIM::eCIMString, 3));
    decl.SetFlavor(kToSubclass);
    decl.SetFlavor(kTranslatable);
    decl.UnsetFlavor(kToSubclass | kOverridable);
    EXPECT_EQ(decl.GetValue(), Null(CIM::eCIMString, 3));
    EXPECT_EQ(std::tuple(decl.IsArray(), decl.GetFlavor()), std::tuple(true, kTranslatable));
}

TEST_F(TCIMQualifierTest, IsComparedByTheNameOfItsDeclarationAlone) {
    const TCIMValue value(true);
    const Decl lower(fContainer, "key", value, Decl::eScopeClass, kOverridable),
        upper(fContainer, "KEY", "text", {}, kNone);
    const Decl last(fContainer, "Max", value, {}, kNone);
    EXPECT_EQ(Order(lower, upper), "==");
    EXPECT_EQ(Order(lower, last) + Order(upper, last), "<<");
    const TCIMQualifier yes(lower, value), no(upper, TCIMValue(false)), later(last, value);
    EXPECT_EQ(Order(yes, no), "==");
    EXPECT_EQ(Order(no, later), "<");
}

TEST_F(TCIMQualifierTest, TakesAfterItsDeclarationAndAnyChangeEndsItsPropagation) {
    const Decl decl(fContainer, "MaxLen", Null(CIM::eCIMUint32), {}, kToSubclass);
    TCIMQualifier original(decl, TCIMValue("text"));
    EXPECT_EQ(&original.GetDeclaration(), &decl);
    EXPECT_EQ(std::tuple(original.GetName(), original.GetPropagated()), std::tuple("MaxLen", false));
    original.SetPropagated(true);
    const std::pair<void (*)(TCIMQualifier&), unsigned int> kChanges[] = {
        {[](TCIMQualifier& q) { q.SetValue(TCIMValue(2u)); }, 2},
        {[](TCIMQualifier& q) { q.SetFlavor(kOverridable); }, 3},
        {[](TCIMQualifier& q) { q.UnsetFlavor(kToSubclass); }, 0},
        {[](TCIMQualifier& q) { q.SetPropagated(false); }, 2},
    };
    for (const auto& [change, flavor] : kChanges) {
        TCIMQualifier copy(original);
        EXPECT_TRUE(copy.GetPropagated());
        change(copy);
        EXPECT_EQ(std::tuple(copy.GetFlavor(), copy.GetPropagated()), std::tuple(flavor, false));
    }
    EXPECT_EQ(std::tuple(original.GetValue().ToString(10), original.GetPropagated()), std::tuple("text", true));
}

/// Classes and property declarations carry qualifiers by one rule: each test runs on both.
class QualifierCarrierTest : public SchemaTest, public testing::WithParamInterface<bool> {
protected:
    ICIMAllowQualifiers& Carrier() { return GetParam() ? static_cast<ICIMAllowQualifiers&>(fClass) : fProperty; }
    TCIMQualifier* Find(const std::string& name) {
        return GetParam() ? fClass.FindQualifier(name) : fProperty.FindQualifier(name);
    }
    TCIMQualifier& Attach(const TCIMValue& value, Decl::EFlavor flavor) {
        auto* qualifier = new TCIMQualifier(fDecl, value, flavor);
        Carrier().AddQualifier(*qualifier);
        return *qualifier;
    }

    Decl fDecl{fContainer, "MaxLen", Null(CIM::eCIMUint32), {}, kNone};
    Decl fOther{fContainer, "MAXLEN", Null(CIM::eCIMUint32), {}, kNone};
    TCIMClass fClass{fContainer, "C", nullptr};
    TCIMPropertyDecl fProperty{"P", fClass, Null(CIM::eCIMString)};
};
INSTANTIATE_TEST_SUITE_P(, QualifierCarrierTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "Class" : "Property"; });

TEST_P(QualifierCarrierTest, FlavorOfTheExistingOneDecidesOnReplacing) {
    const TCIMValue one(1u), two(2u);
    enum EFate { eReplaces, eStaysOut, eRefused };
    // The existing one's flavor, what it loses of it, and the added one.
    const std::tuple<const char*, Decl::EFlavor, Decl::EFlavor, Decl::EFlavor, TCIMValue, EFate> kCases[] = {
        {"overridable, other value", kOverridable, kNone, kOverridable, two, eReplaces},
        {"overridable, same in all", kOverridable, kNone, kOverridable, one, eReplaces},
        {"overridable by one that is not", kOverridable, kNone, kNone, two, eReplaces},
        {"fixed, same in all", kNone, kNone, kNone, one, eStaysOut},
        {"fixed, other value", kNone, kNone, kNone, two, eRefused},
        {"fixed, by an overridable one", kNone, kNone, kOverridable, one, eRefused},
        {"fixed, another bit", kToSubclass, kNone, kTranslatable | kToSubclass, one, eRefused},
        {"fixed, NULL", kNone, kNone, kNone, Null(CIM::eCIMUint32), eRefused},
        {"fixed, other type", kNone, kNone, kNone, TCIMValue(1), eRefused},
        {"not overridable any more", kOverridable, kOverridable, kNone, two, eRefused},
    };
    for (const auto& [what, flavor, unset, addedFlavor, value, fate] : kCases) {
        SCOPED_TRACE(what);
        TCIMQualifier& existing = Attach(one, flavor);
        existing.UnsetFlavor(unset);
        existing.SetPropagated(true);
        Carrier().AddQualifier(existing);  // which is attached already and changes nothing
        EXPECT_THAT(Carrier().EnumerateQualifiers(), ElementsAre(&existing));
        const auto watch = Watch(existing);
        auto added = std::make_unique<TCIMQualifier>(fOther, value, addedFlavor);
        const std::string outcome = Outcome([&] { Carrier().AddQualifier(*added); });
        EXPECT_EQ(outcome, fate == eRefused ? "kyrStatusNotOverridable" : "");
        EXPECT_EQ(watch.expired(), fate == eReplaces);
        EXPECT_EQ(Find("maxlen"), fate == eReplaces ? added.release() : &existing);
        EXPECT_EQ(Find("maxlen")->GetPropagated(), fate != eReplaces);
        Carrier().RemoveQualifier(*Find("maxlen"));
        EXPECT_TRUE(watch.expired());
    }
}

TEST_P(QualifierCarrierTest, FindsByNameInAnyCaseAndListsInOrder) {
    for (const char* name : {"Units", "Abstract", "description", "_x"}) fSchema.Qualify(Carrier(), name);
    EXPECT_THAT(NamesOf(Carrier().EnumerateQualifiers()), ElementsAre("_x", "Abstract", "description", "Units"));
    EXPECT_EQ(Find("uNITS"), Carrier().GetQualifier("units"));
    for (const char* name : {"Missing", ""}) {
        EXPECT_EQ(Find(name), nullptr);
        EXPECT_EQ(Outcome([&] { Carrier().GetQualifier(name); }), "kyrStatusNotFound");
    }
}

TEST_P(QualifierCarrierTest, RemovesByNameNotByIdentity) {
    const auto watch = Watch(Attach(TCIMValue(1u), kNone));
    TCIMQualifier sameName(fOther, TCIMValue(2u));
    Carrier().RemoveQualifier(sameName);
    EXPECT_TRUE(watch.expired());
    EXPECT_THAT(Carrier().EnumerateQualifiers(), IsEmpty());
    EXPECT_EQ(Outcome([&] { Carrier().RemoveQualifier(sameName); }), "kyrStatusNotFound");
}

}  // namespace
