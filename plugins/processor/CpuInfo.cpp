#include "CpuInfo.h"

#include "CpuList.h"

namespace {

std::string_view NameOf(std::string_view line) { return Trim(line.substr(0, line.find(':'))); }

std::string_view ValueOf(std::string_view line) {
    return Trim(line.substr(std::min(line.find(':'), line.size() - 1) + 1));
}

// That of s390 is "cpu number".
bool IsStartOfBlock(std::string_view name) { return name == "processor" || name == "cpu number"; }

}  // namespace

TCpuInfo::TCpuInfo(TFact<std::string> file) : fFile(std::move(file)) {
    if (!fFile) return;
    std::vector<std::string_view>* lines = nullptr;
    bool isInBlock = false;
    for (const std::string_view line : Lines(*fFile)) {
        const std::string_view name = NameOf(line);
        if (IsStartOfBlock(name)) {
            const std::optional<uint32_t> number = ParseNumber<uint32_t>(ValueOf(line));
            lines = number && *number < kMaxCpus ? &fLines[*number] : nullptr;
            isInBlock = true;
        }
        if (Trim(line).empty())
            isInBlock = false;
        else if (!isInBlock && !ValueOf(line).empty())
            fCommonFields.emplace(name, ValueOf(line));
        else if (isInBlock && lines != nullptr)
            lines->push_back(line);
    }
}

std::vector<uint32_t> TCpuInfo::Numbers() const {
    std::vector<uint32_t> numbers;
    for (const auto& entry : fLines) numbers.push_back(entry.first);
    return numbers;
}

TFact<std::string> TCpuInfo::FactOf(std::string_view value) const {
    TFact<std::string> fact = TFact<std::string>::Missing(fFile.absence, fFile.source);
    if (!value.empty()) fact.value = value;
    return fact;
}

TFact<std::string> TCpuInfo::Field(uint32_t number, TFieldNames names) const {
    const auto found = fLines.find(number);
    if (found == fLines.end()) return FactOf("");
    for (const std::string_view name : names)
        for (const std::string_view line : found->second)
            if (NameOf(line) == name && !ValueOf(line).empty()) return FactOf(ValueOf(line));
    return FactOf("");
}

TFact<std::string> TCpuInfo::CommonField(TFieldNames names) const {
    for (const std::string_view name : names)
        if (const auto found = fCommonFields.find(name); found != fCommonFields.end()) return FactOf(found->second);
    return FactOf("");
}

TFact<std::string> TCpuInfo::FieldOrCommon(uint32_t number, TFieldNames names) const {
    const TFact<std::string> field = Field(number, names);
    return field ? field : CommonField(names);
}
