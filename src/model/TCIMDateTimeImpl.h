#ifndef KYR_MODEL_TCIMDATETIMEIMPL_H
#define KYR_MODEL_TCIMDATETIMEIMPL_H

#include <ctime>
#include <string>
#include <utility>

/// The fields of a CIM date-time, which is a timestamp or an interval, and its arithmetic.
class TCIMDateTimeImpl {
public:
    /// An interval of that length; its days are cut to 32 bits.
    static TCIMDateTimeImpl Interval(unsigned long seconds, unsigned int microSeconds);

    void Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hour, unsigned short minute,
             unsigned short second, unsigned int microSeconds, short utcOffset);
    void Set(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
             unsigned int microSeconds);
    void Set(const std::string& text);
    void Clear() { fNull = true; }

    bool IsNull() const { return fNull; }
    bool IsInterval() const { return fInterval; }
    unsigned short GetYear() const { return fYear; }
    unsigned short GetMonth() const { return fMonth; }
    unsigned int GetDay() const { return fDay; }
    unsigned short GetHour() const { return fHour; }
    unsigned short GetMinute() const { return fMinute; }
    unsigned short GetSecond() const { return fSecond; }
    unsigned int GetMicroSeconds() const { return fMicroSeconds; }
    short GetUTCOffset() const { return fUTCOffset; }
    bool GetPrecision() const { return fPrecision; }
    void SetPrecision(bool dateOnly) { fPrecision = dateOnly; }

    std::string ToString() const;
    std::string ToUIString() const;
    std::string ToAbbrUIString() const;

    bool operator==(const TCIMDateTimeImpl& other) const;
    bool operator<(const TCIMDateTimeImpl& other) const;
    TCIMDateTimeImpl operator+(const TCIMDateTimeImpl& other) const;
    TCIMDateTimeImpl operator-(const TCIMDateTimeImpl& other) const;

private:
    using TSeconds = std::pair<long, unsigned int>;  // and microseconds

    void RequireValue() const;
    void RequireSameKind(const TCIMDateTimeImpl& other) const;
    /// Since 1970 for a timestamp, the length of an interval.
    TSeconds Seconds() const;
    /// Seconds since 1970 of the fields read as local standard time, without the UTC offset.
    long LocalSeconds() const;
    unsigned int IntervalSeconds() const;
    long IntervalTotal() const;
    TCIMDateTimeImpl TimestampOf(long total) const;
    std::string IntervalToUIString() const;

    bool fNull = true;
    unsigned short fYear = 0;
    unsigned short fMonth = 0;
    unsigned int fDay = 0;
    unsigned short fHour = 0;
    unsigned short fMinute = 0;
    unsigned short fSecond = 0;
    unsigned int fMicroSeconds = 0;
    short fUTCOffset = 0;
    bool fInterval = false;
    bool fPrecision = false;
};

#endif
