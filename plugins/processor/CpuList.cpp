#include "CpuList.h"

namespace {

bool AppendRange(std::string_view text, std::vector<uint32_t>& numbers) {
    const size_t dash = text.find('-');
    const std::optional<uint32_t> first = ParseNumber<uint32_t>(text.substr(0, dash));
    const std::optional<uint32_t> last =
        dash == std::string_view::npos ? first : ParseNumber<uint32_t>(text.substr(dash + 1));
    if (!first || !last || *last < *first || *last >= kMaxCpus) return false;
    for (uint32_t number = *first; number <= *last; ++number) numbers.push_back(number);
    return numbers.size() <= kMaxCpus;
}

}  // namespace

std::optional<std::vector<uint32_t>> ParseCpuList(std::string_view text) {
    std::vector<uint32_t> numbers;
    for (const std::string_view range : Split(text, ','))
        if (!AppendRange(range, numbers)) return {};
    return numbers;
}

TFact<std::vector<uint32_t>> ReadCpuList(const TSystemRoot& root, const std::string& path) {
    return root.ReadText(path).Map(ParseCpuList);
}
