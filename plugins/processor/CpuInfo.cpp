#include "CpuInfo.h"

#include "CpuList.h"

namespace {

std::string_view NameOf(std::string_view line) { return Trim(line.substr(0, line.find(':'))); }

std::string_view ValueOf(std::string_view line) {
    return Trim(line.substr(std::min(line.find(':'), line.size() - 1) + 1));
}

}  // namespace

TCpuInfo::TCpuInfo(TFact<std::string> file) : fFile(std::move(file)) {
    if (!fFile) return;
    std::vector<std::string_view>* lines = nullptr;
    for (const std::string_view line : Lines(*fFile)) {
        if (Trim(line).empty()) continue;
        if (NameOf(line) == "processor") {
            const std::optional<uint32_t> number = ParseNumber<uint32_t>(ValueOf(line));
            lines = number && *number < kMaxCpus ? &fLines[*number] : nullptr;
        }
        if (lines != nullptr) lines->push_back(line);
    }
}

std::vector<uint32_t> TCpuInfo::Numbers() const {
    std::vector<uint32_t> numbers;
    for (const auto& entry : fLines) numbers.push_back(entry.first);
    return numbers;
}

TFact<std::string> TCpuInfo::Field(uint32_t number, std::string_view name) const {
    TFact<std::string> field = TFact<std::string>::Missing(fFile.absence, fFile.source);
    const auto found = fLines.find(number);
    if (found == fLines.end()) return field;
    for (const std::string_view line : found->second)
        if (NameOf(line) == name && !ValueOf(line).empty()) {
            field.value = ValueOf(line);
            break;
        }
    return field;
}
