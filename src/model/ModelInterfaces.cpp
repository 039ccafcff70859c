#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/ICIMElement.h"

// Defined here, so that vtable and type information of each interface are emitted once, in the library.
ICIMElement::~ICIMElement() = default;
ICIMAllowQualifiers::~ICIMAllowQualifiers() = default;
