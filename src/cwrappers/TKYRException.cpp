#include "kyr/TKYRException.h"

TKYRException::~TKYRException() = default;

const char* TKYRException::what() const noexcept { return kyrTranslateStatusCode(fCode); }
