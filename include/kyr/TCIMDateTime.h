#ifndef TCIMDATETIME_H
#define TCIMDATETIME_H

#include <boost/shared_ptr.hpp>
#include <string>

#include "kyr/kyrExport.h"

class TCIMDateTimeImpl;

/// The CIM datetime: NULL, a timestamp with its UTC offset, or an interval. A copy makes a body of its own, and
/// carries everything but the precision flag. Every failure is kyrStatusInvalidDateTime.
class KYR_API TCIMDateTime {
public:
    /// A NULL date-time.
    TCIMDateTime();
    /// A timestamp; utcOffset in minutes east of Greenwich.
    TCIMDateTime(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
                 unsigned short minute, unsigned short second, unsigned int microSeconds, short utcOffset);
    /// An interval.
    TCIMDateTime(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
                 unsigned int microSeconds);
    /// From the 25-character text form.
    TCIMDateTime(const std::string& text);
    TCIMDateTime(const TCIMDateTime& other);
    TCIMDateTime& operator=(const TCIMDateTime& other);
    ~TCIMDateTime();

    /// A timestamp. The fields are stored as given, out of range or not; only a moment that mktime answers with -1 is
    /// refused, which leaves the object as it was.
    void Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hour, unsigned short minute,
             unsigned short second, unsigned int microSeconds, short utcOffset);
    /// An interval. Hours over 23, minutes or seconds over 59 and microseconds over 999999 are refused; days have no
    /// limit. Year, month and UTC offset stay what they were.
    void Set(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
             unsigned int microSeconds);
    /// "yyyymmddHHMMSS.uuuuuu+ooo", or "ddddddddHHMMSS.uuuuuu:000" for an interval, whose days are taken modulo 65536.
    /// No wildcards.
    void Set(const std::string& text);
    /// Makes it NULL.
    void Clear();

    bool IsNull() const;
    bool IsInterval() const;
    unsigned short GetYear() const;
    unsigned short GetMonth() const;
    /// Day of the month, or an interval's count of days.
    unsigned int GetDay() const;
    unsigned short GetHour() const;
    unsigned short GetMinute() const;
    unsigned short GetSecond() const;
    unsigned int GetMicroSeconds() const;
    /// Minutes east of Greenwich.
    short GetUTCOffset() const;
    /// True: ToUIString of a timestamp shows the date alone. Belongs to this one handle; copies start with false.
    bool GetPrecision() const;
    void SetPrecision(bool dateOnly);

    /// The 25-character form. Raises for NULL, as do the other two.
    std::string ToString() const;
    /// For people: "1 day 2 hours " with its final blank, or "12/31/2004 23:59:59". A zero interval is empty.
    std::string ToUIString() const;
    /// "26:03:04.005": an interval's hours, minutes, seconds and milliseconds. Empty for a timestamp.
    std::string ToAbbrUIString() const;

    /// Comparing raises for NULL and for a timestamp against an interval. Timestamps compare as moments, their
    /// offsets counted in.
    bool operator==(const TCIMDateTime& other) const;
    bool operator<(const TCIMDateTime& other) const;
    /// Raises for NULL and for two timestamps. Works on standard time, without daylight saving.
    TCIMDateTime operator+(const TCIMDateTime& other) const;
    /// Always a magnitude: the order of the operands does not show in the result. Raises for NULL.
    TCIMDateTime operator-(const TCIMDateTime& other) const;
    /// Not implemented: always kyrStatusNotImplemented.
    static TCIMDateTime GetDifference(TCIMDateTime& first, TCIMDateTime& second);

    boost::shared_ptr<TCIMDateTimeImpl> GetBody() const;

private:
    explicit TCIMDateTime(const boost::shared_ptr<TCIMDateTimeImpl>& body);

    boost::shared_ptr<TCIMDateTimeImpl> fBody;
};

#endif
