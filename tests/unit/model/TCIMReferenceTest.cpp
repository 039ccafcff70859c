#include "kyr/TCIMDateTime.h"
#include "support/SchemaBuilder.h"

namespace {

/// X has the keys a (string), B (uint32) and Link (a reference to Y), and Plain, no key; Y has the key ID.
class TCIMReferenceTest : public SchemaTest {
protected:
    using TBindings = std::map<const std::string, const TCIMValue>;

    TCIMClass& fY = fSchema.AddClass("Y", {Key("ID")});
    TCIMClass& fX = fSchema.AddClass(
        "X", {Key("a"), Key("B", Null(CIM::eCIMUint32)), {"Plain", Null(CIM::eCIMString)}, KeyReference("Link", fY)},
        nullptr, {"ASSOCIATION"});
};

TEST_F(TCIMReferenceTest, NeverReadsAPath) {
    const std::string tooEarly = "kyrStatusInvalidOpSequence 0:SetPath() called before container set";
    EXPECT_EQ(Outcome([&] { TCIMReference(nullptr).SetPath("Y"); }), tooEarly);
    EXPECT_EQ(Outcome([&] { TCIMReference(&fContainer).SetPath("Y"); }), "kyrStatusNotImplemented");
    EXPECT_EQ(Outcome([&] { TCIMReference made(&fContainer, "Y"); }), "kyrStatusNotImplemented");
}

TEST_F(TCIMReferenceTest, WithoutAClassHasNoClassNameOrPath) {
    TCIMReference reference(&fContainer);
    EXPECT_EQ(reference.GetCIMElement(), nullptr);
    reference.SetKeyBindings({{"ID", TCIMValue("a")}});
    const std::string noClass = "kyrStatusInvalidReference 0:GetClass() called before container set";
    EXPECT_EQ(Outcome([&] { reference.GetClassName(); }), noClass);
    EXPECT_EQ(Outcome([&] { reference.GetPath(); }), noClass);
    EXPECT_EQ(Outcome([&] { reference.GetCIMElement(); }), noClass);
}

TEST_F(TCIMReferenceTest, FindsItsClassByNameAndKeepsItFromTheFirstKeyUntilCleared) {
    TCIMReference named(&fContainer), reference = To(fY, "a");
    EXPECT_EQ(Outcome([&] { named.SetClassName("None"); }), "kyrStatusNotFound");
    named.SetClassName("y");
    EXPECT_EQ(named.GetClassName() + named.GetPath(), "YY");
    const std::string refused = "kyrStatusInvalidOpSequence 0:";
    EXPECT_EQ(Outcome([&] { reference.SetClass(fX); }), refused + "SetClass() called with keybindings filled in");
    EXPECT_EQ(Outcome([&] { reference.SetClassName("X"); }), refused + "SetClassName() called before container set");
    reference.SetContainer(&fContainer);
    EXPECT_EQ(Outcome([&] { reference.SetClassName("None"); }),
              refused + "SetClassName() called with keybindings filled in");
    reference.Clear();
    EXPECT_TRUE(reference.EnumerateKeyBindings().empty());
    EXPECT_EQ(StatusOf([&] { reference.GetClass(); }), kyrStatusInvalidReference);
    EXPECT_EQ(StatusOf([&] { reference.SetClassName("X"); }), kyrStatusInvalidOpSequence) << "no container either";
}

TEST_F(TCIMReferenceTest, BindsOnlyKeysOfTheDeclaredType) {
    const std::pair<const char*, TCIMValue> kNoKeys[] = {
        {"KeyFalse", TCIMValue(false)}, {"KeyNull", Null(CIM::eCIMBoolean)}, {"KeyText", TCIMValue("true")}};
    for (const auto& [name, key] : kNoKeys)
        fSchema.Qualify(fSchema.AddProperty(fX, {name, Null(CIM::eCIMString)}), "KEY", key);
    const TCIMValue text("t"), number(1u);
    const std::string noKey = "kyrStatusInvalidOpSequence 0:AddKeyValue() called with a non-key property ";
    const std::string type = "kyrStatusTypeMismatch 0:Declaration type: string Value type: ";
    // clang-format off
    const std::tuple<const char*, TCIMValue, std::string> kCases[] = {
        {"None", text, "kyrStatusNotFound"}, {"Plain", number, type + "uint32"}, {"pLAIN", text, noKey + "pLAIN"},
        {"a", Null(CIM::eCIMString, 1), type + "string"}, {"KeyFalse", text, noKey + "KeyFalse"},
        {"KeyNull", text, noKey + "KeyNull"}, {"KeyText", text, noKey + "KeyText"},
        {"a", TCIMValue(), "kyrStatusTypeMismatch"},  // the type has no name for the line
    };
    // clang-format on
    TCIMReference reference = To(fX);
    for (const auto& [name, value, outcome] : kCases)
        EXPECT_EQ(Outcome([&, n = name, &v = value] { reference.AddKeyValue(n, v); }), outcome);
    EXPECT_TRUE(reference.EnumerateKeyBindings().empty());
    EXPECT_EQ(Outcome([&] { TCIMReference(nullptr).AddKeyValue("a", text); }),
              "kyrStatusInvalidOpSequence 0:AddKeyValue() called before class set");
}

TEST_F(TCIMReferenceTest, FirstBindingOfAnExactNameStays) {
    TCIMReference reference = To(fX, "first", "a");
    reference.AddKeyValue("a", TCIMValue("second"));
    reference.AddKeyValue("A", TCIMValue("other"));
    reference.EnumerateKeyBindings().clear();  // a copy
    EXPECT_EQ(reference.GetPath(), "X.A=\"other\",a=\"first\"");
    reference.SetKeyBindings({{"not a name", TCIMValue(true)}});
    EXPECT_EQ(reference.GetPath(), "X.not a name=\"true\"");
}

TEST_F(TCIMReferenceTest, ACopyThatBindsAKeyLeavesTheOthersAlone) {
    TCIMReference first = To(fX, "1", "a"), second(first), third(To(fX));
    third = second;
    second.AddKeyValue("A", TCIMValue("2"));
    first.AddKeyValue("A", TCIMValue("3"));
    const TCIMReference fourth(first);
    first.SetKeyBindings({{"a", TCIMValue("4")}});
    const TCIMReference* const all[] = {&first, &second, &third, &fourth};
    const char* const paths[] = {"X.a=\"4\"", "X.A=\"2\",a=\"1\"", "X.a=\"1\"", "X.A=\"3\",a=\"1\""};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(all[i]->GetPath(), paths[i]);
}

TEST_F(TCIMReferenceTest, PrintsItsPathWithoutEscapingAndLeavesOutWhatHasNoText) {
    const TCIMValue text("t"), five(5u), null = Null(CIM::eCIMUint32);
    const std::pair<TBindings, const char*> kCases[] = {
        {{{"a", text}, {"B", five}}, "X.B=\"5\",a=\"t\""},
        {{{"a", TCIMValue("say \"no\", \\")}}, "X.a=\"say \"no\", \\\""},
        {{{"Link", To(fY, "1")}, {"a", TCIMValue("")}}, "X.Link=\"Y.ID=\"1\"\",a=\"\""},
        {{{"B", null}}, "X"},
        {{{"B", null}, {"a", text}}, "X.a=\"t\""},
        {{{"B", five}, {"a", null}}, "X.B=\"5\""},
        {{{"a", TCIMValue(TCIMDateTime())}}, "X"},
    };
    TCIMReference reference = To(fX);
    for (const auto& [bindings, path] : kCases) {
        reference.SetKeyBindings(bindings);
        EXPECT_EQ(reference.GetPath(), path);
    }
}

TEST_F(TCIMReferenceTest, WithoutKeysIsItsClassAndWithThemItsInstance) {
    EXPECT_EQ(To(fY).GetCIMElement(), &fY);
    TCIMReference early = To(fY, "a"), below = To(fSchema.AddClass("Below", {}, &fY), "a");
    EXPECT_EQ(Outcome([&] { early.GetCIMElement(); }), "kyrStatusNotFound");
    const ICIMElement* a = &fSchema.AddInstance(fY, {{"ID", "a"}});
    EXPECT_EQ(early.GetCIMElement(), a);
    for (const TCIMReference& other : {To(fY, "a", "id"), below})
        EXPECT_EQ(Outcome([&] { other.GetCIMElement(); }), "kyrStatusNotFound");
}

TEST_F(TCIMReferenceTest, KeepsTheFirstFoundElementUntilCleared) {
    const ICIMElement* a = &fSchema.AddInstance(fY, {{"ID", "a"}});
    TCIMReference reference = To(fY, "a");
    const TCIMValue value(reference), valueCopy(value);
    for (TCIMReference resolved :
         {reference, static_cast<TCIMReference>(value), static_cast<TCIMReference>(valueCopy)}) {
        resolved.SetKeyBindings({{"ID", TCIMValue("none")}});
        EXPECT_EQ(resolved.GetCIMElement(), a) << "a value looks for it when it is made";
    }
    reference.SetKeyBindings({});
    EXPECT_EQ(reference.GetCIMElement(), &fY);
    reference.SetClass(fX);
    reference.AddKeyValue("a", TCIMValue("none"));
    TCIMReference copy(reference), assigned(nullptr);
    assigned = reference;
    for (const TCIMReference* one : {&reference, &copy, &assigned}) EXPECT_EQ(one->GetCIMElement(), a);
    reference.Clear();
    reference.SetClass(fY);
    reference.AddKeyValue("ID", TCIMValue("none"));
    EXPECT_EQ(Outcome([&] { reference.GetCIMElement(); }), "kyrStatusNotFound");
}

TEST_F(TCIMReferenceTest, CopiesAreApart) {
    TCIMReference original(&fContainer);
    original.SetClass(fY);
    TCIMReference copy(original), &same = original;
    copy.SetClassName("X");  // the container came along
    EXPECT_EQ(original.GetPath() + copy.GetPath(), "YX");
    original = copy;
    copy.Clear();
    original = same;
    EXPECT_EQ(original.GetPath(), "X");
}

TEST_F(TCIMReferenceTest, ComparesClassPointersAndBindings) {
    TCIMReference a = To(fY, "a"), b = To(fY, "b"), found = To(fY, "a");
    TCIMClass namesake(fContainer, "Y", nullptr);
    fSchema.AddInstance(fY, {{"ID", "a"}});
    found.GetCIMElement();
    found.SetContainer(&fContainer);
    EXPECT_EQ(Order(a, found), "==");
    EXPECT_EQ(Order(a, b) + Order(To(fY), a), "<<");
    for (TCIMClass* cls : {&fX, &namesake}) EXPECT_EQ(Order(To(fY), To(*cls)), &fY < cls ? "<" : ">");
}

TEST_F(TCIMReferenceTest, IsCarriedByValues) {
    const TCIMValue a(To(fY, "a")), b(To(fY, "b")), array(CIM::eCIMReference, 1, {a}), null = NullReferenceTo(fY),
                                                                                       copy(null);
    EXPECT_EQ(std::tuple(a.IsReference(), array.IsReference(), copy.IsNull()), std::tuple(true, false, true));
    EXPECT_THAT((std::vector{a.GetReferencedClass(), copy.GetReferencedClass()}), Each(&fY));
    EXPECT_EQ(static_cast<TCIMReference>(a), To(fY, "a"));
    EXPECT_EQ(a, TCIMValue(To(fY, "a")));
    EXPECT_EQ(Order(a, b), "<");
    EXPECT_NE(null, NullReferenceTo(fX));
    for (const unsigned char base : {2, 8, 10, 16}) EXPECT_EQ(array.ToString(base), "{ Y.ID=\"a\" }");
    EXPECT_EQ(StatusOf([&] { null.operator TCIMReference(); }), kyrStatusValueIsNULL);
    EXPECT_EQ(StatusOf([&] { array.operator TCIMReference(); }), kyrStatusTypeMismatch);
    EXPECT_EQ(StatusOf([&] { TCIMValue(a).SetReferencedClass(fX); }), kyrStatusInvalidOpSequence);
}

}  // namespace
