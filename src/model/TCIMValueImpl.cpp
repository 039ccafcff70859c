#include "model/TCIMValueImpl.h"

#include "kyr/TKYRException.h"

namespace {
[[noreturn]] void Mismatch() { throw TKYRException(kyrStatusTypeMismatch); }
}  // namespace

TCIMValueImpl::~TCIMValueImpl() = default;

TCIMValueImpl::operator bool() const { Mismatch(); }
TCIMValueImpl::operator unsigned char() const { Mismatch(); }
TCIMValueImpl::operator signed char() const { Mismatch(); }
TCIMValueImpl::operator unsigned short() const { Mismatch(); }
TCIMValueImpl::operator short() const { Mismatch(); }
TCIMValueImpl::operator unsigned int() const { Mismatch(); }
TCIMValueImpl::operator int() const { Mismatch(); }
TCIMValueImpl::operator unsigned long() const { Mismatch(); }
TCIMValueImpl::operator long() const { Mismatch(); }
TCIMValueImpl::operator float() const { Mismatch(); }
TCIMValueImpl::operator double() const { Mismatch(); }
TCIMValueImpl::operator std::string() const { Mismatch(); }
TCIMValueImpl::operator TCIMDateTime() const { Mismatch(); }
TCIMValueImpl::operator TCIMReference() const { Mismatch(); }
TCIMValueImpl::operator std::vector<TCIMValue>&() const { Mismatch(); }
