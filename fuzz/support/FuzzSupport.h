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

/// Ends the process unless the property holds: a finding.
void Require(bool holds, const char* property);

/// What an action raised, kyrStatusOK for nothing. Any other exception passes, and is a finding.
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

/// The core's log for the length of one run: empty at its beginning and behind it, with nothing left out.
class TRunLog {
public:
    TRunLog();
    ~TRunLog();
    TRunLog(const TRunLog&) = delete;
    TRunLog& operator=(const TRunLog&) = delete;

    std::list<ILogger::TLogEntry>& Entries() const { return TRootObject::GetCoreLogger()->GetLog(); }
};

/// Takes an input apart. Behind its end come zeros and empty texts.
class TByteReader {
public:
    TByteReader(const std::uint8_t* data, std::size_t size) : fNext(data), fEnd(data + size) {}

    bool IsAtEnd() const { return fNext == fEnd; }
    std::uint8_t Byte() { return IsAtEnd() ? std::uint8_t{0} : *fNext++; }
    /// Eight bytes, the lowest first.
    std::uint64_t Number();
    /// At most as many bytes.
    std::string Bytes(std::size_t count);
    /// Up to the next line feed, which is taken and left out.
    std::string Line();
    /// A length byte, of which 5 bits count, and the text.
    std::string Text() { return Bytes(Byte() % 32); }
    template <typename T, std::size_t kSize>
    T& Pick(T (&table)[kSize]) {
        return table[Byte() % kSize];
    }

private:
    const std::uint8_t* fNext;
    const std::uint8_t* fEnd;
};

/// Whether values of the type can be made from text.
bool HasTextForm(TCIMValue::TCIMType type);

/// A value written as a line. Its first character is the type, the ECIMType in the lower 5 bits: 'A' is boolean, 'B'
/// uint8, 'M' string, 'Q' an array of boolean. Then comes the text; "~" is NULL, and '|' stands between elements.
/// Raises what making the value raises.
TCIMValue ReadValueLine(const std::string& line, TContainer& container);
TCIMValue::TCIMType TypeOfLine(const std::string& line);

#endif
