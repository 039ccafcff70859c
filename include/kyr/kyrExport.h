/**
 * @file
 * What is exported from the shared library, everything else being hidden; and the interface's integer types. A class
 * that hosts derive from, catch or cast to must be marked whole, so that all of them share its type information.
 * Valid C99 and C++.
 */
#ifndef KYR_EXPORT_H
#define KYR_EXPORT_H

#include <stdint.h>

/** Marks what is exported. */
#define KYR_API __attribute__((visibility("default")))

#endif
