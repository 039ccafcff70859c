#include "states/RefusedCalls.h"

#include <algorithm>

#include "base/NearMatches.h"
#include "base/StatusWords.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/kyrStatus.h"
#include "model/ClassNames.h"

namespace {

using TType = TCIMValue::TCIMType;

// The texts of a call come from a plugin, and are shown in a sentence.
std::string Quoted(const std::string& text) {
    constexpr size_t kLongest = 100;
    return "\"" + CutText(text, kLongest) + "\"";
}

std::string FormOf(const std::string& type) {
    return type == "datetime" ? ", such as \"20240131120000.000000+060\"" : "";
}

TReason About(EReason code, const TRefusedCall& call, std::string detail) {
    TReason reason = ReasonFor(code, std::move(detail));
    reason.className = call.className;
    reason.property = call.name;
    return reason;
}

TType ElementType(const TCIMPropertyDecl& declaration) {
    const auto type = static_cast<TType::ECIMType>(declaration.GetType());
    return static_cast<TType::ECIMType>(type & ~TType::eCIMArrayFlag);
}

// "uint64", "array of string", "reference to EX_Group"
std::string DeclaredType(const TCIMPropertyDecl& declaration) {
    const TCIMValue& value = declaration.GetValue();
    if (value.IsReference()) {
        const TCIMClass* const cls = value.GetReferencedClass();
        return "reference" + (cls == nullptr ? "" : " to " + cls->GetName());
    }
    return (declaration.IsArray() ? "array of " : "") + ElementType(declaration).ToString();
}

class TExplanation {
public:
    TExplanation(const TRefusedCall& call, const TPluginLibrary& library, const std::list<TPluginLibrary>& libraries,
                 const TContainer& container)
        : fCall(call),
          fLibrary(library),
          fLibraries(libraries),
          fClass(FindClassNamed(container, call.className)),
          fIsRoot(call.className == container.GetRootClass()->GetName()) {}

    TReason Reason() const {
        if (fCall.call == "kyrAddClass") return ClassRefused();
        if (fCall.call == "kyrSetReferenceClassName") return ClassRefused();
        if (fCall.call == "kyrSetReferencePath") return PathRefused();
        if (StartsWith(fCall.call, "kyrReferenceAdd")) return KeyRefused();
        if (StartsWith(fCall.call, "kyrSetDateTime")) return DateTimeRefused();
        return PropertyRefused();
    }

private:
    TReason ClassRefused() const {
        if (fCall.status == kyrStatusAccessDenied) return About(EReason::eForeignClass, fCall, OwnerText());
        if (fIsRoot) return ReasonFor(EReason::eCallRefused, fCall.call + ": the name of the class is empty");
        if (fClass != nullptr) return OtherCallRefused();
        return About(EReason::eNoSuchClass, fCall, DidYouMean(fCall.className, NamesOf(fLibrary.classes)));
    }

    std::string OwnerText() const {
        for (const TPluginLibrary& other : fLibraries)
            if (other.Declares(fCall.className)) return "; it belongs to plugin " + other.report.NameIn(other.path);
        return "";
    }

    TReason PropertyRefused() const {
        if (fCall.className.empty() && fCall.status == kyrStatusInvalidClass)
            return About(EReason::eCallRefused, fCall,
                         fCall.call + " for " + fCall.name + ": no class was added before");
        if (fClass == nullptr || fCall.name.empty()) return OtherCallRefused();
        const TCIMPropertyDecl* const declaration = FindPropertyNamed(*fClass, fCall.name);
        if (declaration == nullptr) return NoSuch(EReason::eNoSuchProperty, NamesOfProperties());
        const std::string declared = DeclaredType(*declaration);
        if (fCall.given.empty()) return About(EReason::eBadValue, fCall, "given NULL by " + fCall.call);
        if (fCall.call == "kyrAddProperty")
            return About(EReason::eBadValue, fCall, Quoted(fCall.given) + " is no " + declared + FormOf(declared));
        if (StartsWith(fCall.given, "reference") && StartsWith(declared, "reference"))
            return About(EReason::eWrongType, fCall, "declared " + declared + ", given " + fCall.given);
        if (!IsOfType(*declaration)) return WrongType(declared);
        if (declared == "datetime")
            return About(EReason::eBadValue, fCall, "given a date-time without a value by " + fCall.call);
        return About(EReason::eBadValue, fCall, fCall.call + " failed: " + StatusText());
    }

    bool IsOfType(const TCIMPropertyDecl& declaration) const {
        return declaration.IsArray() == (fCall.call == "kyrAddArrayProperty") &&
               ElementType(declaration).ToString() == fCall.given;
    }

    TReason KeyRefused() const {
        if (fClass == nullptr)
            return About(EReason::eCallRefused, fCall,
                         fCall.call + " for " + fCall.name + ": the reference has no class");
        const TCIMPropertyDecl* const declaration = FindPropertyNamed(*fClass, fCall.name);
        if (declaration == nullptr || fCall.status == kyrStatusInvalidOpSequence)
            return NoSuch(EReason::eNoSuchKey, fClass->EnumerateKeyNames());
        return About(
            EReason::eCallRefused, fCall,
            "reference to " + fCall.className + ": key " + fCall.name + ": " + TypesText(DeclaredType(*declaration)));
    }

    TReason PathRefused() const {
        return About(EReason::eCallRefused, fCall,
                     fCall.call + " failed for " + Quoted(fCall.given) + ": " + StatusText() +
                         "; use kyrSetReferenceClassName and kyrReferenceAdd...");
    }

    TReason NoSuch(EReason code, const std::vector<std::string>& names) const {
        return About(code, fCall, DidYouMean(fCall.name, names));
    }

    TReason WrongType(const std::string& declared) const {
        return About(EReason::eWrongType, fCall, TypesText(declared));
    }

    std::string TypesText(const std::string& declared) const {
        return "declared " + declared + ", given by " + fCall.call;
    }

    std::vector<std::string> NamesOfProperties(const char* type = "") const {
        std::vector<std::string> names;
        for (const TCIMPropertyDecl* declaration : fClass->EnumeratePropertyDecls())
            if (StartsWith(DeclaredType(*declaration), type)) names.push_back(declaration->GetName());
        return names;
    }

    // The date-time is not of any property yet.
    TReason DateTimeRefused() const {
        std::string text = fCall.call;
        if (fClass != nullptr) text += " at " + fCall.className + " (" + Join(NamesOfProperties("datetime")) + ")";
        text +=
            fCall.given.empty() ? ": the numbers are no date-time" : ": " + Quoted(fCall.given) + " is no date-time";
        return About(EReason::eCallRefused, fCall, text + FormOf("datetime"));
    }

    TReason OtherCallRefused() const {
        const std::string place = fCall.className + (fCall.name.empty() ? "" : "." + fCall.name);
        const std::string given = fCall.given.empty() ? "" : " for " + Quoted(fCall.given);
        return About(EReason::eCallRefused, fCall,
                     (place.empty() ? "" : place + ": ") + fCall.call + " failed" + given + ": " + StatusText());
    }

    std::string StatusText() const { return WithStatusInWords(kyrTranslateStatusCode(fCall.status)); }

    const TRefusedCall& fCall;
    const TPluginLibrary& fLibrary;
    const std::list<TPluginLibrary>& fLibraries;
    const TCIMClass* fClass;
    const bool fIsRoot;  // the class that the empty name finds
};

}  // namespace

void ExplainRefusedCalls(TPluginLibrary& library, const std::list<TPluginLibrary>& libraries,
                         const TContainer& container) {
    const auto explain = [&](TMessage& message) {
        if (!message.call) return;
        message.reason = TExplanation(*message.call, library, libraries, container).Reason();
        message.text = SentenceOf(message.reason);
        if (!message.IsOfReference() && library.Declares(message.call->className))
            message.className = message.call->className;
    };
    for (TMessage& message : library.report.messages) explain(message);
    for (TDataCall& call : library.report.dataCalls) explain(call.lastRefused);
}
