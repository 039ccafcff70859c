#ifndef TCIMDATETIME_H
#define TCIMDATETIME_H

#include <boost/shared_ptr.hpp>
#include <string>

#include "kyr/kyrExport.h"

class TCIMDateTimeImpl;

/// The CIM datetime: NULL, a timestamp with its UTC offset, or an interval. A copy makes a body of its own, and
/// carries everything but the precision flag. Every failure is kyrStatusInvalidDateTime, without a line in the log, and
/// leaves the object as it was. One thread at a time per object.
///
/// Timestamps are turned into seconds by mktime and back by localtime, so the process's time zone has a say in what is
/// refused and, near changes of the clocks, in sums; it has none in what is stored and printed.
class KYR_API TCIMDateTime {
public:
    /// A NULL date-time, whose fields are 0.
    TCIMDateTime();
    /// A timestamp; month from 1, utcOffset in minutes east of Greenwich. As Set, which may raise.
    TCIMDateTime(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
                 unsigned short minute, unsigned short second, unsigned int microSeconds, short utcOffset);
    /// An interval, with the limits of Set.
    TCIMDateTime(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
                 unsigned int microSeconds);
    /// From the 25-character text form, as Set reads it. Implicit, so that a text may stand for a date-time.
    TCIMDateTime(const std::string& text);
    /// @{
    /// Copies all but the precision flag.
    TCIMDateTime(const TCIMDateTime& other);
    TCIMDateTime& operator=(const TCIMDateTime& other);
    /// @}
    ~TCIMDateTime();

    /// A timestamp. The fields are stored as given, out of range or not: a month of 13 stays 13. Only a moment that
    /// mktime answers with -1 is refused. One second before 1970 in UTC is such a moment, since -1 is its number.
    void Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hour, unsigned short minute,
             unsigned short second, unsigned int microSeconds, short utcOffset);
    /// An interval. Hours over 23, minutes or seconds over 59 and microseconds over 999999 are refused; days have no
    /// limit. Year, month and UTC offset stay what they were.
    void Set(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
             unsigned int microSeconds);
    /// "yyyymmddHHMMSS.uuuuuu+ooo", or "ddddddddHHMMSS.uuuuuu:000" for an interval, whose days are taken modulo 65536.
    /// No wildcards.
    void Set(const std::string& text);
    /// Makes it NULL. The getters go on giving the fields of before.
    void Clear();

    /// True until it is set, and after Clear.
    bool IsNull() const;
    /// The kind that was set last, also after Clear.
    bool IsInterval() const;
    /// @{
    /// The fields as they were stored, never normalised or shifted to another zone. None of the getters raises.
    unsigned short GetYear() const;
    unsigned short GetMonth() const;
    /// @}
    /// Day of the month, or an interval's count of days.
    unsigned int GetDay() const;
    /// @{
    /// Of a timestamp or of an interval.
    unsigned short GetHour() const;
    unsigned short GetMinute() const;
    unsigned short GetSecond() const;
    unsigned int GetMicroSeconds() const;
    /// @}
    /// Minutes east of Greenwich; without meaning for an interval.
    short GetUTCOffset() const;
    /// @{
    /// True: ToUIString of a timestamp shows the date alone. Belongs to this one handle; copies start with false, and
    /// so does what a TCIMValue holds. The core never sets it.
    bool GetPrecision() const;
    void SetPrecision(bool dateOnly);
    /// @}

    /// The 25-character form. Raises for NULL, as do the other two.
    std::string ToString() const;
    /// For people: "1 day 2 hours " with its final blank, or "12/31/2004 23:59:59", month first and without the UTC
    /// offset. A zero interval is empty. Reports show the final blank, so it stays.
    std::string ToUIString() const;
    /// "26:03:04.005": an interval's hours, minutes, seconds and milliseconds, days being counted as hours. Empty for a
    /// timestamp.
    std::string ToAbbrUIString() const;

    /// @{
    /// Comparing raises for NULL and for a timestamp against an interval. Timestamps compare as moments, their
    /// offsets counted in. Intervals compare by 32 bits of seconds, so that those over 49710 days wrap.
    bool operator==(const TCIMDateTime& other) const;
    bool operator<(const TCIMDateTime& other) const;
    /// @}
    /// Two intervals give an interval; a timestamp and an interval, in either order, a timestamp with the offset of the
    /// first. Raises for NULL and for two timestamps. Works on standard time, without daylight saving: near a
    /// change of the clocks the result may be an hour off.
    TCIMDateTime operator+(const TCIMDateTime& other) const;
    /// Two timestamps, their offsets counted in, or two intervals give an interval; a timestamp and an interval, in
    /// either order, a timestamp. Always a magnitude: the order of the operands does not show in the result, except
    /// that of a timestamp and an interval the right one's microseconds are taken from the left one's. Raises for NULL.
    TCIMDateTime operator-(const TCIMDateTime& other) const;
    /// Kept for hosts that link to it: always raises kyrStatusNotImplemented. Use operator-.
    static TCIMDateTime GetDifference(TCIMDateTime& first, TCIMDateTime& second);

    /// For the core. Two handles never share one.
    boost::shared_ptr<TCIMDateTimeImpl> GetBody() const;

private:
    /// Takes the body over without a copy, for the results of the operators.
    explicit TCIMDateTime(const boost::shared_ptr<TCIMDateTimeImpl>& body);

    boost::shared_ptr<TCIMDateTimeImpl> fBody;
};

#endif
