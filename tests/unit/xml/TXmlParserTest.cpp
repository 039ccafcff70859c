#include "xml/TXmlParser.h"

#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <random>
#include <stdexcept>

#include "support/OddLocale.h"

namespace {

/// A text with the NUL bytes around it that the parser wants.
std::string Framed(const std::string& text) { return std::string(1, '\0') + text; }

/// Writes what it is told as one line of text: "<a b=1>", "</a>", "[text]", "!message@line".
struct TRecorder : TXmlParser {
    void StartElement(const char* name, TAttributes& attributes) override {
        fEvents += std::string("<") + name;
        for (const auto& [key, value] : attributes) fEvents += " " + key + "=" + value;
        fEvents += ">";
    }
    void EndElement(const char* name) override { fEvents += std::string("</") + name + ">"; }
    void processingInstruction(const char* target, const char* data) override {
        fEvents += std::string("?") + target + "," + data + "?";
    }
    void characters(const char* text, unsigned int length) override {
        EXPECT_EQ(text[length], '\0');
        fEvents += "[" + std::string(text, length) + "]";
    }
    void notationDecl(const char* name, const char* first, const char* second) override {
        fEvents += std::string(name) + first + second;
    }
    void FatalError(const char* message) override {
        fEvents += std::string("!") + message + "@" + std::to_string(GetCurLine());
        if (fIsFatal) throw std::runtime_error(message);
    }

    /// The events of a document, as far as it can be parsed.
    const std::string& Read(const std::string& document) {
        fText = Framed(document);
        try {
            Parse(&fText[1]);
        } catch (const std::runtime_error&) {
        }
        return fEvents;
    }

    using TXmlParser::fNext;
    using TXmlParser::fStart;
    std::string fText, fEvents;
    bool fIsFatal = true;
};

std::string EventsOf(const std::string& document, bool isFatal = true) {
    TRecorder recorder;
    recorder.fIsFatal = isFatal;
    return recorder.Read(document);
}

/// Events, and the documents that they come of.
using TOutcome = std::pair<std::string, std::vector<std::string>>;

void ExpectOutcomes(const std::vector<TOutcome>& outcomes, const std::string& begin = "", bool isFatal = true) {
    for (const auto& [events, documents] : outcomes)
        for (const std::string& document : documents)
            EXPECT_EQ(EventsOf(begin + document, isFatal), events) << document;
}

// clang-format off
TEST(TXmlParser, ReportsElementsAndTheirAttributesInOrderOfTheirLowerCasedNames) {
    ExpectOutcomes({
        {"<a></a>", {"<a></a>", "<a></ax \n>", "<a/><b/>"}},
        {"<A.b-c_d:1></A.b-c_d:1>", {"<A.b-c_d:1/>trailing <junk"}},
        {"<a b=2 c=3 z=1></a>", {"<a Z='1'\tB = \"2\"\r\nc='3' />"}},
        {"<a b=x>y c=\" d=' e= f=1\n\t2></a>", {"<a b='x>y' c='\"' d=\"'\" e='' f='1\n\t2'/>"}},
        {"<a><b x=1></b><b x=2 y=3></b><b></b><b y=4></b></a>", {"<a><b X='1'/><b x='2' Y='3'/><b/><b y='4'/></a>"}},
    });
}

TEST(TXmlParser, ReportsTextUnchangedRunByRunAndReferenceByReference) {
    ExpectOutcomes({
        {"<a>[x][y]</a>", {"<a>x<!-- <b> -- & -->y</a>"}},
        {"<a>[ \r\n][<][b][>]['][\"][&]</a>", {"<a> \r\n&lt;b&GT;&Apos;&quot;&amp;</a>"}},
        {"<a>[A][A][J][\xE9][\xAC]</a>", {"<a>&#65;&#x41;&#X4a;&#233;&#8364;</a>"}},
        {std::string("<a>[\0]</a>", 10), {"<a>&#256;</a>"}},
        {"<a>[x]?TBD,TBD?[w]</a>", {"<a>x<?y z?>w</a>"}},
        {"<a>[\xC3\xA4]]>]</a>", {"<a>\xC3\xA4]]></a>"}},
    });
}

TEST(TXmlParser, LeavesTheDocumentSilentlyWhereSomethingIsNotClosed) {
    ExpectOutcomes({
        {"<a>", {"<a><![CDATA[x]]></a>", "<a><?x</a>", "<a><!-"}},
        {"<a><b>", {"<a><b><!ELEMENT c></b></a>"}},
        {"<a>[x]", {"<a>x<!-- y</a>"}},
        {"!Unexpected character before element@1", {"<?xml ?><!DOCTYPE a"}},
    });
}

TEST(TXmlParser, ReadsThePrologBySpacing) {
    const std::vector<TOutcome> behindTheDeclaration = {
        {"<C></C>", {"\n<C/>", "\n\n<!-- c -->\n<C/>", "\r\n<!-- c -->\r\n<C/>", "<!-- c -->\n<C/>", "x <C/>",
                     "\n<!DOCTYPE x>\n<C/>"}},
        {"?TBD,TBD?<C></C>", {"<!-- c --><?p?><!-- d --><C/>"}},
        {"<C></C>?TBD,TBD??TBD,TBD?", {"<C/><!-- c --><?p?><?q?>"}},
        {"!Unexpected character in doctypedecl@1", {"<!doctype x><C/>"}},
        {"!Unexpected character in doctypedecl@2", {"\n<!-- c -->\n<C/>"}},
        {"!Invalid element/attribute name@2", {"\n<?pi?><C/>"}},
        {"!Unexpected character before element@1", {"", "xy<C/>", "<!DOCTYPE x [ <!ENTITY a 'b'> ]><C/>"}},
    };
    ExpectOutcomes(behindTheDeclaration, "<?xml version='1.0'?>");
    ExpectOutcomes({{"<C></C>", {"<?>\n<C/>"}}, {"!Invalid element/attribute name@1", {"<?never closed"}}});
}

TEST(TXmlParser, RefusesWithTheLineOfTheNextCharacter) {
    ExpectOutcomes({
        {"!Unexpected character before prolog@1", {"", "\xEF\xBB\xBF<a/>"}},
        {"!Unexpected character before prolog@2", {"\n<a/>"}},
        {"!Unexpected character before element@1", {"<"}},
        {"!Invalid element/attribute name@1", {"<!-- c --><a/>", "<a \xC3='1'/>", "<a "}},
        {"!Invalid element/attribute name@2", {"<\n"}},
        {"!Unexpected character between attribute name and value@2", {"<a\nbc"}},
        {"!Unexpected character after equals of attribute name@1", {"<a b=x/>"}},
        {"!Unexpected character in attribute value@1", {"<a b='x<y'/>", "<a b='x&amp;y'/>"}},
        {"!Attribute appears twice@2", {"<a b='1\n' B='2'/>"}},
        {"!Attribute appears twice@3", {"<a\nb='1'\nb\n='2'/>"}},
        {"!Unexpected character before end of element@1", {"<a", "<a b='1'c='2'/>", "<a / >"}},
        {"!Unexpected character before end of element@2", {"<a/\n>"}},
        {"<a>!Unexpected character before end of element@1", {"<a></a b>"}},
        {"<a>[\n\n]<b>!Start and end element names don't match@3", {"<a>\n\n<b></a>"}},
        {"<ab>!Start and end element names don't match@1", {"<ab></a>", "<ab></AB>"}},
        {"<a>!Invalid element/attribute name@1", {"<a></>"}},
        {"<a>[x\n]!Unexpected character where element expected@2", {"<a>x\n"}},
        {"<a>[x]!Unexpected character before element@1", {"<a>x<"}},
        {"<a>!Unknown entity reference@1", {"<a>&", "<a>&#1a;</a>", "<a>&#x1g;</a>"}},
        {"<a>!Unknown entity reference@2", {"<a>&amp\n;</a>"}},
        {"<a>!Invalid hex character@1", {"<a>&#;</a>", "<a>&#x;</a>"}},
    });
}

TEST(TXmlParser, GoesOnAsFarAsItCanWhenARefusalReturns) {
    ExpectOutcomes({
        {"!Unexpected character before prolog@1<a></a>", {"x<a/>"}},
        {"<a><b>!Start and end element names don't match@1", {"<a><b></c></b></a>"}},
        {"<a>!Unknown entity reference@1[z;b]</a>", {"<a>&zz;b</a>"}},
        {"<a>!Invalid hex character@1[\x05]</a>", {"<a>&#;5;</a>"}},
        {"<a>!Unknown entity reference@1!Unexpected character where element expected@1", {"<a>&#"}},
    }, "", false);
}

TEST(TXmlParser, LowersAttributeNamesAsTheLocaleSays) {
    const TOddLocale locale;
    ExpectOutcomes({
        {"<ID a.b_9=2 \xFD=1></ID>", {"<ID I='1' A.b_9='2'/>"}},
        {"<a>[>][&]</a>", {"<a>&GT;&AMP;</a>"}},
    });
}

// A line end right behind the name of an open element is not counted below it.
TEST(TXmlParser, CountsLinesWithoutTheLineEndsThatNamesHide) {
    ExpectOutcomes({
        {"<a><b>[\n]<c></c>[\n]!Unknown entity reference@4", {"<a\n><b\n>\n<c\n/>\n&x;</b></a>"}},
        {"<a><b></b>[\n]!Unknown entity reference@3", {"<a\n><b\n></b>\n&x;</a>"}},
    });
}
// clang-format on

TEST(TXmlParser, CountsOnFromItsLastCount) {
    struct TCounter : TRecorder {
        void StartElement(const char*, TAttributes&) override { Count(); }
        void EndElement(const char*) override { Count(); }
        void Count() {
            const unsigned int expected = 1 + static_cast<unsigned int>(std::count(fStart, fNext, '\n'));
            EXPECT_EQ(GetCurLine(), expected);
        }
    };
    TCounter().Read("<a\n>\n<b\n>\n<c\n d='\n'/>\n<d>\n</d></b\n>\n<e\n/></a\n>");
}

TEST(TXmlParser, ChangesNothingInTheTextButTheCaseOfAttributeNames) {
    TRecorder recorder;
    recorder.Read("<?xml?>\n<Ab Cd='Ef' gH=\"1\">text &amp; <b X='Y'/></Ab> rest");
    EXPECT_EQ(recorder.fText.substr(1), "<?xml?>\n<Ab cd='Ef' gh=\"1\">text &amp; <b x='Y'/></Ab> rest");
}

TEST(TXmlParser, FillsTheAttributesAnewWhateverACallbackHasDoneToThem) {
    struct TMeddler : TRecorder {
        void StartElement(const char* name, TAttributes& attributes) override {
            TRecorder::StartElement(name, attributes);
            attributes = {{"a", "old"}, {"zz", "old"}, {"m", "old"}};
        }
    };
    EXPECT_EQ(TMeddler().Read("<r><e/><e m='1'/><e a='2' b='3'/><e/></r>"),
              "<r><e></e><e m=1></e><e a=2 b=3></e><e></e></r>");
}

TEST(TXmlParser, TakesManyAttributesAndStillFindsTheRepeatedOne) {
    std::string element = "<a";
    for (int i = 0; i < 100; ++i) element += " N" + std::to_string(i) + "='v'";
    const std::string events = EventsOf("<r>" + element + "/></r>");
    EXPECT_EQ(std::count(events.begin(), events.end(), '='), 100);
    EXPECT_NE(EventsOf(element + " n7='x'/>").find("!Attribute appears twice"), std::string::npos);
    EXPECT_NE(EventsOf(element + " n99='x'/>").find("!Attribute appears twice"), std::string::npos);
}

/// An element with all that may stand in one, sometimes wrong, but with every quote closed.
std::string RandomElement(std::mt19937& dice, int depth) {
    const auto one = [&](std::vector<std::string> texts) { return texts[dice() % texts.size()]; };
    const auto anything = [&](const std::string& without) {
        std::string text;
        for (auto length = dice() % 40; length != 0; --length) {
            const char c = dice() % 8 == 0 ? static_cast<char>(dice()) : "abc XYZ.-\n"[dice() % 10];
            if (c != '\0' && without.find(c) == std::string::npos) text += c;
        }
        return text;
    };
    const std::string name = one({"a", "Bc", "VALUE", "PROPERTY.REFERENCE", "A.long_name:with-Everything.in.it"});
    std::string text = "<" + name;
    for (const char* attribute : {"Name", "TYPE", "x", "Superclass"}) {
        const std::string quote = one({"'", "\""});
        if (dice() % 2 == 0) text += one({" ", "\n", "\t "}) + attribute + "=" + quote + anything("<&" + quote) + quote;
    }
    text += ">";
    for (auto children = dice() % 4; children != 0; --children) {
        text +=
            one({anything("<&"), "&lt;", "&QUOT;", "&#65;", "&#0;", "<!-- c -->", "\n", dice() % 40 == 0 ? "&x;" : ""});
        if (depth != 0) text += RandomElement(dice, depth - 1);
    }
    return text + "</" + name + one({"", "", "", "", " ", "x", dice() % 40 == 0 ? "?" : ""}) + ">";
}

// Most of a document is read in blocks, its end byte by byte.
TEST(TXmlParser, ReadsTheEndAsAllTheRest) {
    std::mt19937 dice;
    size_t refused = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::string document = RandomElement(dice, i % 3);
        const std::string events = EventsOf(document);
        ASSERT_EQ(EventsOf(document + std::string(64, ' ')), events) << testing::PrintToString(document);
        refused += events.find('!') != std::string::npos;
    }
    EXPECT_GT(refused, 100u);
    EXPECT_LT(refused, 4000u);
}

TEST(TXmlParser, OffersItsStepsOneByOne) {
    std::string text = Framed("  <!-- c --><!NOTATION n>x");
    TRecorder recorder;
    recorder.fStart = recorder.fNext = &text[1];
    EXPECT_TRUE(recorder.SkipWhitespace());
    EXPECT_FALSE(recorder.SkipWhitespace());
    EXPECT_TRUE(recorder.SkipComment());
    EXPECT_TRUE(recorder.ParseNotationDecl());
    EXPECT_EQ(recorder.fEvents, "TBDTBDTBD");
    EXPECT_EQ(recorder.GetChar(), 'x');
    EXPECT_EQ(recorder.PeekChar(), 0);
    EXPECT_EQ(recorder.GetChar(), 0);
    recorder.UngetChar();
    EXPECT_EQ(recorder.GetChar(), 'x');
    recorder.UngetChar();
    EXPECT_TRUE(recorder.ValidateName());
    EXPECT_EQ(recorder.PeekChar(), 'x');  // the last of a name at the end of the text is put back
    recorder.fNext = &text[text.find("<!N")];
    EXPECT_FALSE(recorder.SkipComment());
    EXPECT_EQ(recorder.PeekChar(), '>');  // four are put back, and three were read
}

TEST(TXmlParser, NestsTwentyThousandDeep) {
#ifdef __SANITIZE_ADDRESS__
    const int depth = 8000;
#else
    const int depth = 20000;
#endif
    std::string document;
    for (int i = 0; i < depth; ++i) document += "<a>";
    for (int i = 0; i < depth; ++i) document += "</a>";
    const std::string events = EventsOf(document);
    EXPECT_EQ(events, document);
}

TEST(TXmlParserDeathTest, NeverReturnsFromAnAttributeValueThatIsNotClosed) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            alarm(1);
            EventsOf("<a b='x");
            _exit(0);
        },
        ::testing::KilledBySignal(SIGALRM), "");
}

}  // namespace
