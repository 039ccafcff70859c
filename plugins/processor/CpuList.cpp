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

// The bits of a group, of which the lowest is of the thread with the first number.
bool AppendBits(std::string_view group, size_t first, std::vector<uint32_t>& numbers) {
    const std::optional<uint32_t> bits = group.size() > 8 ? std::nullopt : ParseNumber<uint32_t>(group, 16);
    for (uint32_t bit = 0; bit < 32; ++bit)
        if (bits && (*bits >> bit & 1) != 0) numbers.push_back(static_cast<uint32_t>(first) + bit);
    return bool(bits);
}

}  // namespace

std::optional<std::vector<uint32_t>> ParseCpuMask(std::string_view text) {
    const std::vector<std::string_view> groups = Split(text, ',');
    if (groups.empty() || groups.size() > kMaxCpus / 32) return {};
    std::vector<uint32_t> numbers;
    for (size_t i = 0; i < groups.size(); ++i)
        if (!AppendBits(groups[groups.size() - 1 - i], i * 32, numbers)) return {};
    return numbers;
}

std::string FormatCpuList(const std::vector<uint32_t>& numbers) {
    std::string text;
    for (size_t i = 0, last = 0; i < numbers.size(); i = last + 1) {
        for (last = i; last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1;) ++last;
        text += (i == 0 ? "" : ",") + std::to_string(numbers[i]);
        if (last > i) text += '-' + std::to_string(numbers[last]);
    }
    return text;
}

std::optional<std::vector<uint32_t>> ParseCpuList(std::string_view text) {
    std::vector<uint32_t> numbers;
    for (const std::string_view range : Split(text, ','))
        if (!AppendRange(range, numbers)) return {};
    return numbers;
}

TFact<std::vector<uint32_t>> ReadCpuList(const TSystemRoot& root, const std::string& path) {
    return root.ReadText(path).Map(ParseCpuList);
}

TFact<std::string> ReadCpuListText(const TSystemRoot& root, const std::string& listPath, const std::string& maskPath) {
    const TFact<std::string> list = root.ReadText(listPath);
    if (list) return list;
    TFact<std::string> mask = root.ReadText(maskPath).Map([](const std::string& text) {
        const std::optional<std::vector<uint32_t>> numbers = ParseCpuMask(text);
        return numbers ? std::optional(FormatCpuList(*numbers)) : std::nullopt;
    });
    if (mask && mask->empty()) mask.value.reset();
    return EitherOf(list, mask);
}
