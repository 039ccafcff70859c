#ifndef KYR_HOST_BASE_DESCRIPTOR_H
#define KYR_HOST_BASE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

/// Owns a file descriptor, which may be -1 for none.
class TDescriptor {
public:
    explicit TDescriptor(int number) : fNumber(number) {}
    ~TDescriptor() { Close(); }
    TDescriptor(const TDescriptor&) = delete;
    TDescriptor& operator=(const TDescriptor&) = delete;

    int Number() const { return fNumber; }
    void Close() {
        if (const int number = std::exchange(fNumber, -1); number >= 0) close(number);
    }

private:
    int fNumber;
};

#endif
