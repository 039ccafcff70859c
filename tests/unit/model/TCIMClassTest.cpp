#include <algorithm>

#include "model/TCIMClassImpl.h"
#include "support/SchemaBuilder.h"

namespace {

class TCIMClassTest : public SchemaTest {
protected:
    TCIMClass& fRoot = *fContainer.GetRootClass();
    TCIMClass& fSuper = fSchema.AddClass("Super", {Key("ID")});
};

TEST_F(TCIMClassTest, WithoutASuperclassStandsBelowTheRootAndInheritsNothing) {
    fSchema.Qualify(fRoot, "Display");
    fSchema.AddProperty(fRoot, {"Caption", TCIMValue("x")});
    const TCIMClass bare(fContainer, "C", nullptr), below(fContainer, "N", &fRoot);
    EXPECT_EQ(bare.GetSuperClass(), &fRoot);
    EXPECT_EQ(std::tuple(bare.IsRootClass(), below.IsRootClass()), std::tuple(true, true));
    EXPECT_THAT(NamesOf(bare.EnumeratePropertyDecls()), IsEmpty());
    EXPECT_THAT(NamesOf(bare.EnumerateQualifiers()), IsEmpty());
    EXPECT_THAT(NamesOf(below.EnumeratePropertyDecls()), ElementsAre("Caption"));
    EXPECT_THAT(NamesOf(below.EnumerateQualifiers()), ElementsAre("Display"));
}

TEST_F(TCIMClassTest, TakesWhatItsSuperclassHasWhenItIsMade) {
    constexpr SchemaBuilder::EFlavor kFixed{}, kToSubclass = TCIMQualifierDecl::eFlavorToSubclass;
    TCIMQualifier& down = fSchema.Qualify(fSuper, "KEY", TCIMValue("d"), kToSubclass);
    fSchema.Qualify(fSuper, "Stays", TCIMValue(true), kFixed);
    fSchema.Qualify(fSuper, "Stopped").UnsetFlavor(kToSubclass);
    fSchema.Qualify(fSuper, "Started", TCIMValue(true), kFixed).SetFlavor(kToSubclass);
    TCIMClass sub(fContainer, "Sub", &fSuper);
    fSchema.AddProperty(fSuper, {"Late", TCIMValue(1u)});
    fSchema.Qualify(fSuper, "Late");
    EXPECT_THAT(sub.EnumeratePropertyDecls(), ElementsAre(fSuper.GetPropertyDecl("ID")));
    EXPECT_THAT(NamesOf(sub.EnumerateQualifiers()), ElementsAre("KEY", "Started"));
    TCIMQualifier* copy = sub.GetQualifier("key");
    EXPECT_NE(copy, &down);
    EXPECT_EQ(std::tuple(copy->GetValue().ToString(10), copy->GetFlavor()), std::tuple("d", kToSubclass));
    EXPECT_EQ(TCIMClassImpl::Of(sub).Qualifiers().GetKey(), copy);
    EXPECT_EQ(std::tuple(copy->GetPropagated(), down.GetPropagated()), std::tuple(true, false));
}

TEST_F(TCIMClassTest, NeedsAKeyUnlessItIsAbstract) {
    const TCIMValue yes(true), no(false), null = Null(CIM::eCIMBoolean), text("true");
    const std::string keyless = "kyrStatusInvalidClass 0:Class Case has no keys", mismatch = "kyrStatusTypeMismatch";
    // clang-format off
    // The values of KEY at its properties, and of ABSTRACT.
    const std::tuple<std::vector<TCIMValue>, std::vector<TCIMValue>, std::string> kCases[] = {
        {{}, {}, keyless}, {{yes}, {}, ""}, {{no}, {}, keyless}, {{null}, {}, keyless}, {{no, null, yes}, {}, ""},
        {{text, yes}, {}, mismatch}, {{yes, text}, {}, ""}, {{text}, {yes}, ""}, {{}, {no}, keyless},
        {{}, {null}, keyless}, {{yes}, {text}, mismatch},
    };
    // clang-format on
    for (const auto& [keys, abstracts, outcome] : kCases) {
        TCIMClass cls(fContainer, "Case", nullptr);
        std::string name = "p";
        for (const TCIMValue& value : keys)
            fSchema.Qualify(fSchema.AddProperty(cls, {name += "p", TCIMValue(1u)}), "KEY", value);
        for (const TCIMValue& value : abstracts) fSchema.Qualify(cls, "ABSTRACT", value);
        EXPECT_EQ(Outcome([&] { cls.Validate(); }), outcome) << keys.size() << " keys";
    }
    EXPECT_NO_THROW(TCIMClass(fContainer, "Inheriting", &fSuper).Validate());
}

TEST_F(TCIMClassTest, IsAbstractOrAssociationByItsOwnQualifierAlone) {
    for (const std::string name : {"ABSTRACT", "association"}) {
        const auto is = [&](const TCIMClass& c) { return name == "ABSTRACT" ? c.IsAbstract() : c.IsAssociation(); };
        TCIMClass cls(fContainer, "C", nullptr);
        TCIMQualifier& qualifier = fSchema.Qualify(cls, name, TCIMValue(false));
        EXPECT_FALSE(is(cls));
        qualifier.SetValue(TCIMValue(true));
        EXPECT_EQ(std::tuple(is(cls), is(TCIMClass(fContainer, "Sub", &cls))), std::tuple(true, true));
        qualifier.UnsetFlavor(TCIMQualifierDecl::eFlavorToSubclass);
        EXPECT_FALSE(is(TCIMClass(fContainer, "Sub", &cls)));
        qualifier.SetValue(Null(CIM::eCIMString));
        EXPECT_FALSE(is(cls));
        qualifier.SetValue(TCIMValue(1u));
        EXPECT_EQ(Outcome([&] { is(cls); }), "kyrStatusTypeMismatch");
    }
}

TEST_F(TCIMClassTest, JoinsContainerAndSuperclassOnlyWhenAdded) {
    const TCIMClass* made = fSchema.NewClass("Sub", {}, &fSuper).release();
    EXPECT_EQ(fContainer.FindClass("Sub"), nullptr);
    EXPECT_THAT(fSuper.EnumerateSubClasses(true), IsEmpty());
    made->AddToContainer();
    EXPECT_EQ(fContainer.FindClass("sub"), made);
    { TCIMClass never(fContainer, "Never", &fSuper); }
    EXPECT_THAT(fSuper.EnumerateSubClasses(false), ElementsAre(made));
}

TEST_F(TCIMClassTest, ThatIsRefusedStaysWithTheCallerAndOutOfTheTree) {
    struct TChoosy : TCIMClass {
        using TCIMClass::TCIMClass;
        void Validate() const override { throw TKYRException(kyrStatusNotSupported); }
    };
    const TCIMClass& first = fSchema.AddClass("Sub", {}, &fSuper);
    fSchema.AddClass("Frame", {}, nullptr, {"ABSTRACT"});
    const std::string exists = "kyrStatusAlreadyExists 3:TContainer: class ";
    const std::pair<std::unique_ptr<TCIMClass>, std::string> kCases[] = {
        {fSchema.NewClass("SUB", {}, &fSuper), exists + "SUB already defined"},
        {fSchema.NewClass("frame", {}, nullptr, {"ABSTRACT"}), exists + "frame already defined"},
        {fSchema.NewClass("Sub"), "kyrStatusInvalidClass 0:Class Sub has no keys"},
        {fSchema.NewClass("Su.b", {}, &fSuper), "kyrStatusInvalidCIMName 0:CIM name 'Su.b' is invalid"},
        {std::make_unique<TChoosy>(fContainer, "Choosy", &fSuper), "kyrStatusNotSupported"},
    };
    for (const auto& [cls, outcome] : kCases) {
        const auto watch = Watch(*cls);
        EXPECT_EQ(Outcome([&, &made = *cls] { made.AddToContainer(); }), outcome);
        EXPECT_FALSE(watch.expired()) << outcome;
        EXPECT_THAT(fSuper.EnumerateSubClasses(true), ElementsAre(&first));
        EXPECT_EQ(fRoot.EnumerateSubClasses(false).size(), 2u) << outcome;
    }
}

TEST_F(TCIMClassTest, IsTheContainersOnceItIsInTheCatalogue) {
    TCIMClass* cls = fSchema.NewClass("Odd", {Key("ID")}).release();
    fSchema.Qualify(*cls, "ASSOCIATION", TCIMValue("text"));
    EXPECT_EQ(Outcome([&] { cls->AddToContainer(); }), "kyrStatusTypeMismatch");
    EXPECT_THAT(fRoot.EnumerateSubClasses(false), ElementsAre(&fSuper, fContainer.FindClass("Odd")));
}

TEST_F(TCIMClassTest, AssociationIsEnteredOnceAndOnlyWithTheMostGeneralClasses) {
    TCIMClass& mid = fSchema.AddClass("Mid", {}, &fSuper);
    TCIMClass& low = fSchema.AddClass("Low", {}, &mid);
    TCIMClass& side = fSchema.AddClass("Side", {Key("ID")});
    const PropertySketch lateEnd = KeyReference("Late", side), array = {"B", Null(CIM::eCIMReference, 1)};
    // The ends, and how often super, mid, low and side find it, a superclass's entry included.
    const std::tuple<const char*, std::vector<PropertySketch>, std::vector<long>> kCases[] = {
        {"Twice", {KeyReference("A", fSuper), KeyReference("B", fSuper)}, {1, 1, 1, 0}},
        {"Down", {KeyReference("A", fSuper), KeyReference("B", mid)}, {1, 1, 1, 0}},
        {"Up", {KeyReference("A", low), KeyReference("B", mid)}, {0, 1, 1, 0}},
        {"All", {KeyReference("A", low), lateEnd, KeyReference("C", fSuper), KeyReference("D", mid)}, {1, 1, 1, 1}},
        {"Across", {KeyReference("A", low), KeyReference("B", side)}, {0, 0, 1, 1}},
        {"Array", {KeyReference("A", side), array}, {0, 0, 0, 1}},
        {"Late", {Key("ID")}, {0, 0, 0, 0}},
    };
    for (const auto& [name, ends, expected] : kCases) {
        TCIMClass& link = fSchema.AddClass(name, ends, nullptr, {"ASSOCIATION"});
        if (link.GetName() == "Late") fSchema.AddProperty(link, lateEnd);
        std::vector<long> found;
        for (const TCIMClass* cls : {&fSuper, &mid, &low, &side}) {
            const std::vector<TCIMClass*> all = cls->References("", "");
            found.push_back(std::count(all.begin(), all.end(), &link));
        }
        EXPECT_EQ(found, expected) << name;
    }
}

TEST_F(TCIMClassTest, IsComparedByItsNameAsWrittenAlongTheWholeClimb) {
    const TCIMClass& sub = fSchema.AddClass("Sub", {}, &fSuper);
    TContainer elsewhere;
    const TCIMClass foreign(elsewhere, "Foreign", fContainer.FindClass("Sub")), same(elsewhere, "Super", nullptr);
    const TCIMClass otherCase(fContainer, "SUPER", nullptr);
    // clang-format off
    const std::tuple<const TCIMClass&, const TCIMClass&, bool> kCases[] = {
        {sub, sub, true}, {sub, fSuper, true}, {sub, same, true}, {sub, fRoot, true}, {fRoot, fRoot, true},
        {foreign, fSuper, true}, {sub, otherCase, false}, {fSuper, sub, false}, {fRoot, fSuper, false},
        {foreign, otherCase, false},  // the climb ends at the root of the other container
    };
    // clang-format on
    for (const auto& [cls, above, isBelow] : kCases)
        EXPECT_EQ(cls.IsSubclassOf(&above), isBelow) << cls.GetName() << " below " << above.GetName();
    EXPECT_EQ(Order(fSuper, same), "==");
    EXPECT_EQ(Order(otherCase, fSuper) + Order(otherCase, sub), "<<");
}

TEST_F(TCIMClassTest, ListsSubclassesInJoiningOrderAndDeepInPreOrder) {
    const auto add = [&](const char* name, TCIMClass& super) -> TCIMClass& {
        return fSchema.AddClass(name, {}, &super);
    };
    TCIMClass &z = add("Z", fSuper), &a = add("A", fSuper);
    add("A1", a);
    add("Z2x", add("Z2", z));
    add("Z1", z);
    EXPECT_THAT(NamesOf(fSuper.EnumerateSubClasses(false)), ElementsAre("Z", "A"));
    EXPECT_THAT(NamesOf(fRoot.EnumerateSubClasses(true)), ElementsAre("Super", "Z", "Z2", "Z2x", "Z1", "A", "A1"));
}

TEST_F(TCIMClassTest, ChainOfAnyLengthIsListed) {
    constexpr size_t kDepth = 100000;  // more than the stack has room for
    TCIMClass* cls = &fSchema.AddClass("C", {}, nullptr, {"ABSTRACT"});
    for (size_t i = 1; i < kDepth; ++i) cls = &fSchema.AddClass("C" + std::to_string(i), {}, cls);
    fSchema.AddInstance(*cls);
    EXPECT_EQ(fRoot.EnumerateSubClasses(true).size(), kDepth + 1);
    EXPECT_EQ(fRoot.EnumerateInstances(true).size(), 1u);
}

TEST_F(TCIMClassTest, FindsDeclarationsInAnyCaseAndListsThemInOrder) {
    TCIMClass& cls = fSchema.AddClass("Sub", {Key("zeta"), {"ALPHA2", TCIMValue(1u)}, Key("Alpha")}, &fSuper);
    fSchema.Qualify(*cls.GetPropertyDecl("ALPHA2"), "KEY", TCIMValue(false));
    EXPECT_THAT(NamesOf(cls.EnumeratePropertyDecls()), ElementsAre("Alpha", "ALPHA2", "ID", "zeta"));
    EXPECT_THAT(cls.EnumerateKeyNames(), ElementsAre("Alpha", "ID", "zeta"));
    EXPECT_EQ(cls.GetPropertyDecl("id"), fSuper.FindPropertyDecl("Id"));
    for (const char* name : {"None", ""}) {
        EXPECT_EQ(cls.FindPropertyDecl(name), nullptr);
        EXPECT_EQ(Outcome([&] { cls.GetPropertyDecl(name); }), "kyrStatusNotFound");
    }
}

TEST_F(TCIMClassTest, RemovesADeclarationFromItselfAlone) {
    TCIMPropertyDecl& decl = *fSuper.GetPropertyDecl("ID");
    const auto watch = Watch(decl);
    TCIMClass sub(fContainer, "Sub", &fSuper), other(fContainer, "Other", &fSuper);
    TCIMPropertyDecl sameName("id", sub, TCIMValue(1u));
    sub.RemovePropertyDecl(sameName);
    EXPECT_EQ(sub.FindPropertyDecl("ID"), nullptr);
    EXPECT_EQ(Outcome([&] { sub.RemovePropertyDecl(decl); }), "kyrStatusNotFound");
    fSuper.RemovePropertyDecl(decl);
    EXPECT_EQ(other.FindPropertyDecl("ID"), &decl);
    fSchema.AddProperty(other, {"ID", Null(CIM::eCIMString), {"OVERRIDE"}});
    EXPECT_TRUE(watch.expired()) << "the last share is gone";
}

}  // namespace
