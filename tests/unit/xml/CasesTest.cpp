// The documents in cases/*.txt and what comes of them. Below a line "== " with the sentence that they show stand the
// cases: the text of a DECLGROUP, or a whole document, and indented below it the lines of the outcome, as
// TReader::Read gives them. A line "in " gives what stands around each text, with "..." for the text. What begins with
// "+ " is read into the container of the case before it. "#" begins a comment.
#include <cctype>
#include <fstream>
#include <optional>

#include "ReaderSupport.h"

namespace {

struct TCase {
    std::string text;
    std::string outcome;
};

struct TSection {
    std::string sentence;
    std::string frame;
    std::vector<TCase> cases;
};

void PrintTo(const TSection& section, std::ostream* out) { *out << section.sentence; }

bool BeginsWith(const std::string& line, const char* start) { return line.rfind(start, 0) == 0; }

void AddLine(std::vector<TCase>& cases, const std::string& line) {
    if (BeginsWith(line, "    ")) {
        std::string& outcome = cases.back().outcome;
        outcome += (outcome.empty() ? "" : "; ") + line.substr(4);
        return;
    }
    if (cases.empty() || !cases.back().outcome.empty()) cases.emplace_back();
    cases.back().text += line;
}

void ReadSections(const std::string& path, std::vector<TSection>& sections) {
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (BeginsWith(line, "== "))
            sections.push_back({line.substr(3), "...", {}});
        else if (BeginsWith(line, "in "))
            sections.back().frame = line.substr(3);
        else
            AddLine(sections.back().cases, line);
    }
}

std::vector<TSection> AllSections() {
    std::vector<TSection> sections;
    for (const char* name : {"declarations", "objects", "values"})
        ReadSections(std::string(KYRCORE_CASES "/") + name + ".txt", sections);
    return sections;
}

std::string TestName(const testing::TestParamInfo<TSection>& test) {
    std::string name;
    for (std::string word : Split(test.param.sentence, ' ')) {
        word[0] = static_cast<char>(toupper(word[0]));
        name += word;
    }
    return name;
}

class ReaderCases : public LoggedTest, public testing::WithParamInterface<TSection> {};

std::string Read(TReader& reader, std::string frame, const std::string& text) {
    return BeginsWith(text, "<CIM") ? reader.Read(text) : reader.ReadGroup(frame.replace(frame.find("..."), 3, text));
}

TEST_P(ReaderCases, ComeOutAsTold) {
    std::optional<TReader> reader;
    for (const auto& [text, expected] : GetParam().cases) {
        const bool goesOn = BeginsWith(text, "+ ");
        if (!goesOn) reader.emplace(fLog);
        const std::string outcome = Read(*reader, GetParam().frame, text.substr(goesOn ? 2 : 0));
        EXPECT_EQ(outcome.empty() ? "(nothing)" : outcome, expected) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(, ReaderCases, testing::ValuesIn(AllSections()), TestName);

}  // namespace
