/* What is exported from the shared library, everything else being hidden; and the interface's integer types. */
#ifndef KYR_EXPORT_H
#define KYR_EXPORT_H

#include <stdint.h>

#define KYR_API __attribute__((visibility("default")))

#endif
