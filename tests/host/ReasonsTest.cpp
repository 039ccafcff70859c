#include <gmock/gmock.h>

#include <set>
#include <sstream>

#include "KyrRun.h"
#include "kyr/TContainer.h"
#include "model/Reason.h"
#include "states/StateInstances.h"

using ::testing::HasSubstr;

namespace {

// The text with all that stands between the two marks replaced.
std::string ReplaceBetween(std::string text, const std::string& start, const std::string& end,
                           const std::string& replacement) {
    for (size_t at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
        at += start.size();
        text.replace(at, text.find(end, at) - at, replacement);
    }
    return text;
}

// A file as it was saved before files had an end mark.
std::string WithoutMark(const std::string& document) {
    const std::string announcement = "<!-- The last line holds the CRC-32 of all before it. -->";
    const size_t at = document.find(announcement), end = at + announcement.size();
    return document.substr(0, at) + document.substr(end, document.rfind("<!--") - end);
}

// "plugin noinit: refused" and the names of classes at the end, of a line on standard error.
std::string WithoutReason(const std::string& line) {
    const size_t state = line.find(": ", line.find("plugin ")), reason = line.find(": ", state + 2);
    const size_t classes = line.rfind(" (class");
    return line.substr(0, reason) + (classes == std::string::npos ? "" : line.substr(classes));
}

// What kyr decides about the file for each choice of classes: the exit status, and which lines it prints.
std::string DecisionsOn(const std::string& file) {
    std::string decisions;
    for (const char* choice : {"", " --class TEST_Kept", " --class TEST_First", " --class TEST_Shown"}) {
        const TRunResult run = RunKyr("show " + file + choice);
        decisions += choice + std::string(": ") + std::to_string(run.status) + "\n";
        std::istringstream lines(run.err);
        for (std::string line; std::getline(lines, line);) decisions += WithoutReason(line) + "\n";
    }
    return decisions;
}

}  // namespace

TEST(ReasonsTest, WordingInASavedFileDecidesNothing) {
    const TPluginRoot root({"givesup", "noinit", "datacrash", "shown"});
    const std::string file = root.Path() + "/a.xml";
    for (const std::string choice : {"", " --class TEST_Lost --class TEST_Kept", " --class MOLTA_ComputerSystem"}) {
        ASSERT_EQ(RunKyr("collect -o " + file + choice + root.Option()).status, 1);
        const std::string start = "NAME=\"Reason\" TYPE=\"string\"><VALUE>";
        for (const std::string words : {"Leider nein", ""}) {
            const std::string reworded = ReplaceBetween(WithoutMark(ReadFile(file)), start, "</VALUE>", words);
            const std::string other = root.Write("b.xml", reworded);
            EXPECT_EQ(DecisionsOn(other), DecisionsOn(file)) << choice << words;
            const std::string printed = words.empty() ? "init failed" : words;
            EXPECT_THAT(RunKyr("show " + other).err, HasSubstr("kyr: plugin noinit: refused: " + printed + "\n"));
        }
    }
}

TEST(ReasonsTest, FilesWithoutCodesAreStillRead) {
    const TRunResult run = RunKyr("show " SAVED "/without-reason-codes.xml.gz --class TEST_Kept");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "TEST_Kept\n  Id  1\n");
    EXPECT_EQ(run.err,
              "kyr: plugin datacrash: partial: SIGSEGV in its data entry at class TEST_First\n"
              "kyr: plugin givesup: partial: its answer ended with error collecting class "
              "(kyrStatusErrorCollectingClass) (class TEST_Kept)\n"
              "kyr: plugin noinit: refused: its init entry failed: there is no device\n");
    EXPECT_THAT(RunKyr("show " SAVED "/without-reason-codes.xml.gz --json").out, HasSubstr("\"reasonCode\": null"));
}

TEST(ReasonsTest, JsonAndFilesHaveTheCode) {
    const TPluginRoot root({"givesup", "noinit", "datacrash", "pair", "denied"});
    const std::string file = root.Path() + "/a.xml";
    const std::string live = RunKyr("collect --json" + root.Option()).out;
    RunKyr("collect -o " + file + root.Option());
    const std::string saved = RunKyr("show --json " + file).out;
    for (const char* word : {"data call failed", "init failed", "crashed", "class name taken", "plugins incomplete"})
        for (const std::string& document : {live, saved})
            EXPECT_THAT(document, HasSubstr(std::string("\"reasonCode\": \"") + word + "\""));
}

// The codes stand in three places: the enumeration, the wordings in Reason.cpp, and the words in schema/collection.xml.
TEST(ReasonsTest, EachCodeHasAWordingAndAWordOfItsOwn) {
    const std::string header = ReadFile(SOURCES "/host/model/Reason.h");
    TContainer container;
    container.PopulateContainerFromFile(SOURCES "/schema/collection.xml");
    std::set<std::string> words;
    size_t codes = 0;
    for (int number = 1; number < 1000; ++number) {
        const bool isCode = header.find(" = " + std::to_string(number) + ",\n") != std::string::npos;
        const auto code = static_cast<EReason>(number);
        const std::string word = WordFor(code, container);
        EXPECT_EQ(!SentenceOf(ReasonFor(code, "SIGSEGV")).empty(), isCode) << number;
        EXPECT_EQ(word != std::to_string(number), isCode) << number;
        codes += isCode;
        if (isCode) words.insert(word);
    }
    EXPECT_EQ(words.size(), codes);
    EXPECT_GT(codes, 0u);
}

TEST(ReasonsTest, InstancesThatAFileHasLostAreMissed) {
    const TPluginRoot root({"shown"});
    const std::string file = root.Path() + "/a.xml";
    ASSERT_EQ(RunKyr("collect -o " + file + root.Option()).status, 0);
    const std::string whole = WithoutMark(ReadFile(file)),
                      instance = "<VALUE.OBJECT><INSTANCE CLASSNAME=\"TEST_Shown\">";
    const size_t first = whole.find(instance), second = whole.find(instance, first + 1);
    std::string deleted = whole, stopped = whole, headless = whole;
    deleted.erase(first, second - first);
    stopped.replace(whole.find("</VALUE.OBJECT>", second), 2, "<!");  // here the reader ends without an error
    headless.replace(whole.find("<VALUE.OBJECT><INSTANCE") + 1, 0, "!");
    const char* const lost = "kyr: plugin shown, class TEST_Shown: partial: 1 of 2 instances are in the file\n";
    for (const auto& [document, message] : {std::pair(deleted, lost), std::pair(stopped, lost),
                                            std::pair(headless, "saved: it breaks off before it tells how complete")}) {
        const TRunResult run = RunKyr("show " + root.Write("b.xml", document));
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.err, HasSubstr(message));
    }
    EXPECT_EQ(RunKyr("show --class MOLTA_ComputerSystem " + root.Write("b.xml", deleted)).err, "");
}

// Wherever the reader leaves a file that has an end mark, status, text and JSON tell it.
TEST(ReasonsTest, ChangeOfAFileIsToldEverywhere) {
    const TPluginRoot root({"shown"});
    const std::string file = root.Path() + "/a.xml", again = root.Path() + "/c.xml";
    ASSERT_EQ(RunKyr("collect -o " + file + root.Option()).status, 0);
    const std::string whole = ReadFile(file);
    for (const char* place : {"<CLASS NAME=\"MOLTA_CollectionState\"", "<CLASS NAME=\"TEST_Shown\"",
                              "<INSTANCE CLASSNAME=\"TEST_Shown\"", "<INSTANCE CLASSNAME=\"MOLTA_CollectedClass\""}) {
        std::string document = whole;
        document.insert(document.find(place) + 1, "!");  // here the reader ends without an error
        const std::string other = root.Write("b.xml", document);
        const char* const told = "the file is not as it was saved: ";
        EXPECT_THAT(RunKyr("show " + other), FieldsAre(1, _, HasSubstr(told))) << place;
        EXPECT_THAT(RunKyr("schema " + other), FieldsAre(1, _, HasSubstr(told))) << place;
        EXPECT_THAT(RunKyr("show --json " + other).out, HasSubstr("\"reasonCode\": \"file changed\"")) << place;
        EXPECT_EQ(RunKyr("collect " + other + " -o " + again).status, 1);
        EXPECT_THAT(RunKyr("show " + again), FieldsAre(1, _, HasSubstr(told))) << place;
    }
}

TEST(ReasonsTest, PartialCollectionThatDoesNotSayWhyIsTold) {
    const TPluginRoot root({"shown"});
    const std::string file = root.Path() + "/a.xml";
    ASSERT_EQ(RunKyr("collect -o " + file + root.Option()).status, 0);
    const std::string document = WithoutMark(ReadFile(file)),
                      state = "<PROPERTY NAME=\"State\" TYPE=\"uint16\"><VALUE>";
    const size_t at = document.find(state, document.find("<INSTANCE CLASSNAME=\"MOLTA_Collection\"")) + state.size();
    const std::string other = root.Write("b.xml", std::string(document).replace(at, 1, "2"));
    EXPECT_EQ(RunKyr("show " + other).err, "kyr: the collection is partial, and does not say why\n");
}
