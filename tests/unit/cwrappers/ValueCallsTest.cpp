#include "cwrappers/kyriIOHandle.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/kyrPlugin.h"
#include "support/SchemaBuilder.h"

namespace {

/// What a call must have made of a number that is too wide for it.
template <typename TValue>
TCIMValue Cut(long value) {
    return TCIMValue(static_cast<TValue>(value));
}

class ValueCallsTest : public SchemaTest {
protected:
    kyriIOHandle fHandle{&fContainer, nullptr};
};

// Each type has a call for a property, one for a key and one for an element.
#define EXPECT_TAKEN(Type, key, value, expected)                                 \
    EXPECT_EQ(kyrAdd##Type##Property(&fHandle, key, value), kyrStatusOK);        \
    EXPECT_EQ(fHandle.fCurrentInstance->GetProperty(key)->GetValue(), expected); \
    EXPECT_EQ(kyrReferenceAdd##Type(ref, key, value), kyrStatusOK);              \
    EXPECT_EQ(ref->EnumerateKeyBindings().at(key), expected);                    \
    EXPECT_EQ(kyrArrayAdd##Type(array, value), kyrStatusOK);                     \
    EXPECT_EQ(array->back(), expected)

TEST_F(ValueCallsTest, ValuesOfAllTypesAreTakenAndCutToTheWidthOfTheCall) {
    std::vector<PropertySketch> keys = {KeyReference("end", fSchema.AddClass("End", {Key("Name")}))};
    for (int number = CIM::eCIMBoolean; number <= CIM::eCIMDateTime; ++number) {
        const auto type = static_cast<CIM::ECIMType>(number);
        if (type != CIM::eCIMChar) keys.push_back(Key(CIM(type).ToString(), Null(type)));
    }
    fSchema.AddClass("Keys", keys, nullptr, {"ASSOCIATION"});
    kyrCIMReference ref = nullptr;
    kyrCIMValueArray array = nullptr;
    ASSERT_EQ(kyrNewCIMReference(&ref, &fHandle), kyrStatusOK);
    ASSERT_EQ(kyrNewCIMValueArray(&array), kyrStatusOK);
    ASSERT_EQ(kyrAddClass(&fHandle, "Keys"), kyrStatusOK);
    ASSERT_EQ(kyrSetReferenceClassName(ref, "keys"), kyrStatusOK);
    TCIMDateTime day(1, 0, 0, 0, 0);
    TCIMReference end(&fContainer);
    end.SetClassName("End");

    EXPECT_TAKEN(Boolean, "boolean", 2, TCIMValue(true));
    EXPECT_TAKEN(Uint8, "uint8", 300, Cut<unsigned char>(44));
    EXPECT_TAKEN(Sint8, "sint8", 200, Cut<signed char>(-56));
    EXPECT_TAKEN(Uint16, "uint16", 70000, Cut<unsigned short>(4464));
    EXPECT_TAKEN(Sint16, "sint16", 40000, Cut<short>(-25536));
    EXPECT_TAKEN(Uint32, "uint32", 4294967295u, TCIMValue(4294967295u));
    EXPECT_TAKEN(Sint32, "sint32", -1, TCIMValue(-1));
    EXPECT_TAKEN(Uint64, "uint64", 1ul << 63, TCIMValue(1ul << 63));
    EXPECT_TAKEN(Sint64, "sint64", -5, TCIMValue(-5l));
    EXPECT_TAKEN(String, "string", "", TCIMValue(""));
    EXPECT_TAKEN(DateTime, "datetime", &day, TCIMValue(day));
    EXPECT_TAKEN(Reference, "end", &end, TCIMValue(end));

    EXPECT_EQ(array->size(), 12u);
    EXPECT_EQ(kyrDeleteCIMReference(ref), kyrStatusOK);
    EXPECT_EQ(kyrDeleteCIMValueArray(array), kyrStatusOK);
    EXPECT_TRUE(fLog.TakeLines().empty());
    delete fHandle.fCurrentInstance;
}

TEST_F(ValueCallsTest, AReferenceRefusesWithoutWordsOfItsOwn) {
    TCIMReference ref(&fContainer), classless(&fContainer);
    std::vector<TCIMValue> array;
    EXPECT_EQ(kyrSetReferencePath(&ref, "x"), kyrStatusNotImplemented);
    EXPECT_EQ(kyrSetReferenceClassName(&ref, "Tape"), kyrStatusNotFound);
    EXPECT_EQ(fLog.TakeLines().size(), 0u);
    EXPECT_EQ(kyrReferenceAddUint8(&ref, "Name", 1), kyrStatusInvalidOpSequence);
    EXPECT_EQ(kyrReferenceAddReference(&ref, "Name", &classless), kyrStatusInvalidReference);
    EXPECT_EQ(StatusOf([&] { kyrArrayAddReference(&array, &classless); }), kyrStatusInvalidReference);
    EXPECT_EQ(fLog.TakeLines().size(), 3u);  // the reference's
}

TEST_F(ValueCallsTest, DateTimesAreSetFromNumbersAndText) {
    kyrCIMDateTime date = nullptr;
    ASSERT_EQ(kyrNewCIMDateTime(&date), kyrStatusOK);
    EXPECT_TRUE(date->IsNull());
    EXPECT_EQ(kyrSetDateTime(date, 65536 + 2004, 13, 31, 23, 59, 58, 7, 65536 - 60), kyrStatusOK);
    EXPECT_EQ(date->ToString(), "20041331235958.000007-060");
    EXPECT_EQ(kyrSetDateTimeInterval(date, 70000, 65536 + 23, 1, 2, 3), kyrStatusOK);
    EXPECT_EQ(kyrSetDateTimeInterval(date, 1, 24, 0, 0, 0), kyrStatusInvalidDateTime);
    EXPECT_EQ(date->ToString(), "00070000230102.000003:000");
    EXPECT_EQ(kyrSetDateTimeString(date, "20041231235959.000000+06*"), kyrStatusInvalidDateTime);
    EXPECT_EQ(kyrSetDateTimeString(date, "20041231235959.000000+060"), kyrStatusOK);
    EXPECT_EQ(date->GetUTCOffset(), 60);
    EXPECT_EQ(kyrGetLocalTime(date), kyrStatusOK);
    EXPECT_GE(date->GetYear(), 2024);
    EXPECT_EQ(kyrDeleteCIMDateTime(date), kyrStatusOK);
    EXPECT_TRUE(fLog.TakeLines().empty());
}

}  // namespace
