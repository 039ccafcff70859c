/**
 * @file
 * The C interface of kyrcore: all that a plugin needs. Valid C99 and C++.
 *
 * Conventions:
 *  1. Handles are opaque pointers to objects of the core. One that was deleted, or that is of another kind, is not
 *     recognised as such: the call then works on memory that is not its own.
 *  2. What a kyrNew call makes belongs to the plugin until the matching kyrDelete call. Values, references,
 *     date-times and texts that are passed in are copied; texts that are handed out belong to the core.
 *  3. Every call returns a status unless told otherwise; kyrStatusOK is 0.
 *  4. A NULL parameter gives kyrStatusFail and a line in the log that names the call, such as "kyrAddClass: NULL
 *     name parameter". Where a call does not test a parameter, that is told. Hosts match on these lines, so that a
 *     few odd ones stay: see docs/oddities.md.
 *  5. Booleans and integers up to 32 bits travel as 32-bit integers and are cut inside to the width in the
 *     call's name: kyrAddUint16Property of 70000 stores 4464. A nonzero boolean is true.
 *  6. All calls come on the thread on which the host runs the core, from inside one of the plugin's callbacks;
 *     kyrRegisterPlugin alone comes from its library's load-time constructor.
 *  7. Some calls let a C++ exception of the core pass, where told. Build C plugins with -fexceptions, so that
 *     such an exception finds its way through their frames to the core's own handlers. Any call may let
 *     std::bad_alloc pass in this way, except kyrAddClass while it makes the instance.
 *  8. Libraries of plugins share one symbol scope: make every function and variable static, or hide it.
 */
#ifndef KYR_PLUGIN_H
#define KYR_PLUGIN_H

#include <stdint.h>

#include "kyr/kyrExport.h"
#include "kyr/kyrLog.h"
#include "kyr/kyrStatus.h"

#ifdef __cplusplus
#include <vector>

class IPlugin;
class TCIMDateTime;
class TCIMReference;
class TCIMValue;
class TCPluginCallbacks;
struct kyriIOHandle;

typedef kyriIOHandle* kyrIOHandle;
typedef TCPluginCallbacks* kyrPluginHandle;
typedef IPlugin* kyrPluginId;
typedef TCIMDateTime* kyrCIMDateTime;
typedef TCIMReference* kyrCIMReference;
typedef TCIMValue* kyrCIMValue;
typedef std::vector<TCIMValue>* kyrCIMValueArray;

extern "C" {
#else
typedef struct kyriIOHandle* kyrIOHandle;           /**< one running data callback and its open instance */
typedef struct kyriPluginHandle* kyrPluginHandle;   /**< the plugin itself, from kyrRegisterPlugin on */
typedef struct kyriPluginId* kyrPluginId;           /**< the plugin as the plugin manager lists it */
typedef struct kyriCIMDateTime* kyrCIMDateTime;     /**< a CIM datetime: NULL, a timestamp or an interval */
typedef struct kyriCIMReference* kyrCIMReference;   /**< names a class, or an instance by its key values */
typedef struct kyriCIMValue* kyrCIMValue;           /**< one typed value; made by C++ hosts only */
typedef struct kyriCIMValueArray* kyrCIMValueArray; /**< the elements of an array property */
#endif

/**
 * @defgroup version The version of this interface
 *
 * What a plugin gives as interfaceVersion of its kyrPluginInfo, as text and as numbers for \#if.
 *
 * A new minor number adds calls and status codes, and takes nothing away: a plugin built for an older one runs as
 * before. A plugin that uses a call of a newer one than the core has cannot be loaded. Within a major number
 * kyrPluginCallbacks and kyrPluginInfo keep their size and the meaning of all members, since a plugin and a core that
 * were built at different times hand them to each other. Should plugins get more entries, "reserved" points to a record
 * of them, which is read only if interfaceVersion has the minor number that brought it.
 *
 * A new major number changes calls or records. The tool kyr refuses a plugin built for a newer major number than its
 * own, and tells of one built for a newer minor number or for none that it knows. The core itself looks at neither.
 * @{
 */

#define KYR_INTERFACE_MAJOR 1 /**< changes calls or records */
#define KYR_INTERFACE_MINOR 0 /**< adds calls and status codes */
/** Both as text. */
#define KYR_INTERFACE_VERSION KYRI_VERSION_TEXT(KYR_INTERFACE_MAJOR, KYR_INTERFACE_MINOR)
/** @cond */
#define KYRI_VERSION_TEXT(major, minor) KYRI_TEXT(major) "." KYRI_TEXT(minor)
#define KYRI_TEXT(number) #number
/** @endcond */

/** @} */

/**
 * @defgroup registration Registration
 * @{
 */

/** What a plugin has. */
typedef enum kyrPluginType {
    kyrPluginDataCollector = 0, /**< has a CIM-XML document and is asked for data */
    kyrPluginDocumentOnly = 1   /**< has a CIM-XML document and is never asked */
} kyrPluginType;

/** What the info entry tells. The texts stay the plugin's; the core copies them at each question. */
typedef struct kyrPluginInfo {
    const char* name;             /**< in log lines and in the class qualifier PLUGINNAME; never NULL */
    const char* version;          /**< in the class qualifier PLUGINVERSION; never NULL */
    const char* interfaceVersion; /**< KYR_INTERFACE_VERSION: the one that the plugin was built for */
    int32_t pluginType;           /**< a kyrPluginType; any other number: neither a document nor data */
    int32_t urlType;              /**< handed on to the host, without meaning to the core; 0 will do */
} kyrPluginInfo;

/**
 * The plugin's entries. Each gets the plugin's own handle first. A nonzero status is a failure, after which the core
 * goes on with the next plugin; that of the data entry is a line in the log, that of the init entry is not.
 */
typedef struct kyrPluginCallbacks {
    void* reserved; /**< copied, never read; NULL will do */
    /**
     * Called once, after the library's constructors have run and before the plugin's document is read; after a failure
     * it is not read. The plugin's classes are not in the schema yet, and no computer system has been collected.
     */
    kyrStatusCode (*init)(kyrPluginHandle plugin);
    /** For hosts that shut plugins down; the core never calls it. */
    kyrStatusCode (*deInit)(kyrPluginHandle plugin);
    /**
     * Asks for all instances of the count classes named. handle and classNames are good until the entry returns. It is
     * called once in a query for ordinary classes and once for association classes, and not at all for none. Returning
     * kyrStatusOK stores the instance that is still open; with any other status it is dropped, while instances that
     * were closed before stay.
     */
    kyrStatusCode (*getData)(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count);
    /**
     * Asked anew at each question and for each line that the plugin logs, also before init: it must be cheap, without
     * side effects, and must not log, which would call it again.
     */
    kyrPluginInfo (*getInfo)(kyrPluginHandle plugin);
    /** For hosts; the core never calls it. After it returned kyrStatusOK the plugin's handle is gone. */
    kyrStatusCode (*prepareForUnload)(kyrPluginHandle plugin);
} kyrPluginCallbacks;

/**
 * Registers a plugin; to be called from a load-time constructor of its library. The entries are copied, and the
 * plugin's handle is stored through pluginHandle. One library may register several plugins, which then share its
 * document. Both parameters are asserted, not refused: NULL ends the process. Lets exceptions pass, which in a
 * constructor end the process too. The plugin manager must be there, so the library must be opened by it.
 */
KYR_API kyrStatusCode kyrRegisterPlugin(kyrPluginCallbacks* callbacks, kyrPluginHandle* pluginHandle);

/** @} */

/**
 * @defgroup services Services
 * @{
 */

/** The plugin as the plugin manager lists it, for plugins in C++. Tests no parameter. */
KYR_API kyrStatusCode kyrGetHandle(kyrPluginHandle handle, kyrPluginId* out);

/**
 * The path of the plugin's library. The text is the core's and lives as long as the handle; NULL until the init
 * entry is called. The handle is not tested.
 */
KYR_API kyrStatusCode kyrGetPluginPath(kyrPluginHandle handle, const char** path);

/**
 * Writes one line to the log, under the plugin's name, or the core's if handle is NULL. A severity outside
 * kyrLogSeverity that passes the log's threshold raises a C++ exception, which this call lets pass.
 */
KYR_API void kyrWriteLog(kyrPluginHandle handle, kyrLogSeverity severity, const char* text);

/** @{ */
/**
 * The name of the computer system that was collected into the schema container, and its creation class name:
 * the keys that most references need. The text is the core's, the same at each call even if the name changes, and is
 * never freed. Before a computer system has been collected, and where there are two, kyrGetSystemName gives
 * kyrStatusNotFound without a line in the log; ask again later, as in the pass for association classes. A host that
 * collects into another container than the schema has no system here.
 */
KYR_API kyrStatusCode kyrGetSystemName(const char** name);
KYR_API kyrStatusCode kyrGetSystemCreationClassName(const char** name);
/** @} */

/** The hook of the library's load-time constructor; does nothing. */
KYR_API void CoreInit(void);

/** @} */

/**
 * @defgroup instances Building instances
 * @{
 */

/**
 * Opens a new instance of the class, after storing the one that was open before. Storing fails with
 * kyrStatusInvalidInstance when a key is still NULL: that instance then stays open, and no new one is made.
 * kyrStatusNotFound: no such class. The instance stored before stays the current one in that case: properties still
 * reach it, and the next kyrAddClass or the end of the entry stores it a second time.
 *
 * Abstract classes and classes that were not asked for are accepted, and so are instances with the keys of another,
 * unless the host's container refuses: the tool kyr gives kyrStatusAccessDenied for a class of another plugin.
 * A failure is a line that begins with "kyrAddClass: ". This call and those below that set a property also write a
 * line at kyrLogVerbose, such as "kyrAddClass(MOLTA_Fan)".
 */
KYR_API kyrStatusCode kyrAddClass(kyrIOHandle handle, const char* name);

/**
 * Sets a property of the open instance from text, read as the type that the class declares for it. Gives
 * kyrStatusInvalidClass with no open instance, kyrStatusNotFound for a property that the class does not declare,
 * kyrStatusInvalidDateTime for a bad date-time text, kyrStatusTypeMismatch for an array, kyrStatusNotImplemented for a
 * reference. Text that is no number reads as 0 without a complaint; "0x10" is 16 and "010" is 8. A failure is a line
 * "kyrAddProperty: ..." in the log.
 */
KYR_API kyrStatusCode kyrAddProperty(kyrIOHandle handle, const char* name, const char* value);

/** @{ */
/**
 * Set a property of the open instance. The type in the call's name must be the declared one:
 * kyrStatusTypeMismatch otherwise, and nothing is converted. kyrStatusInvalidClass and kyrStatusNotFound as
 * above. A failed call leaves the instance open and as it was. A C++ exception passes when the value has no
 * text form for the trace line: a NULL value, a date-time that was never set, a reference without a class.
 *
 * The log does not tell the calls apart: a NULL handle or name is refused in the name of kyrAddCIMValueProperty, a
 * failure is a line "AddProperty: CIM class ... threw exception ..." that does not name the property, and each trace
 * line begins with "kyrAdd<>Property(". Raise the log's threshold to kyrLogVerbose to see which property it was.
 */
KYR_API kyrStatusCode kyrAddBooleanProperty(kyrIOHandle handle, const char* name, int32_t value);
KYR_API kyrStatusCode kyrAddUint8Property(kyrIOHandle handle, const char* name, uint32_t value);
KYR_API kyrStatusCode kyrAddSint8Property(kyrIOHandle handle, const char* name, int32_t value);
KYR_API kyrStatusCode kyrAddUint16Property(kyrIOHandle handle, const char* name, uint32_t value);
KYR_API kyrStatusCode kyrAddSint16Property(kyrIOHandle handle, const char* name, int32_t value);
KYR_API kyrStatusCode kyrAddUint32Property(kyrIOHandle handle, const char* name, uint32_t value);
KYR_API kyrStatusCode kyrAddSint32Property(kyrIOHandle handle, const char* name, int32_t value);
KYR_API kyrStatusCode kyrAddUint64Property(kyrIOHandle handle, const char* name, uint64_t value);
KYR_API kyrStatusCode kyrAddSint64Property(kyrIOHandle handle, const char* name, int64_t value);
KYR_API kyrStatusCode kyrAddStringProperty(kyrIOHandle handle, const char* name, const char* value);
KYR_API kyrStatusCode kyrAddReferenceProperty(kyrIOHandle handle, const char* name, kyrCIMReference reference);
KYR_API kyrStatusCode kyrAddDateTimeProperty(kyrIOHandle handle, const char* name, kyrCIMDateTime datetime);
/** @} */

/**
 * For plugins in C++, which make values themselves. The value is not tested for NULL. For reals, which have no call of
 * their own, use kyrAddProperty.
 */
KYR_API kyrStatusCode kyrAddCIMValueProperty(kyrIOHandle handle, const char* name, kyrCIMValue value);

/**
 * Sets an array property; the elements are copied, and the array stays the plugin's. There must be an open
 * instance: neither the handle nor the instance is tested. A property that the class does not declare and an
 * element of another type than the declared one raise a C++ exception, which this call lets pass. Such an element
 * is also a line "ERROR: Attempting to create array of type ..." in the log. An empty array is a value, and not NULL.
 */
KYR_API kyrStatusCode kyrAddArrayProperty(kyrIOHandle handle, const char* name, kyrCIMValueArray array);

/** @} */

/**
 * @defgroup arrays Value arrays
 * @{
 */

/** A new array is empty. */
KYR_API kyrStatusCode kyrNewCIMValueArray(kyrCIMValueArray* array);
/** Does not touch the properties that it was set as. */
KYR_API kyrStatusCode kyrDeleteCIMValueArray(kyrCIMValueArray array);

/** @{ */
/**
 * Append one element; its type is checked when the array is set as a property. An empty text is a value. A reference
 * without a class raises a C++ exception, which the call lets pass.
 */
KYR_API kyrStatusCode kyrArrayAddBoolean(kyrCIMValueArray array, int32_t value);
KYR_API kyrStatusCode kyrArrayAddUint8(kyrCIMValueArray array, uint32_t value);
KYR_API kyrStatusCode kyrArrayAddSint8(kyrCIMValueArray array, int32_t value);
KYR_API kyrStatusCode kyrArrayAddUint16(kyrCIMValueArray array, uint32_t value);
KYR_API kyrStatusCode kyrArrayAddSint16(kyrCIMValueArray array, int32_t value);
KYR_API kyrStatusCode kyrArrayAddUint32(kyrCIMValueArray array, uint32_t value);
KYR_API kyrStatusCode kyrArrayAddSint32(kyrCIMValueArray array, int32_t value);
KYR_API kyrStatusCode kyrArrayAddUint64(kyrCIMValueArray array, uint64_t value);
KYR_API kyrStatusCode kyrArrayAddSint64(kyrCIMValueArray array, int64_t value);
KYR_API kyrStatusCode kyrArrayAddString(kyrCIMValueArray array, const char* value);
KYR_API kyrStatusCode kyrArrayAddReference(kyrCIMValueArray array, kyrCIMReference value);
KYR_API kyrStatusCode kyrArrayAddDateTime(kyrCIMValueArray array, kyrCIMDateTime value);
/** @} */

/** @} */

/**
 * @defgroup references References
 * @{
 */

/**
 * A reference into the container that the handle fills. Name its class first, then bind its keys. It may outlive the
 * data entry, but not the container; the instance that it names may be delivered later, or by another plugin.
 */
KYR_API kyrStatusCode kyrNewCIMReference(kyrCIMReference* reference, kyrIOHandle handle);
/** Does not touch what it was set as or added to. */
KYR_API kyrStatusCode kyrDeleteCIMReference(kyrCIMReference reference);

/** kyrStatusNotFound: no such class. kyrStatusInvalidOpSequence: keys are bound already. */
KYR_API kyrStatusCode kyrSetReferenceClassName(kyrCIMReference reference, const char* className);

/** Object paths are printed, never read: always kyrStatusNotImplemented. */
KYR_API kyrStatusCode kyrSetReferencePath(kyrCIMReference reference, const char* objectName);

/** @{ */
/**
 * Bind a key; the first value of a key stays. kyrStatusInvalidOpSequence: no class yet, or not a key of it;
 * kyrStatusNotFound: no such property; kyrStatusTypeMismatch: another type than the declared one. Spell the key
 * as the class declares it, or the reference will not find its instance. All keys of the class must be bound for that.
 * kyrReferenceAddReference gives kyrStatusInvalidReference for a value that has no class.
 */
KYR_API kyrStatusCode kyrReferenceAddBoolean(kyrCIMReference reference, const char* key, int32_t value);
KYR_API kyrStatusCode kyrReferenceAddUint8(kyrCIMReference reference, const char* key, uint32_t value);
KYR_API kyrStatusCode kyrReferenceAddSint8(kyrCIMReference reference, const char* key, int32_t value);
KYR_API kyrStatusCode kyrReferenceAddUint16(kyrCIMReference reference, const char* key, uint32_t value);
KYR_API kyrStatusCode kyrReferenceAddSint16(kyrCIMReference reference, const char* key, int32_t value);
KYR_API kyrStatusCode kyrReferenceAddUint32(kyrCIMReference reference, const char* key, uint32_t value);
KYR_API kyrStatusCode kyrReferenceAddSint32(kyrCIMReference reference, const char* key, int32_t value);
KYR_API kyrStatusCode kyrReferenceAddUint64(kyrCIMReference reference, const char* key, uint64_t value);
KYR_API kyrStatusCode kyrReferenceAddSint64(kyrCIMReference reference, const char* key, int64_t value);
KYR_API kyrStatusCode kyrReferenceAddString(kyrCIMReference reference, const char* key, const char* value);
KYR_API kyrStatusCode kyrReferenceAddReference(kyrCIMReference reference, const char* key, kyrCIMReference value);
KYR_API kyrStatusCode kyrReferenceAddDateTime(kyrCIMReference reference, const char* key, kyrCIMDateTime value);
/** @} */

/** @} */

/**
 * @defgroup datetimes Date-times
 * @{
 */

/** A new date-time is NULL until it is set. What is refused below leaves it as it was, and is not logged. */
KYR_API kyrStatusCode kyrNewCIMDateTime(kyrCIMDateTime* datetime);
/** Does not touch what it was set as or added to. */
KYR_API kyrStatusCode kyrDeleteCIMDateTime(kyrCIMDateTime datetime);

/** The present time, to the millisecond, with the offset from UTC that the process's time zone has now. */
KYR_API kyrStatusCode kyrGetLocalTime(kyrCIMDateTime datetime);

/**
 * A timestamp; utcOffset in minutes east of Greenwich. Fields out of range are taken as they come, except that
 * a moment the C library's mktime refuses gives kyrStatusInvalidDateTime.
 */
KYR_API kyrStatusCode kyrSetDateTime(kyrCIMDateTime datetime, uint32_t year, uint32_t month, uint32_t day,
                                     uint32_t hour, uint32_t minute, uint32_t second, uint32_t microseconds,
                                     int32_t utcOffset);

/**
 * An interval. Hours over 23, minutes or seconds over 59, and microseconds over 999999 give kyrStatusInvalidDateTime;
 * days have no limit.
 */
KYR_API kyrStatusCode kyrSetDateTimeInterval(kyrCIMDateTime datetime, uint32_t days, uint32_t hours, uint32_t minutes,
                                             uint32_t seconds, uint32_t microseconds);

/**
 * "20041231235959.000000+060" or, for an interval, "00000001020304.000005:000"; no asterisks. The days of an interval
 * are cut to 16 bits here: 65536 days read as none. Any other form: kyrStatusInvalidDateTime.
 */
KYR_API kyrStatusCode kyrSetDateTimeString(kyrCIMDateTime datetime, const char* str);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
