#include <new>

#include "cwrappers/kyriIOHandle.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/TRefusedCall.h"
#include "kyr/kyrPlugin.h"
#include "model/TCIMInstanceImpl.h"
#include "support/SchemaBuilder.h"
#include "unit/FakePlugin.h"

namespace {

/// Runs out of memory when it is told to.
class TContainerWithoutMemory : public TContainer {
public:
    TCIMInstance* AllocateInstance(TCIMClass* cls) const override {
        if (fOut) throw std::bad_alloc();
        return TContainer::AllocateInstance(cls);
    }
    bool fOut = false;
};

class InstanceCallsTest : public LoggedTest {
protected:
    ~InstanceCallsTest() override {
        const TCIMInstance* open = fHandle.fCurrentInstance;
        if (open && !TCIMInstanceImpl::Of(*open).IsAdopted()) delete open;
    }

    kyrStatusCode Open(const char* cls = "Disk") { return kyrAddClass(&fHandle, cls); }
    void OpenNamed(const char* cls = "Disk") {
        Open(cls);
        EXPECT_EQ(kyrAddStringProperty(&fHandle, "Name", "a"), kyrStatusOK);
    }
    std::string TextOf(const char* name) const {
        return fHandle.fCurrentInstance->GetProperty(name)->GetValue().ToString(10);
    }
    std::vector<TCIMInstance*> StoredDisks() const { return fDisk.EnumerateInstances(false); }

    TContainerWithoutMemory fContainer;
    SchemaBuilder fSchema{fContainer};
    TCIMClass& fDisk = fSchema.AddClass("Disk", {Key("Name"),
                                                 {"Size", Null(CIM::eCIMUint16)},
                                                 {"Date", Null(CIM::eCIMDateTime)},
                                                 {"List", Null(CIM::eCIMUint8, 1)}});
    FakePlugin fPlugin{"fake"};
    kyriIOHandle fHandle{&fContainer, &fPlugin};
};

TEST_F(InstanceCallsTest, TextIsReadAsTheDeclaredTypeAndValuesAreCopied) {
    Open();
    std::vector<TCIMValue> list = {TCIMValue(static_cast<unsigned char>(44))};
    TCIMValue value("text");
    EXPECT_EQ(kyrAddProperty(&fHandle, "SIZE", "0x10"), kyrStatusOK);
    EXPECT_EQ(kyrAddArrayProperty(&fHandle, "List", &list), kyrStatusOK);
    EXPECT_EQ(kyrAddCIMValueProperty(&fHandle, "Name", &value), kyrStatusOK);
    list.clear();
    EXPECT_EQ(value, TCIMValue("text"));
    EXPECT_EQ(TextOf("Size") + TextOf("List") + TextOf("Name"), "16{ 44 }text");
}

TEST_F(InstanceCallsTest, PropertyFailuresLeaveTheInstanceOpen) {
    EXPECT_EQ(kyrAddProperty(&fHandle, "Name", "a"), kyrStatusInvalidClass);
    EXPECT_EQ(kyrAddStringProperty(&fHandle, "Name", "a"), kyrStatusInvalidClass);
    EXPECT_EQ(fLog.TakeLines(), TLines(2, "0:kyrAddProperty: no current instance"));
    Open();
    EXPECT_EQ(kyrAddProperty(&fHandle, "Nam", "a"), kyrStatusNotFound);
    EXPECT_EQ(kyrAddStringProperty(&fHandle, "Nam", "a"), kyrStatusNotFound);
    EXPECT_EQ(kyrAddProperty(&fHandle, "Date", "tomorrow"), kyrStatusInvalidDateTime);
    EXPECT_EQ(kyrAddUint8Property(&fHandle, "Size", 1), kyrStatusTypeMismatch);
    EXPECT_EQ(fLog.TakeLines(), TLines({"0:kyrAddProperty: CIM class Disk threw exception kyrStatusNotFound name='Nam'",
                                        "0:AddProperty: CIM class Disk threw exception kyrStatusNotFound",
                                        "0:kyrAddProperty: CIM class Disk threw exception kyrStatusInvalidDateTime",
                                        "0:SetValue: decl is type uint16 but value is type uint8",
                                        "0:AddProperty: CIM class Disk threw exception kyrStatusTypeMismatch"}));
    OpenNamed();
    EXPECT_TRUE(StoredDisks().empty());
    EXPECT_EQ(Open(), kyrStatusOK);
    EXPECT_EQ(StoredDisks().size(), 1u);
}

TEST_F(InstanceCallsTest, WhatCannotBeTracedLeavesTheCallAsAnException) {
    Open();
    const kyrIOHandle io = &fHandle;
    TCIMValue null = Null(CIM::eCIMUint16);
    TCIMDateTime never;
    TCIMReference classless(&fContainer);
    std::vector<TCIMValue> list = {TCIMValue(1u)};
    // The lines are dropped at the first threshold.
    for (const kyrLogSeverity threshold : {kyrLogDebug, kyrLogVerbose}) {
        fLog.Logger().SetLogThreshold(threshold);
        EXPECT_EQ(StatusOf([&] { kyrAddCIMValueProperty(io, "Size", &null); }), kyrStatusValueIsNULL);
        EXPECT_EQ(StatusOf([&] { kyrAddDateTimeProperty(io, "Date", &never); }), kyrStatusInvalidDateTime);
        EXPECT_EQ(StatusOf([&] { kyrAddReferenceProperty(io, "Date", &classless); }), kyrStatusInvalidReference);
        EXPECT_EQ(StatusOf([&] { kyrAddArrayProperty(io, "Lists", &list); }), kyrStatusNotFound);
        EXPECT_EQ(StatusOf([&] { kyrAddArrayProperty(io, "List", &list); }), kyrStatusInvalidProperty);
    }
}

TEST_F(InstanceCallsTest, ThresholdChangesNoOutcome) {
    std::vector<TCIMValue> values = {TCIMValue("a"), TCIMValue(1u), TCIMValue(0.5f), TCIMValue(To(fDisk)),
                                     TCIMValue(TCIMDateTime())};
    for (int type = CIM::eCIMBoolean; type <= CIM::eCIMReference; ++type) {
        const auto scalar = static_cast<CIM::ECIMType>(type);
        if (scalar == CIM::eCIMChar) continue;  // cannot be copied
        values.push_back(Null(scalar));
        values.push_back(Null(scalar, 1));
        values.push_back(TCIMValue(scalar, 0, {Null(scalar)}));
    }
    Open();
    const auto outcomes = [&](kyrLogSeverity threshold) {
        fLog.Logger().SetLogThreshold(threshold);
        TLines texts;
        for (TCIMValue& value : values)
            for (const char* name : {"Name", "Size", "List", "None", "no name"})
                texts.push_back(Outcome([&] {
                    const kyrStatusCode status = kyrAddCIMValueProperty(&fHandle, name, &value);
                    fLog.Logger().OutputLogEntry(nullptr, kyrLogError, kyrTranslateStatusCode(status));
                }));
        return texts;
    };
    EXPECT_EQ(outcomes(kyrLogError), outcomes(kyrLogVerbose));
}

TEST_F(InstanceCallsTest, TheNextClassStoresTheOpenInstanceFirst) {
    fSchema.AddClass("Thing", {}, nullptr, {"ABSTRACT"});
    OpenNamed();
    EXPECT_EQ(Open("Tape"), kyrStatusNotFound);
    EXPECT_EQ(fLog.TakeLines(), TLines{"0:kyrAddClass: GetClass(Tape) threw exception kyrStatusNotFound"});
    EXPECT_EQ(StoredDisks().size(), 1u);
    // The stored one is still the current one, so the next class stores it once more.
    EXPECT_EQ(kyrAddUint16Property(&fHandle, "Size", 9), kyrStatusOK);
    EXPECT_EQ(Open("Thing"), kyrStatusOK);
    EXPECT_EQ(StoredDisks(), std::vector<TCIMInstance*>(2, StoredDisks()[0]));
    EXPECT_EQ(Open("disk"), kyrStatusOK);
}

TEST_F(InstanceCallsTest, AnInstanceWithoutItsKeyStaysOpen) {
    Open();
    TCIMInstance* const first = fHandle.fCurrentInstance;
    EXPECT_EQ(Open("Tape"), kyrStatusInvalidInstance);
    EXPECT_EQ(fHandle.fCurrentInstance, first);
    EXPECT_EQ(fLog.TakeLines(), TLines({"0:Instance Disk: key property Name is NULL",
                                        "0:kyrAddClass: CIM class Disk threw exception kyrStatusInvalidInstance"}));
    kyrAddStringProperty(&fHandle, "Name", "a");
    EXPECT_EQ(Open(), kyrStatusOK);
    EXPECT_EQ(StoredDisks(), std::vector<TCIMInstance*>{first});
}

TEST_F(InstanceCallsTest, AnInstanceThatItsClassDestroyedIsForgotten) {
    TCIMClass& reel = fSchema.AddClass("Reel", {Key("Name"), {"Other", TCIMValue("x")}});
    OpenNamed("Reel");
    reel.GetPropertyDecl("Name")->SetName("Other");  // a path can no longer be made
    EXPECT_EQ(Open(), kyrStatusInvalidOpSequence);
    EXPECT_EQ(fLog.TakeLines().back(), "0:kyrAddClass: CIM class Reel threw exception kyrStatusInvalidOpSequence");
    EXPECT_EQ(fHandle.fCurrentInstance, nullptr);
    EXPECT_EQ(Open(), kyrStatusOK);
}

TEST_F(InstanceCallsTest, AllocationFailuresNameTheirClass) {
    fSchema.AddClass("Stamped", {Key("Id"), {"DateTimeOfCollection", Null(CIM::eCIMString)}});
    EXPECT_EQ(Open("Stamped"), kyrStatusTypeMismatch);
    EXPECT_EQ(fLog.TakeLines().back(),
              "0:kyrAddClass: Allocate instance (CIM class Stamped) threw exception kyrStatusTypeMismatch");
    for (const char* previous : {"", "Disk"}) {
        if (*previous) OpenNamed(previous);
        fContainer.fOut = true;
        EXPECT_EQ(Open("Stamped"), kyrStatusOutOfMemory);
        EXPECT_EQ(fLog.TakeLines(), TLines{std::string("0:kyrAddClass: CIM class ") + previous + ": no memory"});
        fContainer.fOut = false;
    }
    EXPECT_EQ(StoredDisks().size(), 1u);
}

// What the log leaves out: the property of a value, the element of an array, the text of a date-time.
TEST_F(InstanceCallsTest, RefusedCallsAreObservedWithWhatTheyWereGiven) {
    TLines calls;
    TRefusedCall::Observe([&](const TRefusedCall& call) {
        EXPECT_NE(call.status, kyrStatusOK);
        calls.push_back(call.call + "/" + call.className + "/" + call.name + "/" + call.given);
    });
    std::vector<TCIMValue> texts = {TCIMValue("a")};
    TCIMDateTime never;
    kyrAddUint32Property(&fHandle, "Size", 1);
    Open("Disc");
    Open();
    kyrAddUint32Property(&fHandle, "Size", 1);
    kyrAddProperty(&fHandle, "Date", "soon");
    kyrAddStringProperty(&fHandle, "Name", nullptr);
    EXPECT_THROW(kyrAddArrayProperty(&fHandle, "List", &texts), TKYRException);
    EXPECT_THROW(kyrAddArrayProperty(&fHandle, "Lists", &texts), TKYRException);
    EXPECT_THROW(kyrAddDateTimeProperty(&fHandle, "Date", &never), TKYRException);
    kyrSetDateTimeString(&never, "soon");
    kyrAddStringProperty(&fHandle, "Name", "a");  // is not refused
    TRefusedCall::Observe(nullptr);
    kyrAddUint32Property(&fHandle, "Size", 1);
    EXPECT_EQ(calls, (TLines{"kyrAddUint32Property//Size/uint32", "kyrAddClass/Disc//",
                             "kyrAddUint32Property/Disk/Size/uint32", "kyrAddProperty/Disk/Date/soon",
                             "kyrAddStringProperty/Disk/Name/", "kyrArrayAddString/Disk/List/string",
                             "kyrAddArrayProperty/Disk/Lists/", "kyrAddDateTimeProperty/Disk/Date/datetime",
                             "kyrSetDateTimeString///soon"}));
}

TEST_F(InstanceCallsTest, EachFillingCallWritesATraceLine) {
    TempFolder folder;
    fLog.Logger().SetLogFilename(folder.Path() + "/log");
    fLog.Logger().SetLogThreshold(kyrLogVerbose);
    int asked = 0;
    // The logger asks the plugin for its name while a trace line is being written; a call made there must not spoil it.
    fPlugin.fWhenAsked = [&] {
        if (++asked == 2) kyrAddUint16Property(&fHandle, "Size", 70000);
    };
    const std::string big(100000, 'x');
    Open();
    kyrAddProperty(&fHandle, "Name", "a");
    kyrAddStringProperty(&fHandle, "Name", big.c_str());
    EXPECT_EQ(ReadFile(folder.Path() + "/log"),
              "-- ORQ Log Opened ----------------------------\n"
              "KYR_fake: [Verbose] kyrAddClass(Disk)\n"
              "KYR_fake: [Verbose] kyrAdd<>Property(Size, value=4464)\n"
              "KYR_fake: [Verbose] kyrAddProperty(Name, value=a)\n"
              "KYR_fake: [Verbose] kyrAdd<>Property(Name, value=" +
                  big + ")\n");
    EXPECT_EQ(fLog.TakeLines(), TLines());
}

}  // namespace
