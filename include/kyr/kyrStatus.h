/**
 * @file
 * Status codes: the one language in which the core and its plugins tell success and failure. C calls return them;
 * inside the core and for C++ hosts they travel in a TKYRException. Details stand in the log. Valid C99 and C++.
 */
#ifndef KYR_STATUS_H
#define KYR_STATUS_H

#include <stdint.h>

#include "kyr/kyrExport.h"

/**
 * The one list of codes. The enumeration and the table of texts are both made from it, so they cannot drift
 * apart. The numbers are part of the plugin interface: entries are never moved, and those that the core itself
 * never raises stay, since a plugin may return them. What the others mean, where the core raises them:
 *
 *   NotImplemented               an operation that exists for compatibility alone, such as reading an object path or
 *                                copying an instance; ordering two arrays
 *   Fail                         a C call with a NULL parameter; a severity that is none; a plugin without classes; a
 *                                library whose name gives no document's name; a program that a signal ended; and what
 *                                has no code of its own
 *   OutOfMemory                  kyrAddClass has no memory for the instance; none for a document
 *   InvalidClass                 a class that is not abstract has no key; a property call with no instance open
 *   InvalidProperty              an array has an element of another type than its own
 *   InvalidSpecificationDocument no CIM-XML of the kind that is read, or more than 104857600 bytes of it
 *   FileSystemError              a file or directory cannot be opened, made, read or written, or a library not loaded
 *   DirectoryAlreadyExists       TOSSpecific::CreateDir
 *   TypeMismatch                 a value is read or stored as another type than its own; a reference to another class
 *                                than declared; an override of another type
 *   NotFound                     no class, property, qualifier, key or instance of that name; no single instance to
 *                                take the system's name from
 *   AlreadyExists                a class, qualifier declaration or property declaration of that name is there
 *   InvalidOpSequence            a reference is filled in the wrong order: class first, then keys
 *   InvalidInstance              a key is NULL when the instance is stored
 *   InvalidPlugin                a plugin in C++ that cannot be queried
 *   InvalidDateTime              a date-time that cannot be set, or a NULL one that is printed, compared or added
 *   NotAssociation               a reference property in a class without the qualifier ASSOCIATION
 *   InvalidReference             a reference without a class is used
 *   InvalidCIMName               a name that is not letters, digits and "_" with no digit first
 *   FileNotFound                 no such file, or a directory in its place
 *   AccessDenied                 no permission for the log file or a new directory
 *   NotOverridable               a qualifier that is there may not be replaced by another one
 *   InvalidGzipFile              a document with ".gz" in its path that is not gzip-compressed
 *   CorruptGzipFile              a compressed document of another length than it says
 *   NotSupported                 a number in a base that its type is not printed in; differences of a container that
 *                                has none
 *   ValueIsNULL                  NULL is read or printed
 *   ConnectionFailed             the upload server is not found or does not answer
 *   LibCurlFailure               libcurl is not there, or the upload failed otherwise
 *   InvalidFormat                a machine type or serial number that does not have the form of one
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

/**
 * In C++ the underlying type is fixed: a plugin may return any int, and that must stay a defined value. The core hands
 * such a number on as it is.
 */
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

/** One text for each code, indexed by it: the enumerator's own name. 39 entries, no sentinel. */
extern KYR_API const char* const kKYRErrorMessages[39];

/**
 * The text of a code: a pointer into kKYRErrorMessages, static, never to be freed. A code that is not of the
 * enumeration, such as a plugin may return, gives the text of kyrStatusEnd.
 */
KYR_API const char* kyrTranslateStatusCode(int32_t code);

#ifdef __cplusplus
}
#endif

#endif
