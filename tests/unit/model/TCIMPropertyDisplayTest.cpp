#include <random>

#include "model/TCIMPropertyImpl.h"
#include "support/OddLocale.h"
#include "support/SchemaBuilder.h"

namespace {
using TValues = std::vector<TCIMValue>;
using TQualifiers = std::vector<std::pair<std::string, TCIMValue>>;

TCIMValue Words(const TLines& texts) { return TCIMValue(CIM::eCIMString, 0, TValues(texts.begin(), texts.end())); }
TCIMValue Uint8(unsigned char value) { return value; }

class TCIMPropertyDisplayTest : public SchemaTest {
protected:
    TCIMProperty& Property(const TCIMValue& value, const TQualifiers& qualifiers) {
        fDeclaration = fSchema.NewProperty(*fContainer.GetRootClass(), {"Shown", value});
        for (const auto& [name, content] : qualifiers) fSchema.Qualify(*fDeclaration, name, content);
        fProperty = std::make_unique<TCIMProperty>(*fDeclaration, value);
        return *fProperty;
    }
    /// What ToString shows, with the status that it raises and the lines that it logs.
    std::string Shown(const TCIMValue& value, const TQualifiers& qualifiers) {
        std::string text;
        const std::string outcome = Outcome([&] { text = Property(value, qualifiers).ToString(); });
        return text + outcome;
    }
    std::string Shown() {
        std::string text;
        const std::string outcome = Outcome([&] { text = fProperty->ToString(); });
        return text + outcome;
    }
    std::string ShownWithoutKeptWords() {
        const TCIMPropertyImpl& body = *fProperty->GetBody();
        std::vector<TCIMPropertyImpl::TValueMapEntry> table;
        std::string text;
        const std::string outcome = Outcome([&] {
            text = body.BuildValueMapEntryArray(table, text) ? body.LookupInTable(body.Value(), table, text)
                                                             : body.ToStringWithQualifiers(body.Value());
        });
        return text + outcome;
    }
    TLines Listed(const TCIMValue& value, const TQualifiers& qualifiers) {
        return Property(value, qualifiers).ToStringVector();
    }

    std::unique_ptr<TCIMPropertyDecl> fDeclaration;
    std::unique_ptr<TCIMProperty> fProperty;
};
}  // namespace

TEST_F(TCIMPropertyDisplayTest, ScalesUnits) {
    // clang-format off
    // Number, unit, fixed unit, and what is shown in words and abbreviated.
    const std::tuple<unsigned long, const char*, const char*, const char*, const char*> cases[] = {
        {1024, "Bytes", "", "1,024 Bytes", "1,024 B"}, {1025, "Bytes", "", "1 Kilobytes", "1 KB"},
        {1280, "Bytes", "", "1.2 Kilobytes", "1.2 KB"}, {1792, "Bytes", "", "1.8 Kilobytes", "1.8 KB"},
        {1048576, "Bytes", "", "1,024 Kilobytes", "1,024 KB"}, {~0ul, "Bytes", "", "16,384 Petabytes", "16,384 PB"},
        {~0ul, "PetaBytes", "", "18,446,744,073,709,551,616 Petabytes", "18,446,744,073,709,551,616 PB"},
        {2048, "MegaBytes", "", "2 Gigabytes", "2 GB"}, {2048, "MegaBytes", "Mega", "2,048 Megabytes", "2,048 MB"},
        {5, "MegaBytes", "Kilo", "5 Megabytes", "5 MB"}, {1536, "KiloBytes", "Mega", "1.5 Megabytes", "1.5 MB"},
        {1000000, "KiloBytes", "Kilo", "1,000,000 Kilobytes", "1,000,000 KB"},
        {2048, "KiloBytes", "Peta", "2 Megabytes", "2 MB"}, {1, "Bytes", "Tera", "0 Terabytes", "0 TB"},
        {2048, "NanoBytes", "", "2 Microbytes", "2 uB"},
        {300, "Bytes per Second", "", "300 Bytes per second", "300 B/s"},
        {1500000, "Bits per Second", "", "1.5 Megabits per second", "1.5 Mbps"},
        {1000, "Bits per Second", "", "1,000 Bits per second", "1,000 bps"},
        {2048, "Bits", "", "2 Kilobits", "2 KBits"}, {2048, "bytes", "", "2048", "2048"},
        {2048, "MegaHertz", "", "2048", "2048"},
    };
    // clang-format on
    for (const auto& [number, units, fixed, words, abbreviated] : cases) {
        EXPECT_EQ(Shown(number, {{"UNITS", units}, {"DISPLAYFIXEDUNITS", fixed}}), words);
        EXPECT_EQ(Shown(number, {{"UNITS", units}, {"DISPLAYFIXEDUNITS", fixed}, {"ABBREVIATEUNITS", false}}),
                  abbreviated);
    }
}

TEST_F(TCIMPropertyDisplayTest, ShowsTimeSpans) {
    const std::tuple<unsigned long, const char*, const char*, const char*> cases[] = {
        {90, "Seconds", "1 minute 30 seconds ", "00:01:30.000"},
        {0, "Seconds", "", "00:00:00.000"},
        {93784, "Seconds", "1 day 2 hours 3 minutes 4 seconds ", "26:03:04.000"},
        {1500, "MilliSeconds", "1 second 500 milliseconds ", "00:00:01.500"},
        {93784000005, "MicroSeconds", "1 day 2 hours 3 minutes 4 seconds 5 microseconds ", "26:03:04.000"},
        {1002003999, "NanoSeconds", "1 second 2 milliseconds 3 microseconds ", "00:00:01.002"},
        {1, "KiloSeconds", "kyrStatusInvalidDateTime", "kyrStatusInvalidDateTime"},
    };
    for (const auto& [number, units, words, abbreviated] : cases) {
        EXPECT_EQ(Shown(number, {{"UNITS", units}}), words);
        EXPECT_EQ(Shown(number, {{"UNITS", units}, {"DISPLAYCPUTIME", false}}), abbreviated);
    }
}

TEST_F(TCIMPropertyDisplayTest, ShowsPlainValues) {
    const TCIMValue null = Null(CIM::eCIMUint8), half(static_cast<unsigned short>(171)), word = Words({"a"});
    // clang-format off
    const std::tuple<TCIMValue, TQualifiers, const char*> cases[] = {
        {null, {}, ""},         {null, {{"NULLDISPLAY", "Not available"}, {"Values", word}}, "Not available"},
        {null, {{"NULLDISPLAY", Uint8(5)}}, ""}, {half, {{"BASE", Uint8(16)}}, "00AB"},
        {half, {{"BASE", Uint8(16)}, {"UNITS", "Hertz"}}, "00AB"},
        {half, {{"BASE", 16u}}, "171"}, {half, {{"UNITS", Null(CIM::eCIMString)}}, "171"},
        {half, {{"BASE", Uint8(2)}}, "kyrStatusNotSupported"}, {-5, {{"BASE", Uint8(16)}}, "kyrStatusNotSupported"},
        {-5, {{"UNITS", "Bytes"}, {"Values", word}}, "-5"}, {"text", {{"UNITS", "Bytes"}}, "text"},
    };
    // clang-format on
    for (const auto& [value, qualifiers, shown] : cases) EXPECT_EQ(Shown(value, qualifiers), shown);
}

TEST_F(TCIMPropertyDisplayTest, ShowsArrays) {
    using TUint16 = unsigned short;
    const TCIMValue numbers(CIM::eCIMUint16, 0, {TUint16(1), TUint16(2048)});
    const TCIMValue holed(CIM::eCIMUint8, 0, {Uint8(1), Null(CIM::eCIMUint8)});
    const TQualifiers words = {{"Values", Words({"zero", "one"})}, {"NULLDISPLAY", "none"}};
    EXPECT_EQ(Shown(numbers, {{"BASE", Uint8(16)}, {"UNITS", "Bytes"}}), "{ 0001, 0800 }");
    EXPECT_EQ(Shown(numbers, words) + Shown(1u, words), "{ 1, 2048 }one");
    EXPECT_EQ(Listed(numbers, {{"UNITS", "Bytes"}}), (TLines{"1 Bytes", "2 Kilobytes"}));
    EXPECT_EQ(Listed(numbers, words), (TLines{"one", "2048"}));
    EXPECT_EQ(Listed(Null(CIM::eCIMUint8, 4), words), TLines{"none"});
    EXPECT_EQ(Listed(holed, {words[1]}), (TLines{"1", "none"}));
    EXPECT_EQ(StatusOf([&] { Listed(holed, words); }), kyrStatusValueIsNULL);
    EXPECT_EQ(Listed(1u, words), TLines{"1"});  // a scalar has no words here
}

TEST_F(TCIMPropertyDisplayTest, ShowsTheEarlierValueTheSameWay) {
    TCIMProperty& property = Property(2048u, {{"UNITS", "Bytes"}});
    EXPECT_EQ(property.PrevToString(), "2 Kilobytes");
    property.SetPrevValue(TCIMValue(1u));
    EXPECT_EQ(property.ToString() + property.PrevToString(), "2 Kilobytes1 Bytes");
    EXPECT_EQ(property.PrevToStringVector(), TLines{"1 Bytes"});
}

TEST_F(TCIMPropertyDisplayTest, FindsWords) {
    // clang-format off
    // Words, the map, and what is shown for 0, 1, 2, ...
    const std::tuple<TLines, TLines, TLines> cases[] = {
        {{"a", "b", "c"}, {"1", "3", ".."}, {"c", "a", "c", "b", "c"}},
        {{"a", "b", "c"}, {"0", "..4", "5"}, {"a", "b", "b", "b", "b", "c", "6"}},
        {{"a", "b", "c"}, {"1", "3..", "7"}, {"0", "a", "2", "b", "b", "b", "b", "c", "c"}},
        {{"a", "b", "c"}, {"..2", "0x4", "010"}, {"a", "a", "a", "3", "b", "5", "6", "7", "c", "9"}},
        {{"a", "b"}, {"2..3", "5"}, {"0", "1", "a", "a", "a", "b", "b"}},  // the 3 is not read, and the dots stay
        {{"a", "b"}, {"3 . .", "5"}, {"0", "1", "2", "a", "a", "b", "b"}},
        {{"a", "b"}, {"..", "1"}, {"a", "b", "a"}}, {{"a", "b"}, {"1", "1"}, {"0", "a"}},
        {{"a", "b"}, {"2", "..3"}, {"0", "1", "a", "b"}},
    };
    // clang-format on
    for (const auto& [words, map, shown] : cases)
        for (unsigned int i = 0; i < shown.size(); ++i)
            EXPECT_EQ(Shown(i, {{"Values", Words(words)}, {"ValueMap", Words(map)}}), shown[i]) << map[0] << ' ' << i;
    const TQualifiers plain = {{"Values", Words({"no", "yes"})}, {"BASE", Uint8(16)}};
    EXPECT_EQ(Shown(true, plain) + Shown(2u, plain) + Shown(true, {{"Values", Words({"no"})}}), "yes2true");
}

TEST_F(TCIMPropertyDisplayTest, FallsBackToTheNumberWhenATableIsBroken) {
    const TCIMValue words = Words({"a", "b"}), nullWord(CIM::eCIMString, 0, {"a", Null(CIM::eCIMString)});
    const std::string has = "1 3:Property Shown has ", open = " VALUEMAP entry after another entry that ends with ..!";
    // clang-format off
    const std::pair<TQualifiers, std::string> cases[] = {
        {{{"Values", "a"}}, has + "a VALUE qualifier that isn't a string!"},
        {{{"Values", words}, {"ValueMap", "1"}}, has + "a VALUEMAP qualifier that isn't a string!"},
        {{{"Values", words}, {"ValueMap", Words({"1"})}},
         has + "VALUE and VALUEMAP qualifiers that aren't the same size!"},
        {{{"Values", words}, {"ValueMap", Words({"1..", ".."})}}, has + "a .." + open},
        {{{"Values", words}, {"ValueMap", Words({"1..", "..5"})}}, has + "a ..<value>" + open},
        {{{"Values", Words({"a", "b", "c", "d"})}, {"ValueMap", Words({"1", "3..", "7", ".."})}}, has + "a .." + open},
        {{{"Values", Null(CIM::eCIMString, 2)}}, "1"}, {{{"Values", nullWord}}, "kyrStatusValueIsNULL"},
        {{{"ValueMap", words}}, "1"},
    };
    // clang-format on
    for (const auto& [qualifiers, shown] : cases) EXPECT_EQ(Shown(1u, qualifiers), shown);
}

TEST_F(TCIMPropertyDisplayTest, LooksForQualifiersByTheNamesOfTheLocale) {
    const std::tuple<TQualifiers, const char*, const char*> cases[] = {
        {{{"UNITS", "Bytes"}}, "2 Kilobytes", "2048"},
        {{{"VALUES", Words({"no"})}, {"VALUEMAP", Words({"2048"})}}, "no", "2048"},
    };
    for (const auto& [qualifiers, found, notFound] : cases) {
        EXPECT_EQ(Shown(2048u, qualifiers), found);
        {
            const TOddLocale locale;
            EXPECT_EQ(Shown(), notFound) << "attached under another name";
            EXPECT_EQ(Shown(2048u, qualifiers), found);
        }
        EXPECT_EQ(Shown(), notFound);
    }
}

// A declaration keeps its words until a qualifier changes. A change of a qualifier elsewhere has them made anew, so
// that both can be compared.
TEST_F(TCIMPropertyDisplayTest, KeptWordsAreThoseThatWouldBeMade) {
    std::mt19937 random;
    const auto below = [&](unsigned int limit) { return static_cast<unsigned int>(random() % limit); };
    const auto anyWords = [&] {
        static const char* const kTexts[] = {"1", "2..", "..", "..3", "0", "word"};
        TLines texts(below(2) + 1);
        for (std::string& text : texts) text = kTexts[below(std::size(kTexts))];
        return below(8) == 0 ? TCIMValue("text") : Words(texts);
    };
    struct THosts : TCIMPropertyDecl {
        using TCIMPropertyDecl::TCIMPropertyDecl;
        void AddQualifier(TCIMQualifier& qualifier) override { TCIMPropertyDecl::AddQualifier(qualifier); }
    };
    for (int round = 0; round < 100; ++round) {
        Property(TCIMValue(1u), {});
        if (round % 2 == 0) {
            fDeclaration = std::make_unique<THosts>("Hosts", *fContainer.GetRootClass(), TCIMValue(1u));
            fProperty = std::make_unique<TCIMProperty>(*fDeclaration);
        }
        std::unique_ptr<TOddLocale> locale;
        for (int i = 0; i < 40; ++i) {
            const char* const name = below(2) == 0 ? "Values" : "VALUEMAP";
            TCIMQualifier* const present = fDeclaration->FindQualifier(name);
            const unsigned int change = below(8);
            if (change == 0) locale.reset(locale ? nullptr : new TOddLocale);
            if (change == 1 && present != nullptr) fDeclaration->RemoveQualifier(*present);
            if (change < 4 && present != nullptr && change > 1) present->SetValue(anyWords());
            if (change == 4) fSchema.Qualify(*fDeclaration, name, anyWords());
            fProperty->SetValue(TCIMValue(below(4)));
            ASSERT_EQ(Shown(), ShownWithoutKeptWords()) << round << ' ' << i;
        }
    }
}
