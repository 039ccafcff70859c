#include "saved/SavedCollection.h"

#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "base/ExitStatus.h"
#include "saved/DocumentProbe.h"
#include "saved/DocumentScan.h"
#include "saved/DocumentText.h"
#include "support/ContainerText.h"
#include "support/RandomContainer.h"
#include "support/SchemaBuilder.h"

namespace fs = std::filesystem;

namespace {

template <typename TAction>
std::string ErrorOf(EExit status, TAction action) {
    try {
        action();
    } catch (const TCommandError& e) {
        EXPECT_EQ(e.fStatus, status);
        return e.what();
    }
    return "";
}

class SavedCollectionTest : public SchemaTest {
protected:
    std::string ErrorOfSaving(EExit status, const std::string& path) {
        return ErrorOf(status, [&] { SaveCollection(fContainer, path, false); });
    }
    std::vector<std::string> FilesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(fFolder.Path())) names.push_back(entry.path().filename());
        return names;
    }

    TempFolder fFolder;
    const std::string fPath = fFolder.Path() + "/a.xml";
};

TEST_F(SavedCollectionTest, RandomContainersComeBackAsTheyWere) {
    for (unsigned int seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        TContainer written, read;
        FillAtRandom(written, seed);
        const std::string path = seed % 2 == 0 ? fPath : fPath + ".gz";
        fLog.TakeLines();
        SaveCollection(written, path, false);
        ReadCollection(path, read);
        ASSERT_EQ(TextOf(read), TextOf(written));
        ASSERT_EQ(fLog.TakeLines(), std::vector<std::string>());
    }
}

TEST_F(SavedCollectionTest, StableLeavesOutWhatChangesByItself) {
    TCIMClass& cls = fSchema.AddClass("A", {{"Id", TCIMValue("x"), {"Key", "Volatile"}},
                                            {"Free", Null(CIM::eCIMUint64), {"Volatile"}},
                                            {"DateTimeOfCollection", Null(CIM::eCIMDateTime), {"Volatile"}}});
    fSchema.AddInstance(cls, {{"Id", TCIMValue("y")}, {"Free", TCIMValue(5ul)}});
    SaveCollection(fContainer, fPath, true);
    TContainer read;
    ReadCollection(fPath, read);
    const TCIMInstance& instance = *read.GetClass("A")->EnumerateInstances(false).at(0);
    EXPECT_EQ(instance.BuildPath().GetPath(), "A.Id=\"y\"");
    EXPECT_TRUE(instance.GetProperty("Free")->GetPropagated());
    EXPECT_TRUE(instance.GetProperty("DateTimeOfCollection")->GetValue().IsNull());
}

// Values of a property that the format, or its reader, cannot carry.
TEST_F(SavedCollectionTest, WhatCannotBeCarriedIsRefusedByClassAndPropertyAndLeavesNoFile) {
    TCIMClass& target = fSchema.AddClass("Target", {Key("ID")});
    TCIMReference nullKey = To(target);
    nullKey.SetKeyBindings({{"ID", Null(CIM::eCIMString)}});
    TCIMReference unknownKey = To(target);
    unknownKey.SetKeyBindings({{"Id2", TCIMValue("x")}});
    const std::pair<TCIMValue, const char*> cases[] = {
        {TCIMValue(std::string("a\0b", 3)), "its text holds a NUL byte"},
        {TCIMValue(HUGE_VAL), "the number inf cannot be read back"},
        {TCIMValue(std::nanf("")), "the number nan cannot be read back"},
        {TCIMValue(CIM(CIM::eCIMUint8), 0, {Null(CIM::eCIMUint8)}), "it is an array with a NULL among its elements"},
        {TCIMValue(TCIMDateTime()), "it holds a date-time that was never set"},
        {TCIMValue(TCIMDateTime(65536, 0, 0, 0, 0)),
         "the date-time 00065536000000.000000:000 is out of the range that can be read back"},
        {TCIMValue(nullKey), "it is a reference with 'ID', which cannot be read back as a key of Target"},
        {TCIMValue(unknownKey), "it is a reference with 'Id2', which cannot be read back as a key of Target"},
    };
    int number = 0;
    for (const auto& [value, reason] : cases) {
        SCOPED_TRACE(reason);
        const std::string name = "A" + std::to_string(number++);
        const TCIMValue declared = value.IsReference() ? NullReferenceTo(target) : TCIMValue(value.GetType(), 0);
        TCIMClass& cls = fSchema.AddClass(name, {Key("Id"), {"Value", declared}}, nullptr, {"Association"});
        TCIMInstance& instance = fSchema.AddInstance(cls, {{"Id", TCIMValue("x")}, {"Value", value}});
        EXPECT_EQ(ErrorOfSaving(eExitOutput, fPath), "cannot save property 'Value' of the instance " + name +
                                                         ".Id=\"x\": " + reason +
                                                         "; choose classes without it with --class");
        cls.RemoveInstance(instance);
    }
    EXPECT_THAT(FilesInFolder(), ElementsAre());
}

TEST_F(SavedCollectionTest, SchemasThatNoDocumentCanHoldAreRefused) {
    TCIMClass& a = fSchema.AddClass("A", {Key("Id")});
    fSchema.AddClass("B", {}, &a);
    fSchema.AddProperty(a, {"Late", Null(CIM::eCIMString)});
    EXPECT_EQ(ErrorOfSaving(eExitOutput, fPath),
              "cannot save the class 'B': it lacks the property 'Late' of its superclass");
    a.RemovePropertyDecl(*a.GetPropertyDecl("Late"));
    fSchema.AddProperty(a, {"Text", TCIMValue(std::string(1, '\0'))});
    fContainer.RemoveClass(*fContainer.GetClass("B"));
    EXPECT_EQ(ErrorOfSaving(eExitOutput, fPath),
              "cannot save the class 'A': property 'Text': its text holds a NUL byte");
    TCIMClass& self = fSchema.AddClass("Self", {Key("Id")}, nullptr, {"Association"});
    fSchema.AddProperty(self, {"Other", NullReferenceTo(self)});
    EXPECT_EQ(ErrorOfSaving(eExitOutput, fPath),
              "cannot save the classes 'Self': they refer to each other, or to themselves, so that none of them could "
              "be read back before the others");
}

TEST_F(SavedCollectionTest, WhatIsTooLargeToBeReadBackIsRefused) {
    const TCIMValue text(std::string(104857600, 'x'));
    TCIMClass& cls = fSchema.AddClass("A", {Key("Id"), {"Text", Null(CIM::eCIMString)}});
    fSchema.AddInstance(cls, {{"Id", TCIMValue("x")}, {"Text", text}});
    EXPECT_THAT(ErrorOfSaving(eExitOutput, fPath),
                testing::MatchesRegex(
                    "cannot write '.*': the collection takes 104858[0-9]+ bytes, and no more than 104857600 can be "
                    "read back; choose fewer classes with --class; the most instances, 1, are of A"));
    EXPECT_THAT(FilesInFolder(), ElementsAre());
}

TEST_F(SavedCollectionTest, NamesThatCouldNotBeReadAreRefused) {
    const std::pair<const char*, const char*> cases[] = {
        {"/x/a", "a saved collection is named .xml or .xml.gz; write '/x/a.xml'"},
        {"/x/a.gz", "a saved collection is named .xml or .xml.gz; write '/x/a.xml.gz'"},
        {"/x.gz/a.xml", "with '.gz' in its path the file would be read as a compressed one; write '/x.gz/a.xml.gz'"},
    };
    for (const auto& [path, reason] : cases)
        EXPECT_EQ(ErrorOf(eExitUsage, [path = path] { RequireSavablePath(path); }),
                  "cannot save to '" + std::string(path) + "': " + reason);
}

TEST_F(SavedCollectionTest, FilesThatCannotBeWrittenAreNamed) {
    EXPECT_EQ(ErrorOfSaving(eExitOutput, "/dev/full"), "cannot write '/dev/full': No space left on device");
    EXPECT_EQ(
        ErrorOfSaving(eExitOutput, fFolder.Path() + "/no/a.xml"),
        "cannot write '" + fFolder.Path() + "/no/a.xml': cannot make a file in its folder: No such file or directory");
    RequireSavablePath(fPath);
    EXPECT_THAT(FilesInFolder(), ElementsAre());
    fs::create_directory(fPath);
    EXPECT_EQ(ErrorOfSaving(eExitOutput, fPath), "cannot write '" + fPath + "': Is a directory");
}

TEST_F(SavedCollectionTest, TheNewFileTakesTheOldOnesPlaceAndMode) {
    const std::string real = fFolder.Write("real.xml", "old");
    chmod(real.c_str(), 0640);
    fs::create_symlink("real.xml", fPath);
    SaveCollection(fContainer, fPath, false);
    struct stat status {};
    stat(real.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(ReadFile(real).substr(0, 5), "<?xml");
    EXPECT_THAT(FilesInFolder(), testing::UnorderedElementsAre("a.xml", "real.xml"));
}

std::string DeeplyNested() {
    std::string text = "<CIM><DECLARATION><DECLGROUP><QUALIFIER.DECLARATION><SCOPE/><VALUE>";
    for (int i = 0; i < 1000000; ++i) text += "<a>";
    return text;
}

TEST_F(SavedCollectionTest, WhatIsNoCollectionIsRefusedByFileAndCause) {
    const std::string hint = "; it must be a CIM-XML document, as kyr collect -o writes it";
    const std::pair<std::string, std::string> cases[] = {
        {"", "it is empty"},
        {"a", "CIM-XML Parser line 1:Unexpected character before prolog" + hint},
        {"<CIM>\n<a/></CIM>", "CIM-XML Parser line 2:Unexpected element a.*" + hint},
        {"<CIM></CIM>", "there is no class in it; it must be a file that kyr collect -o wrote"},
        {"<CIM>\n<a/>\n<b c=\"", "the value of an attribute in line 3 is not closed; take another copy of it"},
        {DeeplyNested(),
         "(crashed the reader .SIGSEGV.|ended the reader with status 1); it is damaged, or was made to do harm"},
    };
    for (const auto& [document, reason] : cases) {
        const std::string path = fFolder.Write("a.xml", document);
        TContainer read;
        EXPECT_THAT(ErrorOf(eExitNothing, [&] { ReadCollection(path, read); }),
                    testing::ContainsRegex("^cannot read the collection '" + path + "': " + reason));
    }
    EXPECT_EQ(ErrorOf(eExitNothing, [&] { ReadCollection("/no.xml", fContainer); }),
              "cannot read the collection '/no.xml': No such file or directory");
}

// Text that XML cannot hold as it is: the core's reader gets the same bytes back, and others a document that is valid.
TEST_F(SavedCollectionTest, AnyTextIsReadByOtherParsersToo) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
    const std::pair<std::string, std::string> cases[] = {
        {"\x01\x1f\r\x7f", "\xe2\x90\x81\xe2\x90\x9f\r\x7f"},
        {"a\xe4"
         "b",
         "a\xc3\xa4"
         "b"},
        {"\xc3\xa4 \xf0\x9f\x98\x80", "\xc3\xa4 \xf0\x9f\x98\x80"},
        {"\xef\xbf\xbe\xc0\x80\xed\xa0\x80\xe2\x82", ""},  // no character, too long, a surrogate, cut off
        {all, ""},
    };
    for (const auto& [text, others] : cases) {
        TCIMClass& cls = fSchema.AddClass("A", {{"Id", TCIMValue("default " + text), {"Key"}}});
        fSchema.AddInstance(cls, {{"Id", TCIMValue(text)}});
        TCIMReference reference = To(cls);
        reference.SetKeyBindings({{"Id", TCIMValue(text)}});
        TCIMClass& tie = fSchema.AddClass("Tie", {{"A", NullReferenceTo(cls), {"Key"}}}, nullptr, {"Association"});
        fSchema.AddInstance(tie, {{"A", TCIMValue(reference)}});
        SaveCollection(fContainer, fPath, false);
        TContainer read;
        ReadCollection(fPath, read);
        EXPECT_EQ(TextOf(read), TextOf(fContainer));
        const std::string program =
            "import sys, xml.etree.ElementTree as t\n"
            "sys.stdout.buffer.write(t.parse(sys.argv[1]).find('.//INSTANCE//VALUE').text.encode())";
        const std::string out = fFolder.Path() + "/out";
        ASSERT_EQ(std::system(("python3 -c \"" + program + "\" " + fPath + " >" + out).c_str()), 0);
        EXPECT_THAT(ReadFile(out), others.empty() ? Not(IsEmpty()) : testing::Matcher<std::string>(others));
        fContainer.RemoveClass(tie);
        fContainer.RemoveClass(cls);
    }
}

TEST_F(SavedCollectionTest, ChangeOfASavedFileIsTold) {
    TCIMClass& cls = fSchema.AddClass("A", {Key("Id")});
    fSchema.AddClass("B", {Key("Id")});
    for (const char* id : {"one", "two"}) fSchema.AddInstance(cls, {{"Id", TCIMValue(id)}});
    SaveCollection(fContainer, fPath, false);
    const std::string whole = ReadFile(fPath), cut = whole.substr(0, whole.rfind("<!--"));
    const std::string announcement = whole.substr(whole.find("<!--"), whole.find("-->") + 3 - whole.find("<!--"));
    const auto replaced = [](std::string text, const std::string& from, const std::string& to) {
        return text.replace(text.find(from), from.size(), to);
    };
    const std::string changed = "the file is not as it was saved", lost = ": its last line is missing or damaged";
    const std::pair<std::string, std::string> cases[] = {
        {whole, ""},
        {replaced(whole, "one", "six"), changed},
        {replaced(whole, announcement, ""), changed},
        {replaced(whole, "</INSTANCE>", "<![CDATA[>"), changed + ": 0 of 2 instances are left"},
        {replaced(whole, "<CLASS NAME=\"B\"", "<!B"), changed + ": 0 of 2 instances and 1 of 2 classes are left"},
        {replaced(whole, "</CIM>\n<!--", "</CIM>\n<!-"), changed + lost},
        {cut, changed + lost},
        {replaced(cut, announcement, ""), ""},  // as earlier versions saved it
    };
    for (const auto& [document, message] : cases) {
        TContainer read;
        EXPECT_EQ(SentenceOf(ReadCollection(fFolder.Write("b.xml", document), read)), message);
    }
}

enum class EReading { eTaken, eRefused, eEndless };

// Waits longer for a reader that should come to an end.
EReading ReadingOf(const std::string& document, bool isEndExpected) {
    const LogCapture log;
    const TempFolder folder;
    TContainer container;
    const auto read = [&](const std::string& path) { container.PopulateContainerFromFile(path); };
    const std::string path = folder.Write("a.xml", document);
    if (ProbeDocuments({path}, read, {isEndExpected ? 30 : 0.1}).front()) return EReading::eEndless;
    return StatusOf([&] { read(path); }) == kyrStatusOK ? EReading::eTaken : EReading::eRefused;
}

TEST(DocumentTextTest, FindsTheValueThatTheReaderWouldNeverLeave) {
    const std::string root = "<?xml?>\n<!DOCTYPE a>\n\n<CIM a='>'>\n";
    const std::pair<std::string, bool> cases[] = {
        {"<CIM a=\"", true},
        {root + "<DECLARATION b = 'x\"", true},
        {root + "<DECLARATION/><!-- <!-- > --><?/?><x b='\"' c=\"'>", true},
        {root + "<x b=\"&", false},
        {root + "<x b=\"\" c", false},
        {root + "<x b=\"\">\"", false},
        {root + "</x b=\"", false},
        {root + "<!-- <x b=\"", false},
        {root + "<![CDATA[ <x b=\"", false},
        {root + "<? <x b=\"", false},
        {root + "</CIM><x b=\"", false},
        {std::string("<CIM/>\0<x b=\"", 13), false},
        {"<CIM/><x b=\"", false},
        {"<", false},
        {"", false},
    };
    for (const auto& [document, isEndless] : cases) {
        EXPECT_EQ(FindEndlessValue(document) != std::string::npos, isEndless) << document;
        EXPECT_EQ(ReadingOf(document, !isEndless) == EReading::eEndless, isEndless) << document;
    }
}

// A document with pieces of markup and of itself in places where they do not belong, cut off.
std::string SpoiltDocument(unsigned int seed) {
    static const char* const pieces[] = {"<CIM a=\"", "<x y='", "\"", "'", ">",  "/>",    "<!-- ",
                                         "-->",       "<?",     "?>", "&", "<!", "</CIM>"};
    std::mt19937 random(seed);
    const auto below = [&](size_t end) { return random() % end; };
    std::string text =
        "<?xml version=\"1.0\"?>\n<CIM CIMVERSION=\"2.0\">\n<!-- a 'comment' -->\n<DECLARATION>\n"
        "<DECLGROUP> <QUALIFIER.DECLARATION NAME=\"Key\" TYPE='boolean'><SCOPE "
        "PROPERTY=\"true\"/></QUALIFIER.DECLARATION>\n"
        "</DECLGROUP></DECLARATION></CIM>\n<!-- the end -->\n";
    for (size_t i = below(3); i > 0; --i) text.insert(below(text.size()), pieces[below(std::size(pieces))]);
    text.resize(below(text.size()) + 1);
    return below(2) == 0 ? text : text + pieces[below(2)];
}

// What it finds in a document that the reader refuses before does not matter.
TEST(DocumentTextTest, FindsAllThatHoldsUpTheReaderAndNothingThatItTakes) {
    for (unsigned int seed = 0; seed < 150; ++seed) {
        const std::string document = SpoiltDocument(seed);
        const bool isEndless = FindEndlessValue(document) != std::string::npos;
        EXPECT_NE(ReadingOf(document, !isEndless), isEndless ? EReading::eTaken : EReading::eEndless) << document;
    }
}

bool IsHarmless(const std::string& document, size_t pieceSize = 1 << 16) {
    TDocumentScan scan;
    for (size_t at = 0; at < document.size(); at += pieceSize)
        scan.Add(std::string_view(document).substr(at, pieceSize));
    scan.EndDocument();
    return scan.IsHarmless({2000, 1'000'000, 1'000'000});
}

std::string Repeated(size_t count, const std::string& text) {
    std::string all;
    for (size_t i = 0; i < count; ++i) all += text;
    return all;
}

std::string In(std::initializer_list<const char*> elements, const std::string& text) {
    std::string start, end;
    for (const std::string name : elements) {
        start += "<" + name + ">";
        end.insert(0, "</" + name + ">");
    }
    return start + text + end;
}

TEST(DocumentScanTest, ClearsOnlyWhatIsPlainlyReadToItsEnd) {
    const auto inGroup = [](const std::string& text) {
        return "<?xml version='1.0'?>\n" + In({"CIM", "DECLARATION", "DECLGROUP"}, text) + "\n";
    };
    const std::string cls = In({"VALUE.OBJECT", "CLASS"}, "<PROPERTY/>"),
                      instance = In({"VALUE.OBJECT"}, "<INSTANCE/>");
    const std::string key = "<INSTANCENAME><KEYBINDING><VALUE.REFERENCE>";
    const auto named = [](int i) { return "<PROPERTY.REFERENCE NAME=\"a" + std::to_string(i) + "\"/>"; };
    std::string references;
    for (int i = 0; i < 300; ++i) references += named(i);
    const std::pair<std::string, bool> cases[] = {
        {inGroup("<VALUE.OBJECT b='>\"' c=\"'\"/>text 'with \"quotes<!-- a > 'comment' < -->"), true},
        {inGroup("<VALUE.OBJECT>"), false},
        {inGroup("</VALUE.OBJECT>"), false},
        {inGroup("<VALUE.OBJECT b='>"), false},
        {inGroup("<value.object/>"), false},
        {inGroup("<METHOD/>"), false},
        {inGroup("<![CDATA[]]>"), false},
        {inGroup("<!-- "), false},
        {inGroup(std::string(1, '\0')), false},
        {"<!DOCTYPE a>" + inGroup(""), false},
        {inGroup(Repeated(100, cls)), true},
        {inGroup(Repeated(2001, In({"VALUE.OBJECT"}, "<CLASS/>"))), false},
        {inGroup(Repeated(900, cls)), false},
        {inGroup(Repeated(800, cls) + Repeated(800, instance)), false},
        {inGroup(Repeated(900, In({"VALUE.OBJECT", "INSTANCE"}, "<PROPERTY/>"))), true},
        {inGroup(In({"VALUE.OBJECT", "INSTANCE"}, "<QUALIFIER/>")), false},
        {inGroup(In({"VALUE.OBJECT", "INSTANCE", "PROPERTY"}, "<QUALIFIER/>")), false},
        {inGroup(
             In({"VALUE.OBJECT", "INSTANCE", "PROPERTY.REFERENCE", "VALUE.REFERENCE", "INSTANCENAME"}, "<KEYVALUE/>")),
         false},
        {inGroup(In({"VALUE.OBJECT", "INSTANCE", "PROPERTY.REFERENCE", "VALUE.REFERENCE"},
                    Repeated(40, key) + Repeated(40, "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>"))),
         false},
        {inGroup(In({"VALUE.OBJECT", "CLASS", "QUALIFIER", "VALUE"}, std::string(2000, 'x')) + Repeated(300, cls)),
         true},
        {inGroup(In({"VALUE.OBJECT", "CLASS", "QUALIFIER", "VALUE"}, std::string(4000, 'x')) + Repeated(300, cls)),
         false},
        {inGroup(In({"VALUE.OBJECT", "CLASS"}, "<PROPERTY.REFERENCE X='' NAME=\"a\"/>")), false},
        {inGroup(In({"VALUE.OBJECT", "CLASS"}, references)), true},
        {inGroup(In({"VALUE.OBJECT", "CLASS"}, references) + Repeated(20, cls)), false},
    };
    for (const auto& [document, isHarmless] : cases) EXPECT_EQ(IsHarmless(document), isHarmless) << document;
}

TEST(DocumentScanTest, ClearsNothingThatHoldsUpTheReaderHoweverItIsCut) {
    size_t harmless = 0;
    for (unsigned int seed = 0; seed < 20000; ++seed) {
        const std::string document = SpoiltDocument(seed);
        const bool isHarmless = IsHarmless(document);
        EXPECT_FALSE(isHarmless && FindEndlessValue(document) != std::string::npos) << document;
        const size_t pieceSize = seed % 8 + 1;
        EXPECT_EQ(IsHarmless(document, pieceSize), isHarmless) << document;
        harmless += isHarmless;
    }
    EXPECT_GT(harmless, 100u);
}

TEST(DocumentProbeTest, NamesTheDocumentsThatWouldHarmItsReader) {
    const TempFolder folder;
    const std::vector<std::string> paths = {folder.Write("1", "<CIM></CIM>"), folder.Write("2", "<CIM a=\""),
                                            folder.Write("3", "no XML"), folder.Write("4", "<CIM a='"),
                                            folder.Write("5", "<CIM/>")};
    TContainer container;
    const auto read = [&](const std::string& path) { container.PopulateContainerFromFile(path); };
    std::vector<std::string> harms;
    for (const TReason& harm : ProbeDocuments(paths, read, {0.3})) harms.push_back(harm.detail);
    EXPECT_THAT(harms, ElementsAre("", "not read within 0.3 s", "", "not read within 0.3 s", ""));
}

}  // namespace
