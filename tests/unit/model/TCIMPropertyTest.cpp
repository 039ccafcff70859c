#include "support/SchemaBuilder.h"

namespace {

/// Declarations outside any class: Size (uint16, default 5), and Link, which references Base; Sub stands below Base.
class TCIMPropertyTest : public SchemaTest {
protected:
    static TCIMValue Uint16(unsigned short value) { return TCIMValue(value); }
    /// Declaration, value and earlier value; "*" behind one that is the property's own.
    static std::string Told(const TCIMProperty& property) {
        return property.GetName() + "=" + TextOf(property.GetValue()) + (property.GetPropagated() ? " " : "* ") +
               TextOf(property.GetPrevValue()) + (property.IsPrevValueDifferent() ? "*" : "");
    }

    TCIMClass& fBase = fSchema.AddClass("Base", {Key("ID")});
    TCIMClass& fSub = fSchema.AddClass("Sub", {}, &fBase);
    TCIMClass& fOther = fSchema.AddClass("Other", {Key("ID")});
    TCIMPropertyDecl fSize{"Size", fBase, Uint16(5)};
    TCIMPropertyDecl fLink{"Link", fBase, NullReferenceTo(fBase)};
};

TEST_F(TCIMPropertyTest, FallsBackOnItsDeclaration) {
    TCIMProperty property(fSize);
    EXPECT_EQ(std::tuple(TypeOf(property), property.IsArray()), std::tuple(CIM::eCIMUint16, false));
    fSize.SetValue(Uint16(6));
    EXPECT_EQ(Told(property), "Size=6 6");
    property.SetValue(Null(CIM::eCIMUint16));
    EXPECT_EQ(Told(property), "Size=NULL* NULL");
    property.SetValue(Uint16(7));
    EXPECT_EQ(Told(property), "Size=7* 7");
}

TEST_F(TCIMPropertyTest, KeepsAnEarlierValueEvenAnEqualOrAbsentOne) {
    TCIMProperty property(fSize, Uint16(7));
    for (const TCIMValue& earlier : {Uint16(7), Uint16(8), Null(CIM::eCIMString), TCIMValue()}) {
        earlier.GetType() == CIM::eCIMNone ? property.SetPrevValue() : property.SetPrevValue(earlier);
        EXPECT_TRUE(property.IsPrevValueDifferent());
        EXPECT_EQ(property.GetPrevValue(), earlier);
        EXPECT_EQ(property.GetValue(), Uint16(7));
    }
}

TEST_F(TCIMPropertyTest, TakesOnlyTheDeclaredTypeAndClass) {
    const TCIMPropertyDecl array("Sizes", fBase, Null(CIM::eCIMUint16, 1)),
        open("Open", fBase, Null(CIM::eCIMReference));
    const TCIMPropertyDecl links("Links", fBase, Null(CIM::eCIMReference, 1));
    const std::string type = ": decl is type uint16 but value is type ",
                      cls = ": decl references type Base but value references ";
    // The complaint is what follows the operation's name; empty: taken.
    // clang-format off
    const std::tuple<const TCIMPropertyDecl&, TCIMValue, std::string> kCases[] = {
        {fSize, Uint16(1), ""}, {fSize, Null(CIM::eCIMUint16), ""}, {fSize, TCIMValue(5u), type + "uint32"},
        {fSize, Null(CIM::eCIMUint16, 1), type + "uint16"}, {fSize, TCIMValue(), type},
        {array, Uint16(1), type + "uint16"}, {fLink, To(fBase), ""}, {fLink, To(fSub), ""},
        {fLink, NullReferenceTo(fSub), ""}, {fLink, To(fOther), cls + "Other"},
        {fLink, NullReferenceTo(fOther), cls + "Other"}, {fLink, Null(CIM::eCIMReference), cls},
        {open, To(fBase), ": decl references type  but value references Base"},
        {links, TCIMValue(CIM::eCIMReference, 1, {To(fOther)}), ""},
    };
    // clang-format on
    const std::string refused = "kyrStatusTypeMismatch 0:";
    for (const auto& [decl, value, complaint] : kCases) {
        SCOPED_TRACE(decl.GetName() + complaint);
        const bool taken = complaint.empty(), takenEarlier = taken || value.IsNull();
        TCIMProperty property(decl);
        const std::string outcome = Outcome([&, &v = value] { property.SetValue(v); }),
                          made = Outcome([&d = decl, &v = value] { TCIMProperty fresh(d, v); }),
                          earlier = Outcome([&, &v = value] { property.SetPrevValue(v); });
        EXPECT_EQ(outcome, taken ? "" : refused + "SetValue" + complaint);
        EXPECT_EQ(made, outcome);
        EXPECT_EQ(earlier, takenEarlier ? "" : refused + "SetPrevValue" + complaint);
        EXPECT_EQ(property.GetPropagated(), !taken);
        EXPECT_EQ(property.IsPrevValueDifferent(), takenEarlier);
    }
}

TEST_F(TCIMPropertyTest, StaysAsItWasWhenAValueIsRefused) {
    TCIMProperty property(fSize, Uint16(1)), target(fLink, To(fSub));
    property.SetPrevValue(Uint16(2));
    EXPECT_EQ(StatusOf([&] { property.SetValue(TCIMValue("x")); }), kyrStatusTypeMismatch);
    EXPECT_EQ(StatusOf([&] { property.SetPrevValue(TCIMValue("x")); }), kyrStatusTypeMismatch);
    EXPECT_EQ(Told(property), "Size=1* 2*");
    fSize.SetValue(TCIMValue("now a string"));  // so that the value cannot be copied any more
    EXPECT_EQ(StatusOf([&] { target = property; }), kyrStatusTypeMismatch);
    TCIMProperty& same = property;
    EXPECT_NO_THROW(property = same);
    EXPECT_EQ(Told(target), "Link=Sub* Sub");
}

TEST_F(TCIMPropertyTest, CopiesHaveABodyOfTheirOwn) {
    TCIMProperty original(fSize, Uint16(1)), bare{TCIMProperty(fSize)}, assigned(fLink);
    original.SetPrevValue();
    const TCIMProperty copy(original);
    assigned = original;
    original.SetValue(Uint16(9));
    original.SetPrevValue(Uint16(9));
    EXPECT_EQ(Told(copy) + ", " + Told(assigned) + ", " + Told(bare), "Size=1* NULL*, Size=1* NULL*, Size=5 5");
}

TEST_F(TCIMPropertyTest, ComparesDeclarationsAndOwnValues) {
    const TCIMPropertyDecl otherCase("SIZE", fSub, Uint16(0)), later("Zone", fBase, Uint16(5));
    const TCIMProperty one(fSize, Uint16(1)), same(otherCase, Uint16(1)), five(fSize, Uint16(5)), bare(fSize);
    const TCIMProperty otherBare(otherCase), zone(later, Uint16(0)), bareZone(later);
    TCIMProperty earlier(one);
    earlier.SetPrevValue(Uint16(3));
    const std::tuple<const char*, const TCIMProperty&, const TCIMProperty&, const char*> kCases[] = {
        {"apart in the case of the name", one, same, "=="},
        {"apart in the earlier value", one, earlier, "=="},
        {"values", one, five, "<"},
        {"names before values", five, zone, "<"},
        {"an absent value is not the default", bare, five, "<"},
        {"both absent, defaults apart", bare, otherBare, "=="},
        {"both absent, names apart", bare, bareZone, "<"},
    };
    for (const auto& [what, left, right, order] : kCases) EXPECT_EQ(Order(left, right), order) << what;
}

}  // namespace
