#ifndef CLAYOUT_H
#define CLAYOUT_H

#include <stddef.h>

#include "kyr/kyrPlugin.h"

/* What compilers of C and of C++ must both make of the interface; neither compiles this file otherwise. */
#define EXPECT_EQUAL(name, found, expected) typedef char name[(found) == (expected) ? 1 : -1]
#define EXPECT_SIZE(type, size) EXPECT_EQUAL(SizeOf_##type, sizeof(type), size)
#define EXPECT_OFFSET(type, member, offset) EXPECT_EQUAL(OffsetOf_##type##_##member, offsetof(type, member), offset)
#define EXPECT_VALUE(name, value) EXPECT_EQUAL(ValueOf_##name, (int)(name), value)

EXPECT_SIZE(kyrPluginInfo, 32);
EXPECT_OFFSET(kyrPluginInfo, name, 0);
EXPECT_OFFSET(kyrPluginInfo, version, 8);
EXPECT_OFFSET(kyrPluginInfo, interfaceVersion, 16);
EXPECT_OFFSET(kyrPluginInfo, pluginType, 24);
EXPECT_OFFSET(kyrPluginInfo, urlType, 28);

EXPECT_SIZE(kyrPluginCallbacks, 48);
EXPECT_OFFSET(kyrPluginCallbacks, reserved, 0);
EXPECT_OFFSET(kyrPluginCallbacks, init, 8);
EXPECT_OFFSET(kyrPluginCallbacks, deInit, 16);
EXPECT_OFFSET(kyrPluginCallbacks, getData, 24);
EXPECT_OFFSET(kyrPluginCallbacks, getInfo, 32);
EXPECT_OFFSET(kyrPluginCallbacks, prepareForUnload, 40);

EXPECT_SIZE(kyrIOHandle, 8);
EXPECT_SIZE(kyrPluginHandle, 8);
EXPECT_SIZE(kyrPluginId, 8);
EXPECT_SIZE(kyrCIMDateTime, 8);
EXPECT_SIZE(kyrCIMReference, 8);
EXPECT_SIZE(kyrCIMValue, 8);
EXPECT_SIZE(kyrCIMValueArray, 8);

EXPECT_SIZE(kyrPluginType, 4);
EXPECT_VALUE(kyrPluginDataCollector, 0);
EXPECT_VALUE(kyrPluginDocumentOnly, 1);

EXPECT_SIZE(kyrLogSeverity, 4);
EXPECT_VALUE(kyrLogError, 0);
EXPECT_VALUE(kyrLogWarning, 1);
EXPECT_VALUE(kyrLogStatus, 2);
EXPECT_VALUE(kyrLogDebug, 3);
EXPECT_VALUE(kyrLogVerbose, 4);
EXPECT_VALUE(kyrLogMemoryOnly, 100);

EXPECT_SIZE(kyrStatusCode, 4);
EXPECT_SIZE(kKYRErrorMessages, 39 * sizeof(char*));
EXPECT_VALUE(kyrStatusOK, 0);
EXPECT_VALUE(kyrStatusNotImplemented, 1);
EXPECT_VALUE(kyrStatusUnknownClass, 2);
EXPECT_VALUE(kyrStatusFail, 3);
EXPECT_VALUE(kyrStatusOutOfMemory, 4);
EXPECT_VALUE(kyrStatusNoMoreItems, 5);
EXPECT_VALUE(kyrStatusErrorCollectingClass, 6);
EXPECT_VALUE(kyrStatusInvalidClass, 7);
EXPECT_VALUE(kyrStatusInvalidProperty, 8);
EXPECT_VALUE(kyrStatusInvalidSpecificationDocument, 9);
EXPECT_VALUE(kyrStatusInvalidDataCollectionDocument, 10);
EXPECT_VALUE(kyrStatusFileSystemError, 11);
EXPECT_VALUE(kyrStatusDirectoryAlreadyExists, 12);
EXPECT_VALUE(kyrStatusNotArray, 13);
EXPECT_VALUE(kyrStatusTypeMismatch, 14);
EXPECT_VALUE(kyrStatusNotFound, 15);
EXPECT_VALUE(kyrStatusAlreadyExists, 16);
EXPECT_VALUE(kyrStatusInvalidOpSequence, 17);
EXPECT_VALUE(kyrStatusInvalidInstance, 18);
EXPECT_VALUE(kyrStatusCorruptedContainer, 19);
EXPECT_VALUE(kyrStatusInvalidPlugin, 20);
EXPECT_VALUE(kyrStatusInvalidDateTime, 21);
EXPECT_VALUE(kyrStatusNotAssociation, 22);
EXPECT_VALUE(kyrStatusNotReference, 23);
EXPECT_VALUE(kyrStatusInvalidReference, 24);
EXPECT_VALUE(kyrStatusInvalidCIMName, 25);
EXPECT_VALUE(kyrStatusFileNotFound, 26);
EXPECT_VALUE(kyrStatusAccessDenied, 27);
EXPECT_VALUE(kyrStatusNotOverridable, 28);
EXPECT_VALUE(kyrStatusInvalidGzipFile, 29);
EXPECT_VALUE(kyrStatusCorruptGzipFile, 30);
EXPECT_VALUE(kyrStatusNotSupported, 31);
EXPECT_VALUE(kyrStatusValueIsNULL, 32);
EXPECT_VALUE(kyrStatusINETNotFound, 33);
EXPECT_VALUE(kyrStatusConnectionFailed, 34);
EXPECT_VALUE(kyrStatusLibCurlFailure, 35);
EXPECT_VALUE(kyrStatusInvalidFormat, 36);
EXPECT_VALUE(kyrStatusContainerMismatch, 37);
EXPECT_VALUE(kyrStatusEnd, 38);

#ifdef __cplusplus
extern "C"
#endif
    /* Makes a date-time through the calls and gives the first status that is not kyrStatusOK. */
    kyrStatusCode
    UseDateTimeFromC(void);

#endif
