/* A plugin that reports what a check of its runs is to find, or with KYR_TEST_CLEAN the same without the mistakes. */
#define _GNU_SOURCE

#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "testplugin.h"

static int gIsClean;

static kyrStatusCode Init(kyrPluginHandle plugin) {
    (void)plugin;
    gIsClean = getenv("KYR_TEST_CLEAN") != NULL;
    return kyrStatusOK;
}

static unsigned Changing(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (unsigned)now.tv_nsec;
}

static void AddNotes(kyrIOHandle handle, const char* first, const char* second, const char* third) {
    kyrCIMValueArray array;
    kyrNewCIMValueArray(&array);
    kyrArrayAddString(array, first);
    kyrArrayAddString(array, second);
    kyrArrayAddString(array, third);
    kyrAddArrayProperty(handle, "UnavailableValues", array);
    kyrDeleteCIMValueArray(array);
}

static void AddUser(kyrIOHandle handle, const char* id) {
    Add(handle, "TEST_User", id);
    kyrAddUint16Property(handle, "State", gIsClean ? 2 : 70000);
    kyrAddStringProperty(handle, "Model", gIsClean ? "X1" : "X1  ");
    kyrAddUint32Property(handle, "Reads", gIsClean ? 1 : Changing());
    if (gIsClean)
        AddNotes(handle, "Shell: not present", "Shell: not present", "Shell: not present: /etc/passwd");
    else
        AddNotes(handle, "it has no shell", "Shel: not present", "Reads: gone");
}

static void AddHome(kyrIOHandle handle, const char* folder) {
    kyrCIMReference reference;
    Add(handle, "TEST_UserHome", "1");
    kyrNewCIMReference(&reference, handle);
    kyrSetReferenceClassName(reference, "TEST_User");
    kyrReferenceAddString(reference, "Id", folder);
    kyrAddReferenceProperty(handle, "User", reference);
    kyrDeleteCIMReference(reference);
}

static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        if (strcmp(classNames[i], "TEST_UserHome") == 0) {
            AddHome(handle, gIsClean ? "root" : "rot");
        } else if (strcmp(classNames[i], "TEST_User") == 0) {
            AddUser(handle, "root");
            AddUser(handle, gIsClean ? "daemon" : "root");
            if (gIsClean || count > 1) AddUser(handle, "guest");
        } else if (gIsClean) {
            kyrWriteLog(plugin, kyrLogWarning, "TEST_Group: this machine has no groups");
        }
    }
    return kyrStatusOK;
}

__attribute__((constructor)) static void Load(void) { Register(); }
