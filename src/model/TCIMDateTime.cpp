#include "kyr/TCIMDateTime.h"

#include <boost/make_shared.hpp>

#include "kyr/TKYRException.h"
#include "model/TCIMDateTimeImpl.h"

namespace {
// Compatibility: a copy does not take the precision flag over; see docs/oddities.md.
boost::shared_ptr<TCIMDateTimeImpl> CopyOf(const TCIMDateTimeImpl& body) {
    auto copy = boost::make_shared<TCIMDateTimeImpl>(body);
    copy->SetPrecision(false);
    return copy;
}
}  // namespace

TCIMDateTime::TCIMDateTime() : fBody(boost::make_shared<TCIMDateTimeImpl>()) {}
TCIMDateTime::TCIMDateTime(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
                           unsigned short minute, unsigned short second, unsigned int microSeconds, short utcOffset)
    : TCIMDateTime() {
    Set(year, month, day, hour, minute, second, microSeconds, utcOffset);
}
TCIMDateTime::TCIMDateTime(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
                           unsigned int microSeconds)
    : TCIMDateTime() {
    Set(days, hours, minutes, seconds, microSeconds);
}
TCIMDateTime::TCIMDateTime(const std::string& text) : TCIMDateTime() { Set(text); }
TCIMDateTime::TCIMDateTime(const TCIMDateTime& other) : fBody(CopyOf(*other.fBody)) {}
TCIMDateTime::TCIMDateTime(const boost::shared_ptr<TCIMDateTimeImpl>& body) : fBody(body) {}
TCIMDateTime& TCIMDateTime::operator=(const TCIMDateTime& other) {
    fBody = CopyOf(*other.fBody);
    return *this;
}
TCIMDateTime::~TCIMDateTime() = default;

void TCIMDateTime::Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
                       unsigned short minute, unsigned short second, unsigned int microSeconds, short utcOffset) {
    fBody->Set(year, month, day, hour, minute, second, microSeconds, utcOffset);
}
void TCIMDateTime::Set(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
                       unsigned int microSeconds) {
    fBody->Set(days, hours, minutes, seconds, microSeconds);
}
void TCIMDateTime::Set(const std::string& text) { fBody->Set(text); }
void TCIMDateTime::Clear() { fBody->Clear(); }

bool TCIMDateTime::IsNull() const { return fBody->IsNull(); }
bool TCIMDateTime::IsInterval() const { return fBody->IsInterval(); }
unsigned short TCIMDateTime::GetYear() const { return fBody->GetYear(); }
unsigned short TCIMDateTime::GetMonth() const { return fBody->GetMonth(); }
unsigned int TCIMDateTime::GetDay() const { return fBody->GetDay(); }
unsigned short TCIMDateTime::GetHour() const { return fBody->GetHour(); }
unsigned short TCIMDateTime::GetMinute() const { return fBody->GetMinute(); }
unsigned short TCIMDateTime::GetSecond() const { return fBody->GetSecond(); }
unsigned int TCIMDateTime::GetMicroSeconds() const { return fBody->GetMicroSeconds(); }
short TCIMDateTime::GetUTCOffset() const { return fBody->GetUTCOffset(); }
bool TCIMDateTime::GetPrecision() const { return fBody->GetPrecision(); }
void TCIMDateTime::SetPrecision(bool dateOnly) { fBody->SetPrecision(dateOnly); }

std::string TCIMDateTime::ToString() const { return fBody->ToString(); }
std::string TCIMDateTime::ToUIString() const { return fBody->ToUIString(); }
std::string TCIMDateTime::ToAbbrUIString() const { return fBody->ToAbbrUIString(); }

bool TCIMDateTime::operator==(const TCIMDateTime& other) const { return *fBody == *other.fBody; }
bool TCIMDateTime::operator<(const TCIMDateTime& other) const { return *fBody < *other.fBody; }
TCIMDateTime TCIMDateTime::operator+(const TCIMDateTime& other) const {
    return TCIMDateTime(boost::make_shared<TCIMDateTimeImpl>(*fBody + *other.fBody));
}
TCIMDateTime TCIMDateTime::operator-(const TCIMDateTime& other) const {
    return TCIMDateTime(boost::make_shared<TCIMDateTimeImpl>(*fBody - *other.fBody));
}
TCIMDateTime TCIMDateTime::GetDifference(TCIMDateTime&, TCIMDateTime&) { throw TKYRException(kyrStatusNotImplemented); }

boost::shared_ptr<TCIMDateTimeImpl> TCIMDateTime::GetBody() const { return fBody; }
