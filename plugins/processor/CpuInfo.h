#ifndef KYR_PLUGINS_PROCESSOR_CPUINFO_H
#define KYR_PLUGINS_PROCESSOR_CPUINFO_H

#include <map>

#include "SystemRoot.h"

/// The text fields of /proc/cpuinfo for each online thread.
class TCpuInfo {
public:
    explicit TCpuInfo(TFact<std::string> file);
    TCpuInfo(const TCpuInfo&) = delete;
    TCpuInfo& operator=(const TCpuInfo&) = delete;

    std::vector<uint32_t> Numbers() const;
    TFact<std::string> Field(uint32_t number, std::string_view name) const;
    template <typename T>
    TFact<T> NumberField(uint32_t number, std::string_view name) const {
        return Field(number, name).Map([](const std::string& text) { return ParseNumber<T>(text); });
    }

private:
    TFact<std::string> fFile;
    std::map<uint32_t, std::vector<std::string_view>> fLines;
};

#endif
