#include "support/FuzzSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "kyr/TLogger.h"

namespace {
using TType = TCIMValue::TCIMType;

constexpr const char* kNull = "~";

TType ElementOf(TType type) { return static_cast<TType::ECIMType>(type & ~TType::eCIMArrayFlag); }

TCIMValue ReadScalar(TType type, std::string text, TContainer& container) {
    return text == kNull ? TCIMValue(type, 0) : TCIMValue(type, text, container);
}

TCIMValue ReadArray(TType element, const std::string& text, TContainer& container) {
    std::vector<TCIMValue> elements;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('|', begin), text.size());
        elements.push_back(ReadScalar(element, text.substr(begin, end - begin), container));
        begin = end + 1;
    }
    return TCIMValue(element, 0, elements);
}
}  // namespace

void Require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", property);
    std::abort();
}

TRunLog::TRunLog() {
    if (TRootObject::GetCoreLogger() == nullptr) TLogger::Initialize();
    TRootObject::GetCoreLogger()->SetLogThreshold(kyrLogVerbose);
    Require(Entries().empty(), "the log is empty at the beginning of a run");
}

TRunLog::~TRunLog() { TRootObject::GetCoreLogger()->ClearLog(); }

std::uint64_t TByteReader::Number() {
    std::uint64_t number = 0;
    for (int shift = 0; shift < 64; shift += 8) number |= std::uint64_t{Byte()} << shift;
    return number;
}

std::string TByteReader::Bytes(std::size_t count) {
    const std::uint8_t* const begin = fNext;
    fNext += std::min(count, static_cast<std::size_t>(fEnd - fNext));
    return std::string(begin, fNext);
}

std::string TByteReader::Line() {
    const std::uint8_t* const end = std::find(fNext, fEnd, '\n');
    std::string line(fNext, end);
    fNext = end == fEnd ? end : end + 1;
    return line;
}

bool HasTextForm(TType type) {
    return type >= TType::eCIMBoolean && type <= TType::eCIMDateTime && type != TType::eCIMChar;
}

TType TypeOfLine(const std::string& line) {
    return static_cast<TType::ECIMType>(line.empty() ? 0 : line.front() % 32 & 31);
}

TCIMValue ReadValueLine(const std::string& line, TContainer& container) {
    const TType type = TypeOfLine(line);
    const std::string text = line.empty() ? line : line.substr(1);
    if (text == kNull || (type & TType::eCIMArrayFlag) == 0) return ReadScalar(type, text, container);
    return ReadArray(ElementOf(type), text, container);
}
