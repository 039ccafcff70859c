#ifndef KYR_PLUGINS_PROCESSOR_CPUINFO_H
#define KYR_PLUGINS_PROCESSOR_CPUINFO_H

#include <initializer_list>
#include <map>

#include "SystemRoot.h"

using TFieldNames = std::initializer_list<std::string_view>;

/// The text fields of /proc/cpuinfo. On most architectures each online thread has a block of them; some have fields for
/// all threads before or behind the blocks, and there also fields of the whole machine.
class TCpuInfo {
public:
    explicit TCpuInfo(TFact<std::string> file);
    TCpuInfo(const TCpuInfo&) = delete;
    TCpuInfo& operator=(const TCpuInfo&) = delete;

    std::vector<uint32_t> Numbers() const;
    /// The first of the fields that the block of the thread has. Architectures have other names for the same.
    TFact<std::string> Field(uint32_t number, TFieldNames names) const;
    /// The first of the fields that stands outside of all blocks.
    TFact<std::string> CommonField(TFieldNames names) const;
    TFact<std::string> FieldOrCommon(uint32_t number, TFieldNames names) const;
    template <typename T>
    TFact<T> NumberField(uint32_t number, TFieldNames names) const {
        return Field(number, names).Map([](const std::string& text) { return ParseNumber<T>(text); });
    }

private:
    TFact<std::string> FactOf(std::string_view value) const;

    TFact<std::string> fFile;
    std::map<uint32_t, std::vector<std::string_view>> fLines;
    std::map<std::string_view, std::string_view> fCommonFields;
};

#endif
