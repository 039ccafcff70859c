#include "support/SchemaBuilder.h"

namespace {

class TContainerTest : public SchemaTest {
protected:
    TCIMClass& fRoot = *fContainer.GetRootClass();
};

TEST_F(TContainerTest, StartsWithTheRootClassAlone) {
    EXPECT_EQ(fRoot.GetName(), "<root>");
    EXPECT_EQ(fRoot.GetContainer(), &fContainer);
    EXPECT_EQ(fRoot.GetSuperClass(), nullptr);
    EXPECT_FALSE(fRoot.IsRootClass());
    EXPECT_THAT((std::vector{fContainer.GetClass(""), fContainer.FindClass("")}), Each(&fRoot));
}

TEST_F(TContainerTest, AllocatesClassesThatAreNobodysYetAndItsRootWithoutTheHook) {
    struct THost : TContainer {
        TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const override {
            return TContainer::AllocateClass("Host" + name, superclass);
        }
    } host;
    EXPECT_EQ(host.GetRootClass()->GetName(), "<root>");
    const std::unique_ptr<TCIMClass> cls(host.AllocateClass("C", nullptr));
    EXPECT_EQ(cls->GetName(), "HostC");
    EXPECT_EQ(cls->GetContainer(), &host);
    EXPECT_EQ(host.FindClass("HostC"), nullptr);
}

TEST_F(TContainerTest, FindsAndRemovesClassesByName) {
    TCIMClass &cls = fSchema.AddClass("Disk", {Key("ID")}), &super = fSchema.AddClass("Super", {Key("ID")});
    TCIMClass& sub = fSchema.AddClass("Sub", {}, &super);
    const auto watch = Watch(cls);
    const auto instance = Watch(fSchema.AddInstance(cls, {{"ID", "1"}}));
    TCIMClass sameName(fContainer, "DISK", nullptr), unknown(fContainer, "Unknown", nullptr);
    EXPECT_EQ(fContainer.FindClass("dISK"), &cls);
    EXPECT_EQ(fContainer.FindClass("None"), nullptr);
    EXPECT_EQ(Outcome([&] { fContainer.GetClass("None"); }), "kyrStatusNotFound");
    EXPECT_EQ(Outcome([&] { fContainer.RemoveClass(unknown); }), "kyrStatusNotFound");
    fContainer.RemoveClass(sameName);
    EXPECT_EQ(std::tuple(watch.expired(), instance.expired()), std::tuple(true, true));
    EXPECT_THAT(fRoot.EnumerateSubClasses(true), ElementsAre(&super, &sub));
    fContainer.RemoveClass(sub);
    EXPECT_TRUE(super.EnumerateSubClasses(true).empty());
}

TEST_F(TContainerTest, RefusedClassStaysWithItsCaller) {
    TCIMClass &kept = fSchema.AddClass("Disk", {Key("ID")}), &half = *fSchema.NewClass("Half").release();
    TCIMClass twin(fContainer, "DISK", nullptr);
    const std::string taken = "kyrStatusAlreadyExists 3:TContainer: class ";
    EXPECT_EQ(Outcome([&] { fContainer.AddClass(twin); }), taken + "DISK already defined");
    EXPECT_EQ(Outcome([&] { fContainer.AddClass(kept); }), taken + "Disk already defined");
    EXPECT_EQ(fContainer.FindClass("Disk"), &kept);
    EXPECT_EQ(twin.GetName(), "DISK");
    fContainer.AddClass(half);  // the catalogue's half of the work: no key asked for, no link to the root
    EXPECT_EQ(fContainer.FindClass("half"), &half);
    EXPECT_THAT(fRoot.EnumerateSubClasses(true), ElementsAre(&kept));
}

TEST_F(TContainerTest, FindsAndRemovesQualifierDeclarationsByName) {
    for (const char* name : {"Units", "abstract", "KEY"}) fSchema.Declaration(name);
    EXPECT_THAT(NamesOf(fContainer.EnumerateQualifiers()), ElementsAre("abstract", "KEY", "Units"));
    TCIMQualifierDecl* units = fContainer.GetQualifierDecl("uNITS");
    const auto watch = Watch(*units);
    units->SetName("Measure");
    EXPECT_EQ(fContainer.FindQualifierDecl("UNITS"), units);
    EXPECT_EQ(fContainer.FindQualifierDecl(""), nullptr);
    EXPECT_EQ(Outcome([&] { fContainer.GetQualifierDecl("Measure"); }), "kyrStatusNotFound");
    TCIMQualifierDecl sameName(fContainer, "UNITS", TCIMValue(true), {}, {});
    fContainer.RemoveQualifierDecl(sameName);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(Outcome([&] { fContainer.RemoveQualifierDecl(sameName); }), "kyrStatusNotFound");
}

TEST_F(TContainerTest, RefusedQualifierDeclarationIsDestroyed) {
    TCIMQualifierDecl& kept = fSchema.Declaration("Units");
    const std::pair<const TCIMQualifierDecl*, const char*> kCases[] = {
        {fContainer.AllocateQualifierDecl("UNITS", TCIMValue(true), {}, {}),
         "kyrStatusAlreadyExists 3:TContainer: qualifier UNITS already defined"},
        {fContainer.AllocateQualifierDecl("a b", TCIMValue(true), {}, {}),
         "kyrStatusInvalidCIMName 0:CIM name 'a b' is invalid"},
        {&kept, "kyrStatusAlreadyExists 3:TContainer: qualifier Units already defined"},
    };
    for (const auto& [decl, outcome] : kCases) {
        const auto watch = Watch(*decl);
        EXPECT_EQ(Outcome([&, added = decl] { added->AddToContainer(); }), outcome);
        EXPECT_EQ(watch.expired(), decl != &kept) << outcome;
    }
    EXPECT_EQ(fContainer.FindQualifierDecl("Units"), &kept);
    EXPECT_EQ(kept.GetName(), "Units");
}

TEST_F(TContainerTest, TearsDownWhicheverNamesItsClassesHave) {
    auto container = std::make_unique<TContainer>();
    const SchemaBuilder schema(*container);
    std::vector<boost::weak_ptr<TCIMClassImpl>> classes = {Watch(*container->GetRootClass())};
    TCIMClass* super = nullptr;
    for (const char* name : {"M", "Z", "A", "Y", "B"}) {  // each below the one before it
        super = &schema.AddClass(name, {Key(std::string("ID") + name, TCIMValue("d"))}, super, {"Display"});
        classes.push_back(Watch(*super));
    }
    TCIMClass& link = schema.AddClass("Link", {KeyReference("End", *super)}, nullptr, {"ASSOCIATION"});
    const TCIMValue end(schema.AddInstance(*super).BuildPath());
    const auto instance = Watch(schema.AddInstance(link, {{"End", end}}));
    container.reset();
    for (const auto& watch : classes) EXPECT_TRUE(watch.expired()) << "class " << (&watch - classes.data());
    EXPECT_TRUE(instance.expired());
}

TEST_F(TContainerTest, OnlyADifferenceContainerHasAListOfDifferences) {
    TCIMInstance& instance = fSchema.AddInstance(fSchema.AddClass("C", {Key("ID")}), {{"ID", "1"}});
    const std::string refused =
        "kyrStatusNotSupported 0:TContainer: Cannot access DiffInstances if the containter is not a Diff Container";
    EXPECT_EQ(Outcome([&] { fContainer.setDiffInstances({}); }), refused);
    EXPECT_EQ(Outcome([&] { fContainer.getDiffInstances(); }), refused);
    EXPECT_EQ(Outcome([&] { fContainer.hasDifferences(); }), refused);
    EXPECT_FALSE(fContainer.isDiffContainer());
    fContainer.hackhack_TurnIntoADiffContainer();
    EXPECT_EQ(std::tuple(fContainer.isDiffContainer(), fContainer.hasDifferences()), std::tuple(true, false));
    fContainer.setDiffInstances({&instance, &instance});
    fContainer.getDiffInstances().clear();  // a copy
    EXPECT_TRUE(fContainer.hasDifferences());
    EXPECT_THAT(fContainer.getDiffInstances(), ElementsAre(&instance, &instance));
}

}  // namespace
