#ifndef KYR_BENCH_MEMORY_H
#define KYR_BENCH_MEMORY_H

#include <cstddef>

/// Counts the allocations of the whole process from construction to Stop. The program replaces malloc for this.
class TMemoryMeter {
public:
    TMemoryMeter();
    ~TMemoryMeter() { Stop(); }
    TMemoryMeter(const TMemoryMeter&) = delete;
    TMemoryMeter& operator=(const TMemoryMeter&) = delete;

    void Stop();
    std::size_t Allocations() const;
    /// The maximum of allocated bytes at any time.
    std::size_t Peak() const;
};

#endif
