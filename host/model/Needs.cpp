#include "model/Needs.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "kyr/TCIMClass.h"
#include "model/Qualifiers.h"

namespace {

struct TNeedWord {
    ENeed need;
    const char* word;
};

constexpr TNeedWord kNeedWords[] = {
    {eNeedsExec, "exec"}, {eNeedsNetwork, "network"}, {eNeedsRawIo, "rawio"}, {eNeedsProcesses, "processes"}};

}  // namespace

std::vector<std::string> NeedWords() {
    std::vector<std::string> words;
    for (const TNeedWord& known : kNeedWords) words.emplace_back(known.word);
    return words;
}

const char* WordFor(ENeed need) {
    const auto isIt = [need](const TNeedWord& known) { return known.need == need; };
    return std::find_if(std::begin(kNeedWords), std::end(kNeedWords), isIt)->word;
}

TNeeds NeedFor(const std::string& word) {
    for (const TNeedWord& known : kNeedWords)
        if (word == known.word) return known.need;
    return 0;
}

// The reader of documents lets a single string pass where an array is declared.
std::vector<std::string> NeedsOf(const TCIMClass& cls) {
    if (cls.FindQualifier("NEEDS") == nullptr) return {};
    std::vector<std::string> needs = QualifierTexts(cls, "NEEDS");
    std::string text = QualifierText(cls, "NEEDS");
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream words(text);
    for (std::string word; words >> word;) needs.push_back(word);
    return needs;
}
