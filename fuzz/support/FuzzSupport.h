#ifndef KYR_FUZZ_SUPPORT_FUZZSUPPORT_H
#define KYR_FUZZ_SUPPORT_FUZZSUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "kyr/ILogger.h"
#include "kyr/TCIMValue.h"
#include "kyr/TKYRException.h"
#include "kyr/TRootObject.h"

class TContainer;

/// Aborts if the condition is false, which libFuzzer reports as a finding.
void Require(bool holds, const char* property);

/// The status that an action raised; kyrStatusOK if none. Any other exception is a finding.
template <typename TAction>
kyrStatusCode StatusOf(TAction&& action) {
    try {
        action();
    } catch (const TKYRException& e) {
        Require(e.fCode > kyrStatusOK && e.fCode < kyrStatusEnd, "an exception carries the status of a failure");
        return e.fCode;
    }
    return kyrStatusOK;
}

/// Gives a run an empty core log of all severities, and empties it afterwards.
class TRunLog {
public:
    TRunLog();
    ~TRunLog();
    TRunLog(const TRunLog&) = delete;
    TRunLog& operator=(const TRunLog&) = delete;

    std::list<ILogger::TLogEntry>& Entries() const { return TRootObject::GetCoreLogger()->GetLog(); }
};

/// Reads an input piece by piece. After its end come zeros and empty texts.
class TByteReader {
public:
    TByteReader(const std::uint8_t* data, std::size_t size) : fNext(data), fEnd(data + size) {}

    bool IsAtEnd() const { return fNext == fEnd; }
    std::uint8_t Byte() { return IsAtEnd() ? std::uint8_t{0} : *fNext++; }
    /// Eight bytes in little-endian order.
    std::uint64_t Number();
    /// At most this many bytes.
    std::string Bytes(std::size_t count);
    /// The text up to the next line feed, which is consumed.
    std::string Line();
    /// A text preceded by a length byte, modulo 32.
    std::string Text() { return Bytes(Byte() % 32); }
    template <typename T, std::size_t kSize>
    T& Pick(T (&table)[kSize]) {
        return table[Byte() % kSize];
    }

private:
    const std::uint8_t* fNext;
    const std::uint8_t* fEnd;
};

/// True if values of the type can be made from text.
bool HasTextForm(TCIMValue::TCIMType type);

/// Makes a value from a line. The first character is the type, an ECIMType in its lower 5 bits: 'A' is boolean, 'B'
/// uint8, 'M' string, 'Q' an array of boolean. The text follows; "~" is NULL, and '|' separates elements. Raises what
/// the constructor of the value raises.
TCIMValue ReadValueLine(const std::string& line, TContainer& container);
TCIMValue::TCIMType TypeOfLine(const std::string& line);

#endif
