#ifndef KYR_PLUGINS_MEMORY_MEMORYFACTS_H
#define KYR_PLUGINS_MEMORY_MEMORYFACTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Fact.h"
#include "MemoryDevices.h"

class TSystemRoot;

/// The counters of /proc/meminfo; sizes in bytes.
struct TMemoryUsage {
    TFact<uint64_t> total;
    TFact<uint64_t> free;
    TFact<uint64_t> available;
    TFact<uint64_t> buffers;
    TFact<uint64_t> cached;
    TFact<uint64_t> reclaimable;
    TFact<uint64_t> shared;
    TFact<uint64_t> swapTotal;
    TFact<uint64_t> swapFree;
    TFact<uint64_t> hugePages;
    TFact<uint64_t> hugePagesFree;
    TFact<uint64_t> hugePageSize;
};

TMemoryUsage ParseMeminfo(const TFact<std::string>& meminfo);

enum class ESwapKind : uint16_t { eUnknown, ePartition, eFile };

/// A swap partition or file; sizes in bytes.
struct TSwapArea {
    std::string path;
    TFact<bool> isDeleted;
    TFact<uint16_t> kind;
    TFact<uint64_t> size;
    TFact<uint64_t> used;
    TFact<int32_t> priority;
};

std::vector<TSwapArea> ParseSwaps(const TFact<std::string>& swaps);

struct TMemoryFacts {
    TMemoryUsage usage;
    std::vector<TSwapArea> swapAreas;
    TMemoryHardware hardware;
    TListing swapListing;
    TListing smbiosListing;
};

TMemoryFacts ReadMemory(const TSystemRoot& root);

#endif
