#include "support/SchemaBuilder.h"

namespace {

/// Base has the key ID, and Size; Sub below it has Mine; Link is an association.
class OverridingTest : public SchemaTest {
protected:
    const SchemaBuilder::TNames kOverride = {"OVERRIDE"};
    TCIMClass& fBase = fSchema.AddClass("Base", {Key("ID"), {"Size", TCIMValue(1u)}});
    TCIMClass& fSub = fSchema.AddClass("Sub", {{"Mine", TCIMValue(1u)}}, &fBase);
    TCIMClass& fLink = fSchema.AddClass("Link", {KeyReference("End", fBase)}, nullptr, {"ASSOCIATION"});
};

TEST_F(OverridingTest, RefusesWithTheStatusOfTheFirstTestThatFails) {
    const TCIMValue number(5u), array = Null(CIM::eCIMUint32, 1), link = NullReferenceTo(fBase);
    const std::string reference = "kyrStatusNotAssociation 0:Attempt to add reference property ",
                      badName = "kyrStatusInvalidCIMName 0:CIM name 'a b' is invalid",
                      override = "0:Attempt to override property ", exists = "kyrStatusAlreadyExists ",
                      notFound = "kyrStatusNotFound ", mismatch = "kyrStatusTypeMismatch ";
    // clang-format off
    const std::pair<PropertySketch, std::string> kCases[] = {
        {{"End", link}, reference + "End to non-association class Sub"}, {{"a b", number}, badName},
        {{"a b", link}, reference + "a b to non-association class Sub"}, {{"a b", number, kOverride}, badName},
        {{"ID", link, kOverride}, reference + "ID to non-association class Sub"},
        {{"None", number, kOverride}, notFound + override + "None in class Sub: property doesn't exist in base class"},
        {{"SIZE", array, kOverride}, mismatch + override + "SIZE in class Sub: different types"},
        {{"Mine", array, kOverride}, mismatch + override + "Mine in class Sub: different types"},
        {{"mine", number, kOverride}, exists + override + "mine in class Sub: original was defined in this class"},
        {{"sIZE", number}, exists + "0:Attempt to add property sIZE to class Sub: already exists"},
        {{"Mine", array}, exists + "0:Attempt to add property Mine to class Sub: already exists"},
    };
    // clang-format on
    EXPECT_NO_THROW(fSchema.AddProperty(fSub, {"Ends", Null(CIM::eCIMReference, 1)}))
        << "an array wants no association";
    const std::vector<const TCIMPropertyDecl*> before = fSub.EnumeratePropertyDecls();
    for (const auto& [sketch, outcome] : kCases) {
        const std::unique_ptr<TCIMPropertyDecl> decl = fSchema.NewProperty(fSub, sketch);
        const auto watch = Watch(*decl);
        EXPECT_EQ(Outcome([&] { decl->AddToContainer(); }), outcome);
        EXPECT_FALSE(watch.expired()) << outcome;
        EXPECT_EQ(fSub.EnumeratePropertyDecls(), before) << outcome;
    }
}

TEST_F(OverridingTest, ReplacesInThisClassAlone) {
    TCIMClass& earlier = fSchema.AddClass("Earlier", {}, &fSub);
    TCIMPropertyDecl* old = fBase.GetPropertyDecl("Size");
    const TCIMPropertyDecl* decl = &fSchema.AddProperty(fSub, {"SIZE", TCIMValue(9u), kOverride});
    EXPECT_EQ(fSub.GetPropertyDecl("Size"), decl);
    EXPECT_EQ(decl->GetClass(), &fSub);
    for (const TCIMClass* cls : {&fBase, &earlier}) EXPECT_EQ(cls->GetPropertyDecl("Size"), old) << cls->GetName();
    EXPECT_EQ(TCIMClass(fContainer, "Later", &fSub).GetPropertyDecl("Size"), decl);
    EXPECT_THAT(NamesOf(fSub.EnumeratePropertyDecls()), ElementsAre("ID", "Mine", "SIZE"));
}

TEST_F(OverridingTest, GoesByThePresenceOfTheQualifier) {
    for (const TCIMValue& value : {TCIMValue(false), Null(CIM::eCIMBoolean), TCIMValue("Other")}) {
        TCIMClass cls(fContainer, "Any", &fBase);
        std::unique_ptr<TCIMPropertyDecl> decl = fSchema.NewProperty(cls, {"Size", TCIMValue(2u)});
        fSchema.Qualify(*decl, "override", value);
        cls.AddPropertyDecl(*decl);
        EXPECT_EQ(cls.GetPropertyDecl("Size"), decl.release());
    }
}

TEST_F(OverridingTest, TakesOverNothingNotEvenTheKey) {
    std::unique_ptr<TCIMClass> cls = fSchema.NewClass("Keyless", {{"ID", TCIMValue("x"), kOverride}}, &fBase);
    EXPECT_EQ(Outcome([&] { cls->AddToContainer(); }), "kyrStatusInvalidClass 0:Class Keyless has no keys");
    EXPECT_THAT(fBase.EnumerateKeyNames(), ElementsAre("ID"));
}

TEST_F(OverridingTest, ClassOfTheOriginalCountsByName) {
    // A declaration made for another class is no original of this one, wherever it stands.
    fSub.AddPropertyDecl(*fSchema.NewProperty(fBase, {"Guest", TCIMValue(1u)}).release());
    EXPECT_NO_THROW(fSchema.AddProperty(fSub, {"Guest", TCIMValue(2u), kOverride}));
    TCIMClass sameName(fContainer, "Base", &fBase);
    const PropertySketch size = {"Size", TCIMValue(2u), kOverride};
    EXPECT_EQ(StatusOf([&] { fSchema.AddProperty(sameName, size); }), kyrStatusAlreadyExists);
}

TEST_F(OverridingTest, RefusesTheDeclarationThatIsTheOriginalItself) {
    TCIMPropertyDecl& size = *fBase.GetPropertyDecl("Size");
    fSchema.Qualify(size, "OVERRIDE");
    EXPECT_EQ(Outcome([&] { fSub.AddPropertyDecl(size); }),
              "kyrStatusAlreadyExists 0:Attempt to add property Size to class Sub: already exists");
}

}  // namespace
