#include "check/ReaderTrial.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>

#include "base/CoreLog.h"
#include "base/ExitStatus.h"
#include "base/Text.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "saved/DocumentProbe.h"

namespace {

/// A text that a child process leaves for this one.
class TSharedText {
public:
    TSharedText()
        : fText(static_cast<char*>(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
        if (fText == MAP_FAILED) throw TCommandError(eExitNothing, "no memory to try documents");
    }
    ~TSharedText() { munmap(fText, kSize); }
    TSharedText(const TSharedText&) = delete;
    TSharedText& operator=(const TSharedText&) = delete;

    void Set(const std::string& text) const {
        const size_t size = std::min(text.size(), kSize - 1);
        std::memcpy(fText, text.data(), size);
        fText[size] = '\0';
    }
    std::string Get() const { return fText; }

private:
    static constexpr size_t kSize = 4096;
    char* const fText;
};

// Documents may need each other in any order. A class that is there already is passed over.
void ReadOthers(const std::vector<std::string>& others, TContainer& container) {
    for (int pass = 0; pass < 2; ++pass)
        for (const std::string& other : others) try {
                container.PopulateContainerFromFile(other);
            } catch (const TKYRException&) {  // that document is not the one that is checked
            }
}

// The last error that was logged.
std::string LastErrorIn(TLogCapture& log, const std::string& otherwise) {
    std::string text = otherwise;
    for (const TLogLine& line : log.Take())
        if (line.severity == kyrLogError && !StartsWith(line.text, "Previous error")) text = line.text;
    return text;
}

std::string Read(const std::string& document, size_t classes, TContainer& container) {
    TLogCapture log;
    try {
        const size_t taken = container.PopulateContainerFromFile(document).size();
        if (taken >= classes) return "";
        return "it stops behind " + std::to_string(taken) + " of " + std::to_string(classes) + " classes";
    } catch (const TKYRException& e) {
        return LastErrorIn(log, e.what());
    }
}

}  // namespace

std::string TryReader(const std::vector<std::string>& others, const std::string& document, size_t classes) {
    constexpr double kSeconds = 20;
    constexpr size_t kMemory = size_t{4} << 30;  // an eighth of which one document may take
    const TSharedText text;
    const auto read = [&](const std::string& path) {
        TContainer container;
        ReadOthers(others, container);
        text.Set(Read(path, classes, container));
    };
    const TReason harm = ProbeDocuments({document}, read, {kSeconds, TTimePoint::max(), kMemory}).front();
    return harm ? SentenceOf(harm) : text.Get();
}
