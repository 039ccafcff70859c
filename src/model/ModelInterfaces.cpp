#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/ICIMElement.h"

// Out of line, so that the type information of each interface stands in the library alone.
ICIMElement::~ICIMElement() = default;
ICIMAllowQualifiers::~ICIMAllowQualifiers() = default;
