#include <algorithm>
#include <cassert>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "cwrappers/RefusedCall.h"
#include "cwrappers/TCPluginCallbacks.h"
#include "cwrappers/TraceText.h"
#include "cwrappers/kyriIOHandle.h"
#include "kyr/ILogger.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMReference.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TCIMValue.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "kyr/TRootObject.h"
#include "kyr/kyrPlugin.h"
#include "model/TCIMArrayValueImpl.h"
#include "model/TCIMInstanceImpl.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TCIMReferenceValueImpl.h"
#include "platform/CoreLog.h"

namespace {

/// Logs that a required parameter is NULL.
kyrStatusCode Refuse(const IPlugin* plugin, const char* text) {
    TRootObject::GetCoreLogger()->OutputLogEntry(plugin, kyrLogError, text);
    return kyrStatusFail;
}

kyrStatusCode Fail(kyrStatusCode code, const std::string& text) {
    LogCoreError(text);
    return code;
}

/// Runs the work and returns the status that it raised. Logs nothing.
template <typename TWork>
kyrStatusCode Silently(TWork&& work) {
    try {
        work();
    } catch (const TKYRException& e) {
        return e.fCode;
    }
    return kyrStatusOK;
}

/// Stores a new object in *object. Plugins are promised kyrStatusOutOfMemory, though operator new raises before that.
template <typename TObject, typename... TArguments>
kyrStatusCode New(TObject** object, TArguments... arguments) {
    *object = new TObject(arguments...);
    return *object ? kyrStatusOK : kyrStatusOutOfMemory;
}

template <typename TObject>
kyrStatusCode Delete(TObject* object) {
    delete object;
    return kyrStatusOK;
}

// Room for most arrays comes at once, because growing copies all elements.
template <typename TValue>
kyrStatusCode Append(kyrCIMValueArray array, const TValue& value) {
    constexpr size_t kUsual = 16;
    if (array->capacity() == 0) array->reserve(kUsual);
    array->emplace_back(value);
    return kyrStatusOK;
}

void AddKeyOrNote(TCIMReference& reference, const char* key, const TCIMValue& value) {
    try {
        reference.AddKeyValue(key, value);
    } catch (const TKYRException& e) {
        NoteRefusedKey(e.fCode, reference, key, value);
        throw;
    }
}

template <typename TValue>
kyrStatusCode AddKey(kyrCIMReference reference, const char* key, const TValue& value) {
    return Silently([&] {
        const TCIMValue keyValue(value);
        AddKeyOrNote(*reference, key, keyValue);
    });
}

/// Notes what was given to a call that logs nothing itself, if it failed.
kyrStatusCode Note(kyrStatusCode status, const char* call, const char* className, const char* given) {
    return status == kyrStatusOK ? status : NoteRefusal(status, call, className, nullptr, given);
}

bool IsTraced() { return TRootObject::GetCoreLogger()->GetLogThreshold() >= kyrLogVerbose; }

void Trace(const kyriIOHandle& handle, std::initializer_list<std::string_view> parts) {
    if (!IsTraced()) return;
    const TTraceText text(parts);
    TRootObject::GetCoreLogger()->OutputLogEntry(handle.fPlugin, kyrLogVerbose, *text);
}

bool HavePartsText(const TCIMValue& value);

bool AlwaysHasText(const TCIMValue& value) {
    const auto type = value.GetType();
    if (value.IsNull()) return false;
    return type <= TCIMValue::TCIMType::eCIMReal64 || type == TCIMValue::TCIMType::eCIMString || HavePartsText(value);
}

// The class of a reference, or the elements of an array.
bool HavePartsText(const TCIMValue& value) {
    if (value.IsReference()) return TCIMReferenceImpl::Of(TCIMReferenceValueImpl::ReferenceOf(value)).HasClass();
    if (!value.IsArray()) return false;
    const std::vector<TCIMValue>& elements = TCIMArrayValueImpl::ElementsOf(value);
    return std::all_of(elements.begin(), elements.end(), AlwaysHasText);
}

/// Compatibility: a value without a text raises even if nothing is logged; see docs/oddities.md.
void TraceValue(const kyriIOHandle& handle, const char* name, const TCIMValue& value) {
    if (!IsTraced() && AlwaysHasText(value)) return;
    try {
        Trace(handle, {"kyrAdd<>Property(", name, ", value=", value.ToString(10), ")"});
    } catch (const TKYRException& e) {
        NoteRefusedValue(e.fCode, &handle, name, value);
        throw;
    }
}

/// Common part of all calls that add a property from a value; set(instance, name) stores it.
template <typename TSet>
kyrStatusCode AddValue(kyrIOHandle handle, const char* name, const TCIMValue* value, TSet&& set) {
    if (!handle) return Refuse(nullptr, "kyrAddCIMValueProperty: NULL kyrIOHandle parameter");
    if (!name) return Refuse(handle->fPlugin, "kyrAddCIMValueProperty: NULL name parameter");
    TraceValue(*handle, name, *value);
    TCIMInstance* instance = handle->fCurrentInstance;
    if (!instance) {
        LogCoreError("kyrAddProperty: no current instance");
        NoteRefusedValue(kyrStatusInvalidClass, handle, name, *value);
        return kyrStatusInvalidClass;
    }
    try {
        set(*instance, name);
    } catch (const TKYRException& e) {
        LogCoreError("AddProperty: CIM class " + instance->GetClass()->GetName() + " threw exception " + e.what());
        NoteRefusedValue(e.fCode, handle, name, *value);
        return e.fCode;
    }
    return kyrStatusOK;
}

/// The same for a temporary, whose content is moved.
kyrStatusCode AddTemporary(kyrIOHandle handle, const char* name, TCIMValue&& value) {
    return AddValue(handle, name, &value, [&value](TCIMInstance& instance, const char* property) {
        TCIMInstanceImpl::Of(instance).TakePropertyValue(property, value);
    });
}

void ParseAndSet(const kyriIOHandle& handle, const std::string& name, std::string text) {
    TCIMInstance& instance = *handle.fCurrentInstance;
    const TCIMPropertyDecl* declaration = instance.GetClass()->GetPropertyDecl(name);
    TCIMValue value(declaration->GetType(), text, *handle.fContainer);
    TCIMInstanceImpl::Of(instance).TakePropertyValue(name, value);
}

/// The reference as a value. Notes a failure and lets it through.
TCIMValue ValueOf(const kyriIOHandle* handle, const char* name, const TCIMReference& reference) {
    try {
        return TCIMValue(reference);
    } catch (const TKYRException& e) {
        NoteRefusedText(e.fCode, "kyrAddReferenceProperty", handle, name, "reference to no class");
        throw;
    }
}

/// The array as a value of the declared type. Notes a failure and lets it through.
TCIMValue ArrayFor(const kyriIOHandle& handle, const char* name, const std::vector<TCIMValue>& elements) {
    TCIMValue::TCIMType type = TCIMValue::TCIMType::eCIMNone;
    try {
        type = handle.fCurrentInstance->GetClass()->GetPropertyDecl(name)->GetType();
        return TCIMValue(type, 0, elements);
    } catch (const TKYRException& e) {
        NoteRefusedElements(e.fCode, handle, name, type, elements);
        throw;
    }
}

kyrStatusCode FindClass(const TContainer& container, const char* name, TCIMClass*& cls) {
    try {
        cls = container.GetClass(name);
    } catch (const TKYRException& e) {
        LogCoreError(std::string("kyrAddClass: GetClass(") + name + ") threw exception " + e.what());
        return NoteRefusal(e.fCode, "kyrAddClass", name, nullptr, nullptr);
    }
    return kyrStatusOK;
}

kyrStatusCode OpenInstance(kyriIOHandle& handle, TCIMClass& cls) {
    try {
        handle.fCurrentInstance = handle.fContainer->AllocateInstance(&cls);
    } catch (const TKYRException& e) {
        LogCoreError("kyrAddClass: Allocate instance (CIM class " + cls.GetName() + ") threw exception " + e.what());
        return NoteRefusal(e.fCode, "kyrAddClass", cls.GetName().c_str(), nullptr, nullptr);
    } catch (const std::bad_alloc&) {
        // Compatibility: names the class of the previous instance; see docs/oddities.md.
        const TCIMInstance* previous = handle.fCurrentInstance;
        return Fail(kyrStatusOutOfMemory,
                    "kyrAddClass: CIM class " + (previous ? previous->GetClass()->GetName() : "") + ": no memory");
    }
    return kyrStatusOK;
}

using TSystemFact = std::string (*)(TContainer*);

/// Asks once and caches the answer. Plugins keep the pointer, so that the text is never freed or changed.
kyrStatusCode GetSystemFact(const char* call, char*& cache, TSystemFact ask, const char** name) {
    if (!cache) {
        std::string text;
        const kyrStatusCode status = Silently([&] { text = ask(TRootObject::GetPluginManager()->GetSchema()); });
        if (status != kyrStatusOK) return NoteRefusal(status, call, nullptr, nullptr, nullptr);
        cache = static_cast<char*>(std::memcpy(new char[text.size() + 1], text.c_str(), text.size() + 1));
    }
    *name = cache;
    return kyrStatusOK;
}

char* gSystemName = nullptr;
char* gSystemCreationClassName = nullptr;

}  // namespace

// ---- Services -----------------------------------------------------------------------------------------------------

kyrStatusCode kyrRegisterPlugin(kyrPluginCallbacks* callbacks, kyrPluginHandle* pluginHandle) {
    assert(callbacks != __null);
    assert(pluginHandle != __null);
    *pluginHandle = new TCPluginCallbacks(*callbacks);
    return kyrStatusOK;
}

kyrStatusCode kyrGetHandle(kyrPluginHandle handle, kyrPluginId* out) {
    *out = handle->GetPluginHandle();
    return kyrStatusOK;
}

kyrStatusCode kyrGetPluginPath(kyrPluginHandle handle, const char** path) {
    if (!path) return Refuse(handle->GetPluginHandle(), "kyrGetPluginPath: NULL path parameter");
    *path = handle->GetPluginPath();
    return kyrStatusOK;
}

void kyrWriteLog(kyrPluginHandle handle, kyrLogSeverity severity, const char* text) {
    if (!text) return LogCore(severity, "kyrWriteLog: NULL text parameter");
    const IPlugin* plugin = handle ? handle->GetPluginHandle() : nullptr;
    TRootObject::GetCoreLogger()->OutputLogEntry(plugin, severity, text);
}

kyrStatusCode kyrGetSystemName(const char** name) {
    if (!name) return Refuse(nullptr, "kyrGetSystemName: NULL name parameter");
    return GetSystemFact("kyrGetSystemName", gSystemName, TCIMSchemaHelper::GetSystemName, name);
}

kyrStatusCode kyrGetSystemCreationClassName(const char** name) {
    if (!name) return Refuse(nullptr, "kyrGetSystemCreationClassName: NULL name parameter");
    return GetSystemFact("kyrGetSystemCreationClassName", gSystemCreationClassName,
                         TCIMSchemaHelper::GetSystemCreationClassName, name);
}

// ---- Building instances -------------------------------------------------------------------------------------------

kyrStatusCode kyrAddClass(kyrIOHandle handle, const char* name) {
    if (!handle) return Refuse(nullptr, "kyrAddClass: NULL kyrIOHandle parameter");
    if (!name) return Refuse(handle->fPlugin, "kyrAddClass: NULL name parameter");
    Trace(*handle, {"kyrAddClass(", name, ")"});
    kyrStatusCode status = Silently([handle] { handle->CloseCurrentInstance(); });
    if (status != kyrStatusOK) return status;
    TCIMClass* cls = nullptr;
    status = FindClass(*handle->fContainer, name, cls);
    return status == kyrStatusOK ? OpenInstance(*handle, *cls) : status;
}

kyrStatusCode kyrAddProperty(kyrIOHandle handle, const char* name, const char* value) {
    if (!handle) return Refuse(nullptr, "kyrAddProperty: NULL kyrIOHandle parameter");
    if (!name || !value)
        return NoteRefusedText(Refuse(handle->fPlugin, "kyrAddProperty: NULL name and/or value parameter"),
                               "kyrAddProperty", handle, name, nullptr);
    Trace(*handle, {"kyrAddProperty(", name, ", value=", value, ")"});
    if (!handle->fCurrentInstance)
        return NoteRefusedText(Fail(kyrStatusInvalidClass, "kyrAddProperty: no current instance"), "kyrAddProperty",
                               handle, name, value);
    try {
        ParseAndSet(*handle, name, value);
    } catch (const TKYRException& e) {
        const std::string& cls = handle->fCurrentInstance->GetClass()->GetName();
        std::string text = "kyrAddProperty: CIM class " + cls + " threw exception " + e.what();
        if (e.fCode == kyrStatusNotFound) text.append(" name='").append(name).append("'");
        LogCoreError(text);
        return NoteRefusedText(e.fCode, "kyrAddProperty", handle, name, value);
    }
    return kyrStatusOK;
}

kyrStatusCode kyrAddCIMValueProperty(kyrIOHandle handle, const char* name, kyrCIMValue value) {
    return AddValue(handle, name, value, [value](TCIMInstance& instance, const char* property) {
        TCIMInstanceImpl::Of(instance).SetPropertyValue(property, *value);
    });
}

kyrStatusCode kyrAddBooleanProperty(kyrIOHandle handle, const char* name, int32_t value) {
    return AddTemporary(handle, name, TCIMValue(value != 0));
}

kyrStatusCode kyrAddUint8Property(kyrIOHandle handle, const char* name, uint32_t value) {
    return AddTemporary(handle, name, TCIMValue(static_cast<unsigned char>(value)));
}

kyrStatusCode kyrAddSint8Property(kyrIOHandle handle, const char* name, int32_t value) {
    return AddTemporary(handle, name, TCIMValue(static_cast<signed char>(value)));
}

kyrStatusCode kyrAddUint16Property(kyrIOHandle handle, const char* name, uint32_t value) {
    return AddTemporary(handle, name, TCIMValue(static_cast<unsigned short>(value)));
}

kyrStatusCode kyrAddSint16Property(kyrIOHandle handle, const char* name, int32_t value) {
    return AddTemporary(handle, name, TCIMValue(static_cast<short>(value)));
}

kyrStatusCode kyrAddUint32Property(kyrIOHandle handle, const char* name, uint32_t value) {
    return AddTemporary(handle, name, TCIMValue(value));
}

kyrStatusCode kyrAddSint32Property(kyrIOHandle handle, const char* name, int32_t value) {
    return AddTemporary(handle, name, TCIMValue(value));
}

kyrStatusCode kyrAddUint64Property(kyrIOHandle handle, const char* name, uint64_t value) {
    return AddTemporary(handle, name, TCIMValue(value));
}

kyrStatusCode kyrAddSint64Property(kyrIOHandle handle, const char* name, int64_t value) {
    return AddTemporary(handle, name, TCIMValue(value));
}

kyrStatusCode kyrAddStringProperty(kyrIOHandle handle, const char* name, const char* value) {
    if (!name || !value)
        return NoteRefusedText(Refuse(nullptr, "kyrAddStringProperty: NULL value and/or name parameter"),
                               "kyrAddStringProperty", handle, name, nullptr);
    return AddTemporary(handle, name, TCIMValue(value));
}

kyrStatusCode kyrAddReferenceProperty(kyrIOHandle handle, const char* name, kyrCIMReference reference) {
    if (!name || !reference)
        return NoteRefusedText(Refuse(nullptr, "kyrAddReferenceProperty: NULL name and/or pRef parameter"),
                               "kyrAddReferenceProperty", handle, name, nullptr);
    return AddTemporary(handle, name, ValueOf(handle, name, *reference));
}

kyrStatusCode kyrAddDateTimeProperty(kyrIOHandle handle, const char* name, kyrCIMDateTime datetime) {
    if (!name || !datetime)
        return NoteRefusedText(Refuse(nullptr, "kyrAddDateTimeProperty: NULL name and/or pDateTime parameter"),
                               "kyrAddDateTimeProperty", handle, name, nullptr);
    return AddTemporary(handle, name, TCIMValue(*datetime));
}

// Compatibility: handle and current instance are not checked, and exceptions of the look-up reach the plugin; see
// docs/oddities.md.
kyrStatusCode kyrAddArrayProperty(kyrIOHandle handle, const char* name, kyrCIMValueArray array) {
    if (!name || !array)
        return NoteRefusedText(Refuse(nullptr, "kyrAddArrayProperty: NULL name and/or pArray parameter"),
                               "kyrAddArrayProperty", handle, name, nullptr);
    return AddTemporary(handle, name, ArrayFor(*handle, name, *array));
}

// ---- Value arrays -------------------------------------------------------------------------------------------------

kyrStatusCode kyrNewCIMValueArray(kyrCIMValueArray* array) {
    if (!array) return Refuse(nullptr, "kyrNewCIMValueArray: NULL array parameter");
    return New(array);
}

kyrStatusCode kyrDeleteCIMValueArray(kyrCIMValueArray array) {
    if (!array) return Refuse(nullptr, "kyrDeleteCIMValueArray: NULL array parameter");
    return Delete(array);
}

kyrStatusCode kyrArrayAddBoolean(kyrCIMValueArray array, int32_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddBoolean: NULL array parameter");
    return Append(array, value != 0);
}

kyrStatusCode kyrArrayAddUint8(kyrCIMValueArray array, uint32_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddUint8: NULL array parameter");
    return Append(array, static_cast<unsigned char>(value));
}

kyrStatusCode kyrArrayAddSint8(kyrCIMValueArray array, int32_t value) {
    // Compatibility: the text names another call; see docs/oddities.md.
    if (!array) return Refuse(nullptr, "kyrArrayAddUint8: NULL array parameter");
    return Append(array, static_cast<signed char>(value));
}

kyrStatusCode kyrArrayAddUint16(kyrCIMValueArray array, uint32_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddUint16: NULL array parameter");
    return Append(array, static_cast<unsigned short>(value));
}

kyrStatusCode kyrArrayAddSint16(kyrCIMValueArray array, int32_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddSint16: NULL array parameter");
    return Append(array, static_cast<short>(value));
}

kyrStatusCode kyrArrayAddUint32(kyrCIMValueArray array, uint32_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddUint32: NULL array parameter");
    return Append(array, value);
}

kyrStatusCode kyrArrayAddSint32(kyrCIMValueArray array, int32_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddSint32: NULL array parameter");
    return Append(array, value);
}

kyrStatusCode kyrArrayAddUint64(kyrCIMValueArray array, uint64_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddUint64: NULL array parameter");
    return Append(array, value);
}

kyrStatusCode kyrArrayAddSint64(kyrCIMValueArray array, int64_t value) {
    if (!array) return Refuse(nullptr, "kyrArrayAddSint64: NULL array parameter");
    return Append(array, value);
}

kyrStatusCode kyrArrayAddString(kyrCIMValueArray array, const char* value) {
    if (!array || !value) return Refuse(nullptr, "kyrArrayAddString: NULL array and/or value parameter");
    return Append(array, std::string(value));
}

kyrStatusCode kyrArrayAddReference(kyrCIMValueArray array, kyrCIMReference value) {
    if (!array || !value) return Refuse(nullptr, "kyrArrayAddReference: NULL array and/or value parameter");
    return Append(array, *value);
}

kyrStatusCode kyrArrayAddDateTime(kyrCIMValueArray array, kyrCIMDateTime value) {
    if (!array || !value) return Refuse(nullptr, "kyrArrayAddDateTime: NULL array and/or value parameter");
    return Append(array, *value);
}

// ---- References ---------------------------------------------------------------------------------------------------

kyrStatusCode kyrNewCIMReference(kyrCIMReference* reference, kyrIOHandle handle) {
    if (!handle) return Refuse(nullptr, "kyrNewCIMReference: NULL kyrIOHandle parameter");
    if (!reference) return Refuse(handle->fPlugin, "kyrNewCIMReference: NULL ref parameter");
    return New(reference, handle->fContainer);
}

kyrStatusCode kyrDeleteCIMReference(kyrCIMReference reference) {
    if (!reference) return Refuse(nullptr, "kyrDeleteCIMReference: NULL ref parameter");
    return Delete(reference);
}

kyrStatusCode kyrSetReferenceClassName(kyrCIMReference reference, const char* className) {
    if (!reference || !className)
        return Refuse(nullptr, "kyrSetReferenceClassName: NULL ref and/or className parameter");
    return Note(Silently([=] { reference->SetClassName(className); }), "kyrSetReferenceClassName", className, nullptr);
}

kyrStatusCode kyrSetReferencePath(kyrCIMReference reference, const char* objectName) {
    if (!reference || !objectName) return Refuse(nullptr, "kyrSetReferencePath: NULL ref and/or objectName parameter");
    return Note(Silently([=] { reference->SetPath(objectName); }), "kyrSetReferencePath", nullptr, objectName);
}

kyrStatusCode kyrReferenceAddBoolean(kyrCIMReference reference, const char* key, int32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddBoolean: NULL ref and/or key parameter");
    return AddKey(reference, key, value != 0);
}

kyrStatusCode kyrReferenceAddUint8(kyrCIMReference reference, const char* key, uint32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddUint8: NULL ref and/or key parameter");
    return AddKey(reference, key, static_cast<unsigned char>(value));
}

kyrStatusCode kyrReferenceAddSint8(kyrCIMReference reference, const char* key, int32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddSint8: NULL ref and/or key parameter");
    return AddKey(reference, key, static_cast<signed char>(value));
}

kyrStatusCode kyrReferenceAddUint16(kyrCIMReference reference, const char* key, uint32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddUint16: NULL ref and/or key parameter");
    return AddKey(reference, key, static_cast<unsigned short>(value));
}

kyrStatusCode kyrReferenceAddSint16(kyrCIMReference reference, const char* key, int32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddSint16: NULL ref and/or key parameter");
    return AddKey(reference, key, static_cast<short>(value));
}

kyrStatusCode kyrReferenceAddUint32(kyrCIMReference reference, const char* key, uint32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddUint32: NULL ref and/or key parameter");
    return AddKey(reference, key, value);
}

kyrStatusCode kyrReferenceAddSint32(kyrCIMReference reference, const char* key, int32_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddSint32: NULL ref and/or key parameter");
    return AddKey(reference, key, value);
}

kyrStatusCode kyrReferenceAddUint64(kyrCIMReference reference, const char* key, uint64_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddUint64: NULL ref and/or key parameter");
    return AddKey(reference, key, value);
}

kyrStatusCode kyrReferenceAddSint64(kyrCIMReference reference, const char* key, int64_t value) {
    if (!reference || !key) return Refuse(nullptr, "kyrReferenceAddSint64: NULL ref and/or key parameter");
    return AddKey(reference, key, value);
}

kyrStatusCode kyrReferenceAddString(kyrCIMReference reference, const char* key, const char* value) {
    if (!reference || !key || !value)
        return Refuse(nullptr, "kyrReferenceAddString: NULL ref, key and/or value parameter");
    return AddKey(reference, key, value);
}

kyrStatusCode kyrReferenceAddReference(kyrCIMReference reference, const char* key, kyrCIMReference value) {
    if (!reference || !key || !value)
        return Refuse(nullptr, "kyrReferenceAddReference: NULL ref, key and/or value parameter");
    return AddKey(reference, key, *value);
}

kyrStatusCode kyrReferenceAddDateTime(kyrCIMReference reference, const char* key, kyrCIMDateTime value) {
    if (!reference || !key || !value)
        return Refuse(nullptr, "kyrReferenceAddDateTime: NULL ref, key and/or value parameter");
    return AddKey(reference, key, *value);
}

// ---- Date-times ---------------------------------------------------------------------------------------------------

kyrStatusCode kyrNewCIMDateTime(kyrCIMDateTime* datetime) {
    if (!datetime) return Refuse(nullptr, "kyrNewCIMDateTime: NULL datetime parameter");
    return New(datetime);
}

kyrStatusCode kyrDeleteCIMDateTime(kyrCIMDateTime datetime) {
    if (!datetime) return Refuse(nullptr, "kyrDeleteCIMDateTime: NULL datetime parameter");
    return Delete(datetime);
}

kyrStatusCode kyrGetLocalTime(kyrCIMDateTime datetime) {
    if (!datetime) return Refuse(nullptr, "kyrGetLocalTime: NULL datetime ");  // see docs/oddities.md
    *datetime = TOSSpecific::GetLocalTime();
    return kyrStatusOK;
}

kyrStatusCode kyrSetDateTime(kyrCIMDateTime datetime, uint32_t year, uint32_t month, uint32_t day, uint32_t hour,
                             uint32_t minute, uint32_t second, uint32_t microseconds, int32_t utcOffset) {
    if (!datetime) return Refuse(nullptr, "kyrSetDateTime: NULL datetime parameter");
    const kyrStatusCode status = Silently([=] {
        datetime->Set(static_cast<unsigned short>(year), static_cast<unsigned short>(month), day,
                      static_cast<unsigned short>(hour), static_cast<unsigned short>(minute),
                      static_cast<unsigned short>(second), microseconds, static_cast<short>(utcOffset));
    });
    return Note(status, "kyrSetDateTime", nullptr, nullptr);
}

kyrStatusCode kyrSetDateTimeInterval(kyrCIMDateTime datetime, uint32_t days, uint32_t hours, uint32_t minutes,
                                     uint32_t seconds, uint32_t microseconds) {
    if (!datetime) return Refuse(nullptr, "kyrSetDateTimeInterval: NULL datetime parameter");
    const kyrStatusCode status = Silently([=] {
        datetime->Set(days, static_cast<unsigned short>(hours), static_cast<unsigned short>(minutes),
                      static_cast<unsigned short>(seconds), microseconds);
    });
    return Note(status, "kyrSetDateTimeInterval", nullptr, nullptr);
}

kyrStatusCode kyrSetDateTimeString(kyrCIMDateTime datetime, const char* str) {
    if (!datetime || !str) return Refuse(nullptr, "kyrSetDateTimeString: NULL datetime and/or str parameter");
    return Note(Silently([=] { datetime->Set(std::string(str)); }), "kyrSetDateTimeString", nullptr, str);
}
