#include "cwrappers/kyriIOHandle.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/kyrPlugin.h"
#include "support/SchemaBuilder.h"
#include "unit/FakePlugin.h"

namespace {

class GuardTest : public SchemaTest {
protected:
    /// The calls have just been made: each must have failed with this one line.
    void Expect(const char* text, std::initializer_list<kyrStatusCode> statuses, const IPlugin* under = nullptr) {
        EXPECT_THAT(statuses, ::testing::Each(kyrStatusFail)) << text;
        for (const ILogger::TLogEntry& entry : fLog.Logger().GetLog()) EXPECT_EQ(entry.plugin, under) << text;
        EXPECT_EQ(fLog.TakeLines(), TLines(statuses.size(), std::string("0:") + text));
    }

    FakePlugin fPlugin{"fake"};
    kyriIOHandle fHandle{&fContainer, &fPlugin};
    std::vector<TCIMValue> fArray;
    TCIMReference fReference{&fContainer};
    TCIMDateTime fDate;
};

/// The calls for a type of number, and the type that the one for arrays names.
#define EXPECT_NUMBERS_REFUSED(Type, Named)                                                 \
    Expect("kyrArrayAdd" #Named ": NULL array parameter", {kyrArrayAdd##Type(nullptr, 1)}); \
    Expect("kyrReferenceAdd" #Type ": NULL ref and/or key parameter",                       \
           {kyrReferenceAdd##Type(nullptr, "k", 1), kyrReferenceAdd##Type(ref, nullptr, 1)})

TEST_F(GuardTest, NullParametersAreRefusedWithTheWordsOfTheCall) {
    const kyrIOHandle io = &fHandle;
    const kyrCIMValueArray array = &fArray;
    const kyrCIMReference ref = &fReference;
    const kyrCIMDateTime date = &fDate;
    const IPlugin* const plugin = &fPlugin;
    TCIMValue one(1u);

    Expect("kyrAddClass: NULL kyrIOHandle parameter", {kyrAddClass(nullptr, nullptr)});
    Expect("kyrAddClass: NULL name parameter", {kyrAddClass(io, nullptr)}, plugin);
    Expect("kyrAddProperty: NULL kyrIOHandle parameter", {kyrAddProperty(nullptr, nullptr, nullptr)});
    Expect("kyrAddProperty: NULL name and/or value parameter",
           {kyrAddProperty(io, nullptr, "v"), kyrAddProperty(io, "n", nullptr)}, plugin);
    Expect("kyrAddCIMValueProperty: NULL kyrIOHandle parameter",
           {kyrAddCIMValueProperty(nullptr, "n", nullptr), kyrAddBooleanProperty(nullptr, "n", 1),
            kyrAddStringProperty(nullptr, "n", "v")});
    Expect("kyrAddCIMValueProperty: NULL name parameter",
           {kyrAddCIMValueProperty(io, nullptr, &one), kyrAddSint64Property(io, nullptr, 1)}, plugin);
    Expect("kyrAddStringProperty: NULL value and/or name parameter",
           {kyrAddStringProperty(io, nullptr, "v"), kyrAddStringProperty(io, "n", nullptr)});
    Expect("kyrAddReferenceProperty: NULL name and/or pRef parameter",
           {kyrAddReferenceProperty(io, nullptr, ref), kyrAddReferenceProperty(io, "n", nullptr)});
    Expect("kyrAddDateTimeProperty: NULL name and/or pDateTime parameter",
           {kyrAddDateTimeProperty(io, nullptr, date), kyrAddDateTimeProperty(io, "n", nullptr)});
    Expect("kyrAddArrayProperty: NULL name and/or pArray parameter",
           {kyrAddArrayProperty(io, nullptr, array), kyrAddArrayProperty(nullptr, "n", nullptr)});

    Expect("kyrNewCIMValueArray: NULL array parameter", {kyrNewCIMValueArray(nullptr)});
    Expect("kyrDeleteCIMValueArray: NULL array parameter", {kyrDeleteCIMValueArray(nullptr)});
    EXPECT_NUMBERS_REFUSED(Boolean, Boolean);
    EXPECT_NUMBERS_REFUSED(Uint8, Uint8);
    EXPECT_NUMBERS_REFUSED(Sint8, Uint8);
    EXPECT_NUMBERS_REFUSED(Uint16, Uint16);
    EXPECT_NUMBERS_REFUSED(Sint16, Sint16);
    EXPECT_NUMBERS_REFUSED(Uint32, Uint32);
    EXPECT_NUMBERS_REFUSED(Sint32, Sint32);
    EXPECT_NUMBERS_REFUSED(Uint64, Uint64);
    EXPECT_NUMBERS_REFUSED(Sint64, Sint64);
    Expect("kyrArrayAddString: NULL array and/or value parameter",
           {kyrArrayAddString(nullptr, "v"), kyrArrayAddString(array, nullptr)});
    Expect("kyrArrayAddReference: NULL array and/or value parameter",
           {kyrArrayAddReference(nullptr, ref), kyrArrayAddReference(array, nullptr)});
    Expect("kyrArrayAddDateTime: NULL array and/or value parameter",
           {kyrArrayAddDateTime(nullptr, date), kyrArrayAddDateTime(array, nullptr)});

    Expect("kyrNewCIMReference: NULL kyrIOHandle parameter", {kyrNewCIMReference(nullptr, nullptr)});
    Expect("kyrNewCIMReference: NULL ref parameter", {kyrNewCIMReference(nullptr, io)}, plugin);
    Expect("kyrDeleteCIMReference: NULL ref parameter", {kyrDeleteCIMReference(nullptr)});
    Expect("kyrSetReferencePath: NULL ref and/or objectName parameter",
           {kyrSetReferencePath(nullptr, "p"), kyrSetReferencePath(ref, nullptr)});
    Expect("kyrSetReferenceClassName: NULL ref and/or className parameter",
           {kyrSetReferenceClassName(nullptr, "c"), kyrSetReferenceClassName(ref, nullptr)});
    Expect("kyrReferenceAddString: NULL ref, key and/or value parameter",
           {kyrReferenceAddString(nullptr, "k", "v"), kyrReferenceAddString(ref, nullptr, "v"),
            kyrReferenceAddString(ref, "k", nullptr)});
    Expect("kyrReferenceAddReference: NULL ref, key and/or value parameter",
           {kyrReferenceAddReference(ref, "k", nullptr)});
    Expect("kyrReferenceAddDateTime: NULL ref, key and/or value parameter",
           {kyrReferenceAddDateTime(ref, "k", nullptr)});

    Expect("kyrNewCIMDateTime: NULL datetime parameter", {kyrNewCIMDateTime(nullptr)});
    Expect("kyrDeleteCIMDateTime: NULL datetime parameter", {kyrDeleteCIMDateTime(nullptr)});
    Expect("kyrGetLocalTime: NULL datetime ", {kyrGetLocalTime(nullptr)});
    Expect("kyrSetDateTime: NULL datetime parameter", {kyrSetDateTime(nullptr, 2004, 1, 1, 0, 0, 0, 0, 0)});
    Expect("kyrSetDateTimeInterval: NULL datetime parameter", {kyrSetDateTimeInterval(nullptr, 1, 0, 0, 0, 0)});
    Expect("kyrSetDateTimeString: NULL datetime and/or str parameter",
           {kyrSetDateTimeString(nullptr, "x"), kyrSetDateTimeString(date, nullptr)});

    Expect("kyrGetSystemName: NULL name parameter", {kyrGetSystemName(nullptr)});
    Expect("kyrGetSystemCreationClassName: NULL name parameter", {kyrGetSystemCreationClassName(nullptr)});
}

}  // namespace
