/* A plugin that makes the mistake that the environment names: what outside authors do wrong in their first calls. */
#include <stdlib.h>
#include <string.h>

#include "testplugin.h"

/* What no mistake frees: here it is no leak. */
static kyrCIMReference gReference;
static kyrCIMValueArray gArray;
static kyrCIMDateTime gDate;

static kyrStatusCode Init(kyrPluginHandle plugin) {
    (void)plugin;
    return kyrStatusOK;
}

static kyrStatusCode UnknownProperty(kyrIOHandle handle) { return kyrAddStringProperty(handle, "Shel", "/bin/sh"); }

static kyrStatusCode UnknownTextProperty(kyrIOHandle handle) { return kyrAddProperty(handle, "Shel", "/bin/sh"); }

static kyrStatusCode TextForNumber(kyrIOHandle handle) {
    kyrStatusCode status = kyrAddProperty(handle, "Uid", "lots");
    return status == kyrStatusOK ? kyrAddProperty(handle, "Shell", "not a number either") : status;
}

static kyrStatusCode WrongCall(kyrIOHandle handle) { return kyrAddUint32Property(handle, "Uid", 1); }

static kyrStatusCode ScalarForArray(kyrIOHandle handle) { return kyrAddStringProperty(handle, "Groups", "wheel"); }

static kyrStatusCode Ignored(kyrIOHandle handle) {
    WrongCall(handle);
    UnknownProperty(handle);
    return kyrStatusOK;
}

static kyrStatusCode UnknownClass(kyrIOHandle handle) { return kyrAddClass(handle, "TEST_Usr"); }

static kyrStatusCode EmptyClass(kyrIOHandle handle) { return kyrAddClass(handle, ""); }
static kyrStatusCode ForeignClass(kyrIOHandle handle) { return kyrAddClass(handle, "TEST_Shown"); }

static kyrStatusCode NullText(kyrIOHandle handle) { return kyrAddStringProperty(handle, "Shell", NULL); }

static kyrStatusCode DateText(kyrIOHandle handle) { return kyrAddProperty(handle, "Since", "2024-01-31"); }

static kyrStatusCode AddDate(kyrIOHandle handle, kyrStatusCode (*set)(kyrCIMDateTime)) {
    kyrStatusCode status = kyrNewCIMDateTime(&gDate);
    if (status == kyrStatusOK) status = set(gDate);
    if (status == kyrStatusOK) status = kyrAddDateTimeProperty(handle, "Since", gDate);
    kyrDeleteCIMDateTime(gDate);
    return status;
}

static kyrStatusCode SetDash(kyrCIMDateTime date) { return kyrSetDateTimeString(date, "2024-01-31"); }
static kyrStatusCode SetNothing(kyrCIMDateTime date) { return date == NULL ? kyrStatusFail : kyrStatusOK; }
static kyrStatusCode SetMonth13(kyrCIMDateTime date) { return kyrSetDateTime(date, 2026, 13, 1, 0, 0, 0, 0, 0); }
static kyrStatusCode NoSuchMonth(kyrIOHandle handle) { return AddDate(handle, SetMonth13); }
static kyrStatusCode BadDate(kyrIOHandle handle) { return AddDate(handle, SetDash); }
static kyrStatusCode NoDate(kyrIOHandle handle) { return AddDate(handle, SetNothing); }

static kyrStatusCode WrongElement(kyrIOHandle handle) {
    kyrStatusCode status = kyrNewCIMValueArray(&gArray);
    if (status == kyrStatusOK) status = kyrArrayAddUint32(gArray, 7);
    return status == kyrStatusOK ? kyrAddArrayProperty(handle, "Groups", gArray) : status;
}

static kyrStatusCode UnknownArray(kyrIOHandle handle) {
    kyrStatusCode status = kyrNewCIMValueArray(&gArray);
    return status == kyrStatusOK ? kyrAddArrayProperty(handle, "Group", gArray) : status;
}

static kyrStatusCode Refer(kyrIOHandle handle, const char* className, const char* key) {
    kyrStatusCode status = kyrNewCIMReference(&gReference, handle);
    if (status == kyrStatusOK) status = kyrSetReferenceClassName(gReference, className);
    if (status == kyrStatusOK && key != NULL) status = kyrReferenceAddString(gReference, key, "root");
    return status == kyrStatusOK ? kyrAddReferenceProperty(handle, "Home", gReference) : status;
}

static kyrStatusCode ReferenceToUnknownClass(kyrIOHandle handle) { return Refer(handle, "TEST_Flder", "Id"); }
static kyrStatusCode ReferenceWithUnknownKey(kyrIOHandle handle) { return Refer(handle, "TEST_Folder", "Ids"); }
static kyrStatusCode ReferenceToOtherClass(kyrIOHandle handle) { return Refer(handle, "TEST_User", "Id"); }

static kyrStatusCode ReferenceWithKeyOfOtherType(kyrIOHandle handle) {
    kyrStatusCode status = kyrNewCIMReference(&gReference, handle);
    if (status == kyrStatusOK) status = kyrSetReferenceClassName(gReference, "TEST_Folder");
    return status == kyrStatusOK ? kyrReferenceAddUint32(gReference, "Id", 3) : status;
}

static kyrStatusCode ReferenceByPath(kyrIOHandle handle) {
    const kyrStatusCode status = kyrNewCIMReference(&gReference, handle);
    return status == kyrStatusOK ? kyrSetReferencePath(gReference, "TEST_Folder.Id=root") : status;
}

static kyrStatusCode ReferenceWithoutClass(kyrIOHandle handle) {
    kyrStatusCode status = kyrNewCIMReference(&gReference, handle);
    return status == kyrStatusOK ? kyrReferenceAddString(gReference, "Id", "root") : status;
}

static kyrStatusCode ReferenceToNothing(kyrIOHandle handle) {
    kyrStatusCode status = kyrNewCIMReference(&gReference, handle);
    return status == kyrStatusOK ? kyrAddReferenceProperty(handle, "Home", gReference) : status;
}

static const struct {
    const char* name;
    kyrStatusCode (*make)(kyrIOHandle handle);
} kMistakes[] = {
    {"UnknownProperty", UnknownProperty},
    {"UnknownTextProperty", UnknownTextProperty},
    {"TextForNumber", TextForNumber},
    {"WrongCall", WrongCall},
    {"ScalarForArray", ScalarForArray},
    {"Ignored", Ignored},
    {"UnknownClass", UnknownClass},
    {"EmptyClass", EmptyClass},
    {"ForeignClass", ForeignClass},
    {"NullText", NullText},
    {"DateText", DateText},
    {"BadDate", BadDate},
    {"NoDate", NoDate},
    {"NoSuchMonth", NoSuchMonth},
    {"WrongElement", WrongElement},
    {"UnknownArray", UnknownArray},
    {"ReferenceToUnknownClass", ReferenceToUnknownClass},
    {"ReferenceWithUnknownKey", ReferenceWithUnknownKey},
    {"ReferenceToOtherClass", ReferenceToOtherClass},
    {"ReferenceToNothing", ReferenceToNothing},
    {"ReferenceWithKeyOfOtherType", ReferenceWithKeyOfOtherType},
    {"ReferenceByPath", ReferenceByPath},
    {"ReferenceWithoutClass", ReferenceWithoutClass},
};

static kyrStatusCode Make(kyrIOHandle handle, const char* name) {
    for (size_t i = 0; i < sizeof kMistakes / sizeof *kMistakes; ++i)
        if (strcmp(kMistakes[i].name, name) == 0) return kMistakes[i].make(handle);
    return kyrStatusOK;
}

/* A reference stands in associations alone, which are asked for in a call of their own. */
static int IsMadeIn(const char* className, const char* mistake) {
    return (strcmp(className, "TEST_UserHome") == 0) == (strncmp(mistake, "Reference", 9) == 0);
}

static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    const char* const mistake = getenv("KYR_TEST_MISTAKE");
    (void)plugin;
    for (uint32_t i = 0; i < count; ++i) {
        kyrStatusCode status = kyrStatusOK;
        if (mistake != NULL && strcmp(mistake, "EarlyProperty") == 0) return kyrAddStringProperty(handle, "Id", "root");
        Add(handle, classNames[i], "root");
        if (mistake != NULL && strcmp(classNames[i], "TEST_Folder") != 0 && IsMadeIn(classNames[i], mistake))
            status = Make(handle, mistake);
        if (status != kyrStatusOK) return status;
    }
    return kyrStatusOK;
}

__attribute__((constructor)) static void Load(void) { Register(); }
