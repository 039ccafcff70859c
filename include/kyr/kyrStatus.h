/* Status codes: the one language in which the core and its plugins tell success and failure. */
#ifndef KYR_STATUS_H
#define KYR_STATUS_H

#include <stdint.h>

#include "kyr/kyrExport.h"

/*
 * The one list of codes. The enumeration and the table of texts are both made from it, so they cannot drift
 * apart. The numbers are part of the plugin interface: entries are never moved, and those that the core itself
 * never raises stay, since a plugin may return them.
 */
#define KYR_STATUS_CODES(X)                       \
    X(kyrStatusOK, 0)                             \
    X(kyrStatusNotImplemented, 1)                 \
    X(kyrStatusUnknownClass, 2)                   \
    X(kyrStatusFail, 3)                           \
    X(kyrStatusOutOfMemory, 4)                    \
    X(kyrStatusNoMoreItems, 5)                    \
    X(kyrStatusErrorCollectingClass, 6)           \
    X(kyrStatusInvalidClass, 7)                   \
    X(kyrStatusInvalidProperty, 8)                \
    X(kyrStatusInvalidSpecificationDocument, 9)   \
    X(kyrStatusInvalidDataCollectionDocument, 10) \
    X(kyrStatusFileSystemError, 11)               \
    X(kyrStatusDirectoryAlreadyExists, 12)        \
    X(kyrStatusNotArray, 13)                      \
    X(kyrStatusTypeMismatch, 14)                  \
    X(kyrStatusNotFound, 15)                      \
    X(kyrStatusAlreadyExists, 16)                 \
    X(kyrStatusInvalidOpSequence, 17)             \
    X(kyrStatusInvalidInstance, 18)               \
    X(kyrStatusCorruptedContainer, 19)            \
    X(kyrStatusInvalidPlugin, 20)                 \
    X(kyrStatusInvalidDateTime, 21)               \
    X(kyrStatusNotAssociation, 22)                \
    X(kyrStatusNotReference, 23)                  \
    X(kyrStatusInvalidReference, 24)              \
    X(kyrStatusInvalidCIMName, 25)                \
    X(kyrStatusFileNotFound, 26)                  \
    X(kyrStatusAccessDenied, 27)                  \
    X(kyrStatusNotOverridable, 28)                \
    X(kyrStatusInvalidGzipFile, 29)               \
    X(kyrStatusCorruptGzipFile, 30)               \
    X(kyrStatusNotSupported, 31)                  \
    X(kyrStatusValueIsNULL, 32)                   \
    X(kyrStatusINETNotFound, 33)                  \
    X(kyrStatusConnectionFailed, 34)              \
    X(kyrStatusLibCurlFailure, 35)                \
    X(kyrStatusInvalidFormat, 36)                 \
    X(kyrStatusContainerMismatch, 37)             \
    X(kyrStatusEnd, 38) /* the end marker, an ordinary entry of the table */

/* In C++ the underlying type is fixed: a plugin may return any int, and that must stay a defined value. */
#ifdef __cplusplus
enum kyrStatusCode : int {
#else
typedef enum kyrStatusCode {
#endif
#define KYR_STATUS_ENUMERATOR(name, number) name = number,
    KYR_STATUS_CODES(KYR_STATUS_ENUMERATOR)
#undef KYR_STATUS_ENUMERATOR
#ifdef __cplusplus
};
extern "C" {
#else
} kyrStatusCode;
#endif

/* One text for each code, indexed by it: the enumerator's own name. 39 entries, no sentinel. */
extern KYR_API const char* const kKYRErrorMessages[39];

/*
 * The text of a code: a pointer into kKYRErrorMessages, static, never to be freed. A code that is not of the
 * enumeration, such as a plugin may return, gives the text of kyrStatusEnd.
 */
KYR_API const char* kyrTranslateStatusCode(int32_t code);

#ifdef __cplusplus
}
#endif

#endif
