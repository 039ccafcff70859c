#include "kyr/TCIMValue.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <locale>
#include <sstream>

#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"
#include "model/TCIMValueTransfer.h"
#include "support/TestSupport.h"

namespace {
using TType = TCIMValue::TCIMType;
using TValues = std::vector<TCIMValue>;
using TRead = std::function<void(const TCIMValue&)>;
using TUint8 = unsigned char;

TType::ECIMType ArrayOf(TType::ECIMType type) { return static_cast<TType::ECIMType>(type | TType::eCIMArrayFlag); }
TCIMValue Array(TType::ECIMType type, unsigned int size, const TValues& values) { return {type, size, values}; }

class TCIMValueTest : public LoggedTest {
protected:
    template <typename T>
    static std::pair<TCIMValue, TRead> Sample(const T& value) {
        return {value, [](const TCIMValue& read) { (void)read.operator T(); }};
    }
    static TCIMValue FromText(TType type, std::string text) {
        TContainer container;
        return TCIMValue(type, text, container);
    }
    /// In each base, "-" where it has none.
    static std::string Printed(const TCIMValue& value) {
        std::string texts;
        for (const TUint8 base : {10, 16, 8, 2})
            if (StatusOf([&] { texts += value.ToString(base) + '|'; }) == kyrStatusNotSupported) texts += '-';
        return texts;
    }
    /// Type, array size and content, "?" for one that cannot be printed.
    static std::string Described(const TCIMValue& value) {
        std::ostringstream text;
        if (value.GetType() != TType::eCIMNone) text << value.GetType();
        text << (value.IsArray() ? "[" : "(") << value.GetMaxArraySize() << ") ";
        if (value.IsNull() || StatusOf([&] { text << value.ToString(10); }) != kyrStatusOK)
            text << (value.IsNull() ? "NULL" : "?");
        return text.str();
    }

    /// All that hold of the operators between the two.
    static std::string Relations(const TCIMValue& a, const TCIMValue& b) {
        return std::string(a < b ? "< " : "") + (a <= b ? "<= " : "") + (a > b ? "> " : "") + (a >= b ? ">= " : "") +
               (a == b ? "== " : "") + (a != b ? "!= " : "");
    }

    // One value and the reading for each type that has a body, in the order of the type numbers.
    // clang-format off
    const std::vector<std::pair<TCIMValue, TRead>> fSamples = {
        Sample(true), Sample(TUint8(200)), Sample<signed char>(-100), Sample<unsigned short>(171), Sample<short>(-171),
        Sample(1u), Sample(-1), Sample(1ul), Sample(-1l), Sample(1.5f), Sample(1.5), Sample(std::string("text")),
        Sample(TCIMDateTime(1, 2, 3, 4, 5)),
        {Array(TType::eCIMUint8, 0, {}), [](const TCIMValue& read) { (void)read.operator TValues&(); }}};
    // clang-format on
};
}  // namespace

TEST_F(TCIMValueTest, ReadsBackAsItsOwnTypeOnly) {
    for (size_t i = 0; i < fSamples.size(); ++i) {
        for (size_t j = 0; j < fSamples.size(); ++j) {
            const kyrStatusCode status = StatusOf([&] { fSamples[j].second(fSamples[i].first); });
            EXPECT_EQ(status, i == j ? kyrStatusOK : kyrStatusTypeMismatch) << i << " read as " << j;
        }
        EXPECT_EQ(StatusOf([&] { fSamples[i].second(TCIMValue(TType::eCIMUint8, 0)); }), kyrStatusValueIsNULL);
    }
}

TEST_F(TCIMValueTest, MovesDoWhatCopiesDo) {
    for (const auto& sample : fSamples) {
        TCIMValue source(sample.first), target, assigned(1.25);
        TCIMValueTransfer::TakeOver(target, source);
        EXPECT_EQ(target, sample.first) << Described(target);
        EXPECT_EQ(source, TCIMValue()) << Described(source);
        TCIMValueTransfer::Assign(assigned, target);
        EXPECT_EQ(Described(assigned), Described(sample.first));
    }
}

TEST_F(TCIMValueTest, NamesAndNumbersTypes) {
    const std::string names =
        "boolean uint8 sint8 uint16 sint16 uint32 sint32 uint64 sint64 real32 real64 char string datetime reference ";
    std::ostringstream texts;
    for (int number = -1; number <= 33; ++number) {
        const TType type(static_cast<TType::ECIMType>(number));
        if (StatusOf([&] { texts << type << ' '; }) == kyrStatusTypeMismatch) texts << "- ";
        if (number < 1 || number == TType::eCIMChar || number >= TType::eCIMReference) continue;
        std::string name = type.ToString();
        EXPECT_EQ(TType(name), number) << name;
        name[1] = static_cast<char>(toupper(name[1]));
        EXPECT_EQ(TType(name), number) << name;
    }
    EXPECT_EQ(texts.str(), "- - " + names + "- " + names + "- - ");
    for (const std::string none : {"", "char", "reference", "uint8 ", "uint", "uint8[]"})
        EXPECT_EQ(StatusOf([&] { TType{none}; }), kyrStatusTypeMismatch) << none;
}

TEST_F(TCIMValueTest, NoNamesButThoseOfTypesAreRead) {
    TLines names;
    for (int number = TType::eCIMBoolean; number < TType::eCIMReference; ++number)
        if (number != TType::eCIMChar) names.push_back(TType(static_cast<TType::ECIMType>(number)).ToString());
    for (const std::string& original : names)
        for (size_t i = 0; i < original.size(); ++i)
            for (int byte = 0; byte < 256; ++byte) {
                std::string name = original;
                name[i] = static_cast<char>(byte);
                const bool isRead = StatusOf([&] { TType{name}; }) == kyrStatusOK;
                name[i] = static_cast<char>(tolower(byte));
                EXPECT_EQ(isRead, std::count(names.begin(), names.end(), name) != 0) << name;
            }
}

TEST_F(TCIMValueTest, PrintsInEightTenAndSixteen) {
    // clang-format off
    const std::pair<TCIMValue, const char*> cases[] = {
        {true, "true|true|true|-"}, {false, "false|false|false|-"},
        {TUint8(10), "10|0A|12|-"}, {TUint8(8), "8|08|10|-"}, {static_cast<unsigned short>(171), "171|00AB|253|-"},
        {0u, "0|00000000|0|-"}, {4294967295u, "4294967295|FFFFFFFF|37777777777|-"},
        {~0ul, "18446744073709551615|FFFFFFFFFFFFFFFF|1777777777777777777777|-"},
        {static_cast<signed char>(65), "65|---"}, {static_cast<short>(-32768), "-32768|---"}, {-1, "-1|---"},
        {std::numeric_limits<long>::min(), "-9223372036854775808|---"},
        {0.1f, "0.1|---"}, {1234567.0, "1.23457e+06|---"}, {100000.0, "100000|---"}, {-2.5e-7, "-2.5e-07|---"},
        {std::numeric_limits<double>::infinity(), "inf|---"}, {"a \"b\"", "a \"b\"|a \"b\"|a \"b\"|a \"b\"|"},
        {Array(TType::eCIMUint8, 0, {}), "{  }|{  }|{  }|{  }|"},
        {Array(TType::eCIMUint32, 0, {9u, 10u}), "{ 9, 10 }|{ 00000009, 0000000A }|{ 11, 12 }|-"},
    };
    // clang-format on
    for (const auto& [value, printed] : cases) EXPECT_EQ(Printed(value), printed);
    const TCIMValue withNull = Array(TType::eCIMUint32, 0, {1u, TCIMValue(TType::eCIMUint32, 0)});
    EXPECT_EQ(StatusOf([&] { withNull.ToString(10); }), kyrStatusValueIsNULL);
    for (double real = 1e-320; real < 1e300; real *= -3.7) {
        std::ostringstream stream;
        stream << real << "|---" << static_cast<float>(real) << "|---";
        EXPECT_EQ(Printed(real) + Printed(static_cast<float>(real)), stream.str());
    }
}

TEST_F(TCIMValueTest, ComesFromText) {
    // clang-format off
    const std::tuple<TType::ECIMType, const char*, const char*> cases[] = {
        {TType::eCIMBoolean, "true", "true"}, {TType::eCIMBoolean, "TRUE", "false"}, {TType::eCIMBoolean, "", "false"},
        {TType::eCIMUint8, "0x10", "16"}, {TType::eCIMUint8, "010", "8"}, {TType::eCIMUint8, "300", "44"},
        {TType::eCIMSint8, "200", "-56"}, {TType::eCIMUint16, "70000", "65535"}, {TType::eCIMSint16, "-7", "-7"},
        {TType::eCIMUint32, " 12abc", "12"}, {TType::eCIMSint32, "junk", "0"}, {TType::eCIMSint64, "-0x10", "-16"},
        {TType::eCIMUint64, "18446744073709551615", "18446744073709551615"}, {TType::eCIMReal32, "1.5e3", "1500"},
        {TType::eCIMReal64, "-0.25 m", "-0.25"}, {TType::eCIMString, " as is ", " as is "},
        {TType::eCIMDateTime, "00000001020304.000005:000", "00000001020304.000005:000"},
        {TType::eCIMDateTime, "today", "kyrStatusInvalidDateTime"},
        {ArrayOf(TType::eCIMUint8), "1", "kyrStatusTypeMismatch"},
        {TType::eCIMReference, "A.b=\"c\"", "kyrStatusNotImplemented"}, {TType::eCIMNone, "1", "kyrStatusTypeMismatch"},
        {TType::eCIMChar, "1", "kyrStatusTypeMismatch"},
    };
    // clang-format on
    for (const auto& [type, text, expected] : cases) {
        TCIMValue value(text);
        const std::string outcome = Outcome([&, t = type, from = text] { value = FromText(t, from); });
        EXPECT_EQ(outcome.empty() ? value.ToString(10) : outcome, expected) << text;
        EXPECT_EQ(value.GetType(), outcome.empty() ? type : TType::eCIMString) << text;
    }
}

TEST_F(TCIMValueTest, IsWhatAnAssignmentLeavesEvenOneThatItRefuses) {
    const TCIMValue none, null(TType::eCIMUint8, 0), day(TCIMDateTime(1, 0, 0, 0, 0)),
        moment(TCIMDateTime("20040101000000.000000+000"));
    const TCIMValue texts = Array(TType::eCIMString, 0, {"first", "second"});
    const auto array = [](TType::ECIMType type, unsigned int size) { return Array(type, size, {}); };
    const std::string refused =
        "kyrStatusInvalidProperty 0:ERROR: Attempting to create array of type uint8, but element is of type ";
    const std::string noClass = "kyrStatusInvalidReference 0:GetClass() called before container set";
    TValues characters, mixed{TUint8(1), 2u}, empty{none};
    characters.emplace_back(TType::eCIMChar, 0u);
    TCIMValue source;
    // clang-format off
    const std::tuple<TCIMValue, std::function<void(TCIMValue&)>, std::string> cases[] = {
        {5u, [&](auto& v) { v = none; }, "kyrStatusTypeMismatch -> (0) NULL"},
        {5u, [&](auto& v) { TCIMValueTransfer::Assign(v, source); }, "kyrStatusTypeMismatch -> (0) NULL"},
        {none, [&](auto& v) { v = none; }, " -> (0) NULL"},
        {none, [&](auto&) { TCIMValue copy(characters[0]); }, "kyrStatusTypeMismatch -> (0) NULL"},
        {day, [&](auto& v) { v = moment; }, "kyrStatusInvalidDateTime -> datetime(0) 00000001000000.000000:000"},
        {std::nan(""), [](auto& v) { const TCIMValue& same = v; v = same; }, " -> real64(0) nan"},
        {array(TType::eCIMUint8, 7), [&](auto& v) { v = array(TType::eCIMUint8, 3); }, " -> uint8[7) {  }"},
        {array(TType::eCIMUint8, 7), [&](auto& v) { v = array(TType::eCIMUint16, 3); }, " -> uint16[3) {  }"},
        {array(TType::eCIMUint8, 7), [](auto& v) { v.SetNullValue(TType::eCIMUint8, 9); }, " -> uint8(7) NULL"},
        {5u, [](auto& v) { v = TCIMValue(TType::eCIMUint8, 4); }, " -> uint8[4) NULL"},
        {texts, [](auto& v) { v.Set(TType::eCIMString, 2, v.operator TValues&()); }, " -> string[2) { first, second }"},
        {texts, [](auto& v) { v = v.operator TValues&()[1]; }, " -> string(0) second"},
        {texts, [](auto& v) { v.operator TValues&()[0] = v; }, " -> string[0) { { first, second }, second }"},
        {texts, [](auto& v) { v.operator TValues&()[1].Set(TType::eCIMString, 2, v.operator TValues&()); },
         " -> string[0) { first, { first, second } }"},
        {none, [&](auto& v) { v.Set(ArrayOf(TType::eCIMUint8), 0, TValues{null}); }, " -> uint8[0) ?"},
        {none, [&](auto& v) { v.Set(TType::eCIMUint8, 4, mixed); }, refused + "uint32. -> uint8[4) { 1, 2 }"},
        {5u, [&](auto& v) { TCIMValueTransfer::SetArray(v, TType::eCIMUint8, 2, mixed); },
         refused + "uint32. -> uint8[2) { 1, 2 }"},
        {none, [&](auto& v) { v.Set(TType::eCIMUint8, 0, empty); }, refused + ". -> uint8[0) ?"},
        {5u, [&](auto& v) { v.Set(TType::eCIMChar, 3, characters); }, "kyrStatusTypeMismatch -> char[3) NULL"},
        {5u, [](auto& v) { v = TCIMReference(nullptr); }, noClass + " -> uint32(0) 5"},
        {5u, [](auto& v) { v.Set(TCIMReference(nullptr)); }, noClass + " -> reference(0) ?"},
    };
    // clang-format on
    for (const auto& [start, set, expected] : cases) {
        TCIMValue value(start);
        const std::string outcome = Outcome([&, &act = set] { act(value); });
        EXPECT_EQ(outcome + " -> " + Described(value), expected);
    }
}

TEST_F(TCIMValueTest, OrdersNullThenTypesThenContent) {
    const TCIMValue null(TType::eCIMString, 0), other(TType::eCIMUint8, 0), notANumber(std::nan(""));
    // clang-format off
    const TValues ordered = {null, false, true, TUint8(200), -1, 0, 5, 2ul, 1.5f, "B", "a",
                             TCIMDateTime(1, 0, 0, 0, 0), Array(TType::eCIMBoolean, 0, {})};
    // clang-format on
    for (auto low = ordered.begin(); low != ordered.end(); ++low)
        for (auto high = low + 1; high != ordered.end(); ++high) {
            EXPECT_EQ(Relations(*low, *high), "< <= != ") << Described(*low) << " and " << Described(*high);
            EXPECT_EQ(Relations(*high, *low), "> >= != ") << Described(*high) << " and " << Described(*low);
        }
    const TCIMValue short4(TType::eCIMUint8, 4), short5(TType::eCIMUint8, 5);
    for (const auto& [a, b] : {std::pair(null, other), {other, null}, {short4, short5}, {notANumber, notANumber}})
        EXPECT_EQ(Relations(a, b), "> >= != ") << Described(a) << " and " << Described(b);
    EXPECT_EQ(StatusOf([&] { (void)(ordered.back() < ordered.back()); }), kyrStatusNotImplemented);
}

TEST_F(TCIMValueTest, IgnoresTheGlobalLocale) {
    struct TGrouping : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\1"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new TGrouping));
    EXPECT_EQ(TCIMValue(1.5).ToString(10) + FromText(TType::eCIMReal64, "1.5").ToString(10), "1.51.5");
    EXPECT_EQ(TCIMValue(12345u).ToString(10) + FromText(TType::eCIMUint32, " 12345").ToString(10), "1234512345");
    EXPECT_EQ(TCIMDateTime(12345678, 0, 0, 0, 5000).ToString(), "12345678000000.005000:000");
    std::locale::global(before);
}
