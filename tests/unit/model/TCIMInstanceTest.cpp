#include <functional>
#include <random>

#include "kyr/TCIMDateTime.h"
#include "kyr/TRootObject.h"
#include "model/TCIMInstanceImpl.h"
#include "support/OddLocale.h"
#include "support/SchemaBuilder.h"

namespace {

/// Disk has the key ID, Size with a default and Model without one; NVMe stands below it.
class TCIMInstanceTest : public SchemaTest {
protected:
    TCIMInstance& Add(TCIMClass& cls, const char* id) { return fSchema.AddInstance(cls, {{"ID", TCIMValue(id)}}); }
    std::unique_ptr<TCIMInstance> New(TCIMClass& cls, const char* id) const {
        return fSchema.NewInstance(cls, {{"ID", TCIMValue(id)}});
    }
    static std::string BothValues(const TCIMProperty& property) {
        return property.GetValue().ToString(10) + ", before " + property.GetPrevValue().ToString(10);
    }

    TCIMClass& fDisk = fSchema.AddClass("Disk", {Key("ID"), {"Size", TCIMValue(5u)}, {"model", Null(CIM::eCIMString)}});
    TCIMClass& fNVMe = fSchema.AddClass("NVMe", {}, &fDisk);
};

TEST_F(TCIMInstanceTest, HasAPropertyForEachDeclarationOfItsClass) {
    const std::unique_ptr<TCIMInstance> disk = fSchema.NewInstance(fDisk);
    EXPECT_EQ(disk->GetClass(), &fDisk);
    EXPECT_EQ(disk->GetContainer(), &fContainer);
    EXPECT_THAT(NamesOf(disk->EnumerateProperties()), ElementsAre("ID", "model", "Size"));
    EXPECT_THAT(fDisk.EnumerateInstances(true), IsEmpty());
    EXPECT_TRUE(disk->GetProperty("Size")->GetPropagated());
    fDisk.GetPropertyDecl("Size")->SetValue(TCIMValue(6u));
    EXPECT_EQ(disk->GetProperty("Size")->GetValue(), TCIMValue(6u)) << "the default is not copied";
    fSchema.AddProperty(fDisk, {"Late", TCIMValue(1u)});
    EXPECT_EQ(disk->FindProperty("Late"), nullptr);
    EXPECT_EQ(fSchema.NewInstance(fDisk)->EnumerateProperties().size(), 4u);
    EXPECT_EQ(Outcome([&] { TCIMInstance copy(*disk, fDisk); }), "kyrStatusNotImplemented");
}

TEST_F(TCIMInstanceTest, IsStampedWithTheTimeOfItsMaking) {
    TCIMClass& cls = fSchema.AddClass("Stamped", {Key("ID"), {"dateTimeOfCollection", Null(CIM::eCIMDateTime)}});
    const TCIMDateTime stamp = fSchema.NewInstance(cls)->GetProperty("DateTimeOfCollection")->GetValue();
    EXPECT_EQ(std::tuple(stamp.IsNull(), stamp.IsInterval()), std::tuple(false, false));
    TCIMClass& text = fSchema.AddClass("Wrong", {Key("DateTimeOfCollection")});
    EXPECT_EQ(Outcome([&] { fSchema.NewInstance(text); }),
              "kyrStatusTypeMismatch 0:SetValue: decl is type string but value is type datetime");
}

TEST_F(TCIMInstanceTest, ReachesPropertiesInAnyCaseAndNeverAddsOne) {
    const std::unique_ptr<TCIMInstance> disk = fSchema.NewInstance(fDisk);
    const TCIMProperty* size = disk->GetProperty("Size");
    disk->SetPropertyValue("sIZE", TCIMValue(7u));
    disk->SetPrevPropertyValue("SIZE", TCIMValue(3u));
    EXPECT_EQ(BothValues(*size), "7, before 3");
    disk->SetPrevPropertyValue("size");
    EXPECT_EQ(TypeOf(size->GetPrevValue()), CIM::eCIMNone);
    const TCIMPropertyDecl none("None", fDisk, TCIMValue(1u)), other("SIZE", fNVMe, Null(CIM::eCIMString));
    EXPECT_EQ(Outcome([&] { disk->SetProperty(TCIMProperty(none)); }), "kyrStatusNotFound");
    EXPECT_EQ(Outcome([&] { disk->SetPropertyValue("None", TCIMValue(1u)); }), "kyrStatusNotFound");
    EXPECT_EQ(Outcome([&] { disk->SetPrevPropertyValue("None"); }), "kyrStatusNotFound");

    TCIMProperty property(other, TCIMValue("big"));
    property.SetPrevValue(TCIMValue("small"));
    disk->SetProperty(property);
    property.SetValue(TCIMValue("later"));
    EXPECT_EQ(disk->FindProperty("sizE"), size);
    EXPECT_EQ(&size->GetDeclaration(), &other) << "replaced as a whole";
    EXPECT_EQ(BothValues(*size), "big, before small");
    EXPECT_EQ(disk->FindProperty("None"), nullptr);
    EXPECT_EQ(disk->EnumerateProperties().size(), 3u);
}

TEST_F(TCIMInstanceTest, NeedsItsKeysAndNamesTheFirstThatIsNull) {
    TCIMClass& cls = fSchema.AddClass("Pair", {Key("beta"), Key("Alpha"), Key("Def", TCIMValue("set"))});
    std::unique_ptr<TCIMInstance> pair = fSchema.NewInstance(cls);
    const auto watch = Watch(*pair);
    const std::string lacks = "kyrStatusInvalidInstance 0:Instance Pair: key property ";
    EXPECT_EQ(Outcome([&] { pair->AddToContainer(); }), lacks + "Alpha is NULL");
    EXPECT_FALSE(watch.expired());
    pair->SetPropertyValue("ALPHA", TCIMValue("a"));
    EXPECT_EQ(Outcome([&] { pair->Validate(); }), lacks + "beta is NULL");
    pair->SetPropertyValue("beta", TCIMValue(""));
    const TCIMInstance* added = pair.release();
    added->AddToContainer();
    TCIMReference path = added->BuildPath();
    EXPECT_EQ(path.GetPath(), "Pair.Alpha=\"a\",Def=\"set\",beta=\"\"");
    EXPECT_EQ(cls.FindInstance(path), added);
    EXPECT_EQ(path.GetCIMElement(), added);
    EXPECT_EQ(Outcome([&] { path.SetClassName("Disk"); }),
              "kyrStatusInvalidOpSequence 0:SetClassName() called before container set");
    EXPECT_NO_THROW(fSchema.AddInstance(fSchema.AddClass("Keyless", {}, nullptr, {"ABSTRACT"})));
}

TEST_F(TCIMInstanceTest, MayLackKeysInADifferenceContainer) {
    fContainer.hackhack_TurnIntoADiffContainer();
    EXPECT_EQ(fSchema.AddInstance(fDisk).BuildPath().GetPath(), "Disk");
    EXPECT_EQ(fDisk.EnumerateInstances(false).size(), 1u);
}

TEST_F(TCIMInstanceTest, IsDestroyedWhenItsPathCannotBeBuilt) {
    TCIMInstance &direct = *New(fDisk, "a").release(), &added = *New(fNVMe, "a").release();
    const auto directWatch = Watch(direct), addedWatch = Watch(added);
    fDisk.GetPropertyDecl("ID")->SetName("Serial");  // the instances keep the property under its old name
    EXPECT_EQ(Outcome([&] { fDisk.AddInstance(direct); }), "kyrStatusNotFound");
    EXPECT_TRUE(directWatch.expired());
    EXPECT_EQ(Outcome([&] { added.AddToContainer(); }), "kyrStatusNotFound");
    EXPECT_FALSE(addedWatch.expired()) << "Validate has failed";
    fContainer.hackhack_TurnIntoADiffContainer();  // lets it past Validate
    EXPECT_EQ(Outcome([&] { added.AddToContainer(); }), "kyrStatusNotFound");
    EXPECT_TRUE(addedWatch.expired());
    EXPECT_THAT(fDisk.EnumerateInstances(true), IsEmpty());
}

TEST_F(TCIMInstanceTest, ValidatesAndDiesThroughTheVirtualSlots) {
    struct THosts : TCIMInstance {
        THosts(TCIMClass* cls, int& deaths) : TCIMInstance(cls), fDeaths(deaths) {}
        ~THosts() override { ++fDeaths; }
        void Validate() const override {
            if (fDeaths != 0) throw TKYRException(kyrStatusNotSupported);
        }
        int& fDeaths;
    };
    int deaths = 0;
    (new THosts(&fNVMe, deaths))->AddToContainer();  // its key is NULL
    fContainer.RemoveClass(fNVMe);
    EXPECT_EQ(deaths, 1);
    const THosts refused(&fDisk, deaths);
    EXPECT_EQ(Outcome([&] { refused.AddToContainer(); }), "kyrStatusNotSupported");
    EXPECT_TRUE(fDisk.EnumerateInstances(false).empty());
}

TEST_F(TCIMInstanceTest, IsFiledUnderItsPathBesideOthersOfThatPath) {
    TCIMClass &fast = fSchema.AddClass("Fast", {}, &fNVMe), &sas = fSchema.AddClass("SAS", {}, &fDisk);
    TCIMInstance& nine = Add(fDisk, "9");
    std::vector<TCIMInstance*> all;  // in the order of their paths
    for (int i = 0; i < 20; ++i) all.push_back(&Add(fDisk, "10"));
    all.push_back(&nine);
    EXPECT_EQ(fDisk.FindInstance(To(fDisk, "10")), all.front());
    EXPECT_EQ(fDisk.GetInstance(To(fDisk, "9")), &nine);
    EXPECT_EQ(fDisk.EnumerateInstances(false), all);
    TCIMInstance &s = Add(sas, "0"), &f = Add(fast, "0"), &n = Add(fNVMe, "0");
    all.insert(all.end(), {&n, &f, &s});  // the tree in pre-order
    EXPECT_EQ(fDisk.EnumerateInstances(true), all);

    EXPECT_EQ(fDisk.FindInstance(To(fDisk, "0")), nullptr) << "a subclass's instance";
    EXPECT_EQ(fDisk.FindInstance(To(fNVMe, "0")), nullptr);
    EXPECT_EQ(fNVMe.FindInstance(To(fNVMe, "0")), &n);
    EXPECT_EQ(fDisk.FindInstance(To(fDisk, "9", "id")), nullptr) << "spelled in another way than declared";
    EXPECT_EQ(Outcome([&] { fDisk.GetInstance(To(fDisk, "8")); }), "kyrStatusNotFound");
}

TEST_F(TCIMInstanceTest, RemovalTakesAllOfThePresentPath) {
    TCIMInstance &first = Add(fDisk, "a"), &second = Add(fDisk, "a"), &moved = Add(fDisk, "c");
    const auto firstWatch = Watch(first), secondWatch = Watch(second), movedWatch = Watch(moved);
    fDisk.RemoveInstance(*New(fDisk, "none"));
    EXPECT_EQ(fDisk.EnumerateInstances(false).size(), 3u);
    fDisk.RemoveInstance(second);
    EXPECT_EQ(std::tuple(firstWatch.expired(), secondWatch.expired()), std::tuple(true, true));
    moved.SetPropertyValue("ID", TCIMValue("d"));
    fDisk.RemoveInstance(moved);
    EXPECT_FALSE(movedWatch.expired()) << "it is filed under the path it went in with";
    fDisk.RemoveInstance(*New(fDisk, "c"));
    EXPECT_TRUE(movedWatch.expired());
}

TEST_F(TCIMInstanceTest, AddedTwiceHasTwoEntriesAndOneLife) {
    TCIMInstance& disk = Add(fDisk, "a");
    const auto watch = Watch(disk);
    disk.AddToContainer();
    disk.SetPropertyValue("ID", TCIMValue("b"));
    disk.AddToContainer();
    EXPECT_THAT(fDisk.EnumerateInstances(false), ElementsAre(&disk, &disk, &disk));
    fDisk.RemoveInstance(disk);
    EXPECT_THAT(fDisk.EnumerateInstances(false), ElementsAre(&disk, &disk));
    fContainer.hackhack_TurnIntoADiffContainer();
    fDisk.GetPropertyDecl("ID")->SetName("Serial");
    EXPECT_EQ(Outcome([&] { disk.AddToContainer(); }), "kyrStatusNotFound");
    EXPECT_FALSE(watch.expired()) << "its first owner keeps it";
    fDisk.GetPropertyDecl("ID")->SetName("ID");
    fDisk.RemoveInstance(*New(fDisk, "a"));
    EXPECT_TRUE(watch.expired());
}

TEST_F(TCIMInstanceTest, KeysAreOfTheirOwnDeclarationsAfterNamesWereExchanged) {
    TCIMClass& cls = fSchema.AddClass("Exchanged", {{"alpha", TCIMValue(1u), {"Key"}}, {"beta", TCIMValue("x"), {}}});
    TCIMPropertyDecl &alpha = *cls.GetPropertyDecl("alpha"), &beta = *cls.GetPropertyDecl("beta");
    alpha.SetName("beta");
    beta.SetName("alpha");
    EXPECT_EQ(Outcome([&] { fContainer.AllocateInstance(&cls)->AddToContainer(); }),
              "kyrStatusTypeMismatch 0:Declaration type: string Value type: uint32");
}

TEST_F(TCIMInstanceTest, ComparesClassAndOwnValues) {
    const std::unique_ptr<TCIMInstance> a = New(fDisk, "1"), b = New(fDisk, "1"), other = New(fNVMe, "1");
    EXPECT_EQ(Order(*a, *other), &fDisk < &fNVMe ? "<" : ">");
    b->SetPrevPropertyValue("Size", TCIMValue(1u));
    EXPECT_EQ(Order(*a, *b), "==");
    b->SetPropertyValue("Size", TCIMValue(5u));
    EXPECT_EQ(Order(*a, *b), "") << "a value that equals the default is a value of its own";
    a->SetPropertyValue("Size", TCIMValue(5u));
    EXPECT_EQ(Order(*a, *b), "==");
}

/// A class that changes in many ways while it has an instance.
class TChangingClass {
public:
    TChangingClass(const SchemaBuilder& schema, TContainer& container, unsigned int seed)
        : fSchema(schema), fClass(container, "Changing", nullptr), fRandom(seed) {
        for (unsigned int i = Below(12); i != 0; --i) Try([this] { AddProperty(); });
        Renew();
    }

    void Change() {
        const auto declarations = fClass.EnumeratePropertyDecls();
        if (declarations.empty() || Below(8) == 0) return Try([this] { AddProperty(); });
        TCIMPropertyDecl& declaration =
            const_cast<TCIMPropertyDecl&>(*declarations[Below(static_cast<unsigned int>(declarations.size()))]);
        Try([&] { Change(declaration); });
    }
    const TCIMInstance& Instance() const { return *fInstance; }
    /// As Validate does it, by names alone.
    void ValidateByNames() const {
        for (const std::string& name : fClass.EnumerateKeyNames()) {
            if (!fInstance->GetProperty(name)->GetValue().IsNull()) continue;
            TRootObject::GetCoreLogger()->OutputLogEntry(nullptr, kyrLogError,
                                                         "Instance Changing: key property " + name + " is NULL");
            throw TKYRException(kyrStatusInvalidInstance);
        }
    }

private:
    unsigned int Below(unsigned int limit) { return static_cast<unsigned int>(fRandom() % limit); }
    template <typename TAction>
    static void Try(TAction&& action) {
        (void)StatusOf(action);
    }
    std::string AnyName() {
        static const char* const kNames[] = {"ID", "iD", "Beta", "alpha", "_x", "Q", "", "no name", "\xfdx"};
        const unsigned int number = Below(20);
        return number < std::size(kNames) ? kNames[number] : "Property" + std::to_string(number);
    }
    TCIMValue AnyKey() {
        const TCIMValue kValues[] = {TCIMValue(false), Null(CIM::eCIMBoolean), TCIMValue("x")};
        const unsigned int number = Below(12);
        return number < std::size(kValues) ? kValues[number] : TCIMValue(true);
    }
    TCIMValue AnyValue() { return Below(3) == 0 ? Null(CIM::eCIMUint32) : TCIMValue(Below(3)); }

    void AddProperty() {
        TCIMPropertyDecl& added = fSchema.AddProperty(fClass, {AnyName(), AnyValue()});
        if (Below(2) == 0) fSchema.Qualify(added, "Key", AnyKey());
    }
    void Change(TCIMPropertyDecl& declaration) {
        TCIMQualifier* const key = declaration.FindQualifier("Key");
        switch (Below(8)) {
            case 0:
                return declaration.SetName(AnyName());
            case 1:
                return declaration.SetValue(Below(4) == 0 ? TCIMValue("text") : AnyValue());
            case 2:
                fClass.RemovePropertyDecl(declaration);
                return Renew();  // the old one may point to a declaration that is gone
            case 3:
                return key == nullptr ? void(fSchema.Qualify(declaration, "Key", AnyKey())) : key->SetValue(AnyKey());
            case 4:
                return key == nullptr ? void() : declaration.RemoveQualifier(*key);
            case 5:
                return Renew();
            default:
                return fInstance->SetPropertyValue(declaration.GetName(), AnyValue());
        }
    }
    /// Gives all properties good names first if none can be made of theirs.
    void Renew() {
        struct THosts : TCIMInstance {
            using TCIMInstance::TCIMInstance;
            std::string fTag = "the host's";
        };
        const auto make = [this] {
            fInstance = Below(2) == 0 ? std::make_unique<THosts>(&fClass) : std::make_unique<TCIMInstance>(&fClass);
        };
        if (StatusOf(make) == kyrStatusOK) return;
        unsigned int number = 0;
        for (const TCIMPropertyDecl* declaration : fClass.EnumeratePropertyDecls())
            const_cast<TCIMPropertyDecl*>(declaration)->SetName("Good" + std::to_string(++number));
        make();
    }

    const SchemaBuilder& fSchema;
    TCIMClass fClass;
    std::unique_ptr<TCIMInstance> fInstance;
    std::mt19937 fRandom;
};

TEST_F(TCIMInstanceTest, FindsItsKeysAsByNamesWhateverHasChanged) {
    for (unsigned int seed = 0; seed < 200; ++seed) {
        std::unique_ptr<TOddLocale> locale;
        TChangingClass changing(fSchema, fContainer, seed);
        for (int i = 0; i < 30; ++i) {
            const TCIMInstance& instance = changing.Instance();
            std::string text, path;
            const std::string textOutcome = Outcome([&] { text = TCIMInstanceImpl::Of(instance).BuildPathText(); });
            const std::string pathOutcome = Outcome([&] { path = instance.BuildPath().GetPath(); });
            ASSERT_EQ(text + textOutcome, path + pathOutcome) << seed << ' ' << i;
            ASSERT_EQ(Outcome([&] { instance.Validate(); }), Outcome([&] { changing.ValidateByNames(); }))
                << seed << ' ' << i;
            if ((seed + static_cast<unsigned int>(i)) % 5 == 0) locale.reset(locale ? nullptr : new TOddLocale);
            changing.Change();
        }
    }
}

/// Of the host's; tells what it sees when it ends.
struct TWatchingInstance : TCIMInstance {
    TWatchingInstance(TCIMClass& cls, std::function<void()> atEnd) : TCIMInstance(&cls), fAtEnd(std::move(atEnd)) {}
    ~TWatchingInstance() override { fAtEnd(); }
    std::function<void()> fAtEnd;
};
struct TWatchingDecl : TCIMPropertyDecl {
    TWatchingDecl(TCIMClass& cls, std::function<void()> atEnd)
        : TCIMPropertyDecl("Watched", cls, TCIMValue(1u)), fAtEnd(std::move(atEnd)) {}
    ~TWatchingDecl() override { fAtEnd(); }
    std::function<void()> fAtEnd;
};

TEST_F(TCIMInstanceTest, RemovedOnesAreSeenNowhereWhileTheyEnd) {
    TCIMClass& link = fSchema.AddClass("Link", {Key("ID"), {"Part", NullReferenceTo(fDisk)}}, nullptr, {"ASSOCIATION"});
    TCIMInstance& disk = Add(fDisk, "1");
    std::vector<size_t> referring, others;
    const auto note = [&] {
        referring.push_back(disk.References("", "").size());
        others.push_back(link.EnumerateInstances(false).size());
    };
    TCIMInstance* last = nullptr;
    for (int i = 0; i < 3; ++i) {
        last = new TWatchingInstance(link, note);
        last->SetPropertyValue("ID", TCIMValue("same"));
        last->SetPropertyValue("Part", TCIMValue(To(fDisk, "1")));
        last->AddToContainer();
    }
    for (int i = 0; i < 2; ++i) EXPECT_EQ(disk.References("", "").size(), 3u) << "from now on they are indexed";
    link.RemoveInstance(*last);
    EXPECT_THAT(others, ElementsAre(2, 1, 0));
    EXPECT_EQ(referring, others);
}

TEST_F(TCIMInstanceTest, HasNoPropertyOfADeclarationThatEnds) {
    size_t properties = 0;
    auto* const declaration =
        new TWatchingDecl(fDisk, [&] { properties = fSchema.NewInstance(fDisk)->EnumerateProperties().size(); });
    fDisk.AddPropertyDecl(*declaration);
    EXPECT_EQ(fSchema.NewInstance(fDisk)->EnumerateProperties().size(), 4u);
    fDisk.RemovePropertyDecl(*declaration);
    EXPECT_EQ(properties, 3u);
    EXPECT_EQ(fSchema.NewInstance(fDisk)->EnumerateProperties().size(), 3u);
}

TEST_F(TCIMInstanceTest, NormalisesItsNamesByTheLocaleOfItsMaking) {
    EXPECT_NO_THROW(New(fDisk, "usual"));
    const TOddLocale locale;
    EXPECT_NO_THROW(New(fDisk, "odd")) << "ID has another lower case now";
}

TEST_F(TCIMInstanceTest, TargetsOfKeysAreLookedUpWhenItIsAdded) {
    TCIMClass& link = fSchema.AddClass("Link", {KeyReference("Part", fDisk)}, nullptr, {"ASSOCIATION"});
    TCIMInstance& disk = *New(fDisk, "1").release();
    std::unique_ptr<TCIMInstance> made = fSchema.NewInstance(link, {{"Part", TCIMValue(disk.BuildPath())}});
    disk.AddToContainer();
    made.release()->AddToContainer();
    // The disk goes on under another path.
    disk.SetPropertyValue("ID", TCIMValue("2"));
    disk.AddToContainer();
    disk.SetPropertyValue("ID", TCIMValue("1"));
    fDisk.RemoveInstance(disk);
    EXPECT_EQ(disk.References("", "").size(), 1u);
}

TEST_F(TCIMInstanceTest, ComparesPairByPair) {
    TCIMPropertyDecl& last = fSchema.AddProperty(fDisk, {"Zone", TCIMValue(1u)});
    fSchema.AddProperty(fDisk, {"Moment", Null(CIM::eCIMDateTime)});
    const std::unique_ptr<TCIMInstance> one = New(fDisk, "1");
    last.SetName("Zoned");
    const std::unique_ptr<TCIMInstance> two = New(fDisk, "1");
    one->SetPropertyValue("Moment", TCIMValue(TCIMDateTime("20041231235959.000000+060")));
    two->SetPropertyValue("Moment", TCIMValue(TCIMDateTime("00000001020304.000005:000")));
    EXPECT_EQ(StatusOf([&] { (void)(*one == *two); }), kyrStatusInvalidDateTime) << "before the names differ";
}

TEST_F(TCIMInstanceTest, IsRefusedWhereTheDefaultOfAKeyCannotBeCopied) {
    TCIMPropertyDecl& key = *fDisk.GetPropertyDecl("ID");
    EXPECT_EQ(StatusOf([&] { key.SetValue(Null(CIM::eCIMChar)); }), kyrStatusTypeMismatch);
    const std::unique_ptr<TCIMInstance> disk = fSchema.NewInstance(fDisk);
    EXPECT_EQ(StatusOf([&] { disk->Validate(); }), kyrStatusTypeMismatch);
    EXPECT_EQ(StatusOf([&] { disk->BuildPath(); }), kyrStatusTypeMismatch);
}

}  // namespace
