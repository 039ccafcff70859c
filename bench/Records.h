#ifndef KYR_BENCH_RECORDS_H
#define KYR_BENCH_RECORDS_H

#include <cstddef>

#include "cwrappers/kyriIOHandle.h"
#include "kyr/TContainer.h"
#include "kyr/kyrPlugin.h"

constexpr unsigned kPropertiesInRecord = 20;

/// A container with one class of 20 properties of all types, filled through the calls that plugins use.
class TRecords {
public:
    TRecords();
    ~TRecords();
    TRecords(const TRecords&) = delete;
    TRecords& operator=(const TRecords&) = delete;

    /// Adds instances with all properties. The last one is stored by the next call only.
    void Add(unsigned count);
    /// Sets one number of the current instance repeatedly.
    void SetOneProperty(unsigned times);
    /// Makes the display text of every property of every stored instance; returns the sum of their lengths.
    std::size_t DisplayAll() const;

private:
    void AddOne(unsigned number);

    TContainer fContainer;
    kyriIOHandle fHandle;
    kyrCIMDateTime fDate = nullptr;
    kyrCIMValueArray fArray = nullptr;
    unsigned fCount = 0;
};

#endif
