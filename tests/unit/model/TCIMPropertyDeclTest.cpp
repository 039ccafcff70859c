#include "support/SchemaBuilder.h"

namespace {

class TCIMPropertyDeclTest : public SchemaTest {
protected:
    TCIMClass fClass{fContainer, "C", nullptr};
};

TEST_F(TCIMPropertyDeclTest, HasTypeAndDefaultFromItsValueAndIsNotCopied) {
    TCIMPropertyDecl decl("Size", fClass, TCIMValue(7u));
    const TCIMValue& value = decl.GetValue();
    decl.SetValue(Null(CIM::eCIMString, 2));
    EXPECT_EQ(&value, &decl.GetValue());
    EXPECT_EQ(value, Null(CIM::eCIMString, 2));
    EXPECT_EQ(std::tuple(TypeOf(decl), decl.IsArray()), std::tuple(CIM::eCIMString | CIM::eCIMArrayFlag, true));
    EXPECT_EQ(Outcome([&] { TCIMPropertyDecl copy(decl, fClass); }), "kyrStatusNotImplemented");
}

TEST_F(TCIMPropertyDeclTest, ComparesByNameAlone) {
    const TCIMPropertyDecl lower("size", fClass, TCIMValue(1u)), upper("SIZE", fClass, TCIMValue("text"));
    const TCIMPropertyDecl first("Name", fClass, TCIMValue(1u));
    EXPECT_EQ(Order(lower, upper), "==");
    EXPECT_EQ(Order(first, lower) + Order(first, upper), "<<");
}

TEST_F(TCIMPropertyDeclTest, StaysUnderTheNameItWasAddedWithInEveryClassThatSharesIt) {
    TCIMPropertyDecl& decl = fSchema.AddProperty(fClass, {"Old", TCIMValue(1u)});
    const TCIMClass sub(fContainer, "Sub", &fClass);
    EXPECT_EQ(sub.GetPropertyDecl("old")->GetClass(), &fClass);
    decl.SetName("New");
    fSchema.Qualify(decl, "KEY");
    EXPECT_THAT(sub.EnumerateKeyNames(), ElementsAre("New"));
    EXPECT_EQ(fClass.FindPropertyDecl("old"), &decl);
    EXPECT_EQ(fClass.FindPropertyDecl("New"), nullptr);
    decl.RemoveQualifier(*decl.GetQualifier("KEY"));
    EXPECT_TRUE(sub.EnumerateKeyNames().empty());
}

}  // namespace
