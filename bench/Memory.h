#ifndef KYR_BENCH_MEMORY_H
#define KYR_BENCH_MEMORY_H

#include <cstddef>

/// Counts what the whole process allocates between its construction and Stop, whoever allocates: the program's malloc
/// is its own.
class TMemoryMeter {
public:
    TMemoryMeter();
    ~TMemoryMeter() { Stop(); }
    TMemoryMeter(const TMemoryMeter&) = delete;
    TMemoryMeter& operator=(const TMemoryMeter&) = delete;

    void Stop();
    std::size_t Allocations() const;
    /// The most that was allocated at any one time, in bytes.
    std::size_t Peak() const;
};

#endif
