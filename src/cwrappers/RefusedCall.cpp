#include "cwrappers/RefusedCall.h"

#include <algorithm>
#include <utility>

#include "cwrappers/kyriIOHandle.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMReference.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TypeName.h"

namespace {

TRefusedCall::TObserver gObserver;

std::string TextOf(const char* text) { return text ? text : ""; }

const char* NameOfOpenClass(const kyriIOHandle* handle) {
    if (!handle || !handle->fCurrentInstance) return nullptr;
    return handle->fCurrentInstance->GetClass()->GetName().c_str();
}

std::string TypeOf(const TCIMValue& value) {
    if (!value.IsReference()) return TypeNameForLog(value.GetType());
    const TCIMClass* const cls = value.GetReferencedClass();
    return cls ? "reference to " + cls->GetName() : "reference to no class";
}

/// "Uint32" as it stands in the names of calls.
std::string TypeInCalls(const TCIMValue& value) {
    if (value.IsReference()) return "Reference";
    std::string type = TypeNameForLog(value.GetType());
    if (type == "datetime") return "DateTime";
    if (!type.empty()) type[0] = static_cast<char>(type[0] - 'a' + 'A');
    return type;
}

TCIMValue::TCIMType ElementTypeOf(TCIMValue::TCIMType type) {
    return static_cast<TCIMValue::TCIMType::ECIMType>(type &
                                                      ~static_cast<unsigned int>(TCIMValue::TCIMType::eCIMArrayFlag));
}

std::string CallFor(const TCIMValue& value) {
    return "kyrAdd" + (value.IsArray() ? "Array" : TypeInCalls(value)) + "Property";
}

}  // namespace

void TRefusedCall::Observe(TObserver observer) { gObserver = std::move(observer); }

kyrStatusCode NoteRefusal(kyrStatusCode status, const char* call, const char* className, const char* name,
                          const char* given) {
    if (gObserver) gObserver({status, call, TextOf(className), TextOf(name), TextOf(given)});
    return status;
}

void NoteRefusedValue(kyrStatusCode status, const kyriIOHandle* handle, const char* name, const TCIMValue& value) {
    NoteRefusal(status, CallFor(value).c_str(), NameOfOpenClass(handle), name, TypeOf(value).c_str());
}

kyrStatusCode NoteRefusedText(kyrStatusCode status, const char* call, const kyriIOHandle* handle, const char* name,
                              const char* text) {
    return NoteRefusal(status, call, NameOfOpenClass(handle), name, text);
}

void NoteRefusedElements(kyrStatusCode status, const kyriIOHandle& handle, const char* name, TCIMValue::TCIMType type,
                         const std::vector<TCIMValue>& elements) {
    const auto isOther = [type](const TCIMValue& element) { return element.GetType() != ElementTypeOf(type); };
    const auto other = std::find_if(elements.begin(), elements.end(), isOther);
    const bool isFound = type != TCIMValue::TCIMType::eCIMNone && other != elements.end();
    const std::string call = isFound ? "kyrArrayAdd" + TypeInCalls(*other) : "kyrAddArrayProperty";
    NoteRefusal(status, call.c_str(), NameOfOpenClass(&handle), name, isFound ? TypeOf(*other).c_str() : nullptr);
}

void NoteRefusedKey(kyrStatusCode status, const TCIMReference& reference, const char* key, const TCIMValue& value) {
    const std::string call = "kyrReferenceAdd" + TypeInCalls(value);
    const TCIMClass* const cls = TCIMReferenceImpl::Of(reference).FindClass();
    NoteRefusal(status, call.c_str(), cls ? cls->GetName().c_str() : nullptr, key, TypeOf(value).c_str());
}
