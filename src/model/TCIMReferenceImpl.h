#ifndef KYR_MODEL_TCIMREFERENCEIMPL_H
#define KYR_MODEL_TCIMREFERENCEIMPL_H

#include <map>
#include <string>
#include <utility>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMReference.h"

class TCIMReferenceImpl {
public:
    using TBindings = std::map<const std::string, const TCIMValue>;

    TCIMReferenceImpl(TCIMReference& handle, const TContainer* container) : fHandle(&handle), fContainer(container) {}
    TCIMReferenceImpl(TCIMReference& handle, const TCIMReferenceImpl& other);
    TCIMReferenceImpl(const TCIMReferenceImpl&) = delete;
    TCIMReferenceImpl& operator=(const TCIMReferenceImpl&) = delete;

    static TCIMReferenceImpl& Of(const TCIMReference& handle) { return *handle.fBody; }
    /// Appends `name="value",` to an object path; nothing for a value that has no text.
    static void AppendBinding(std::string& path, const std::string& name, const TCIMValue& value);
    static void AppendBinding(std::string& path, const std::string& name, const std::string& text);

    void SetContainer(const TContainer* container) { fContainer = container; }
    void Clear();
    [[noreturn]] void SetPath(const std::string& path) const;
    TCIMClass* GetClass() const;
    void SetClassName(const std::string& name);
    void SetClass(TCIMClass& cls);
    void AddKeyValue(const std::string& name, const TCIMValue& value);
    const TBindings& Bindings() const { return fBindings; }
    void SetKeyBindings(TBindings bindings) { fBindings = std::move(bindings); }
    std::string GetPath() const;
    ICIMElement* GetCIMElement() const;
    /// Like GetCIMElement, but null where that raises kyrStatusNotFound.
    ICIMElement* FindCIMElement() const;
    /// What FindCIMElement gives without a look-up; null if it needs one.
    ICIMElement* GetKnownElement() const { return fBindings.empty() ? fClass : fElement; }
    bool operator==(const TCIMReferenceImpl& other) const;
    bool operator<(const TCIMReferenceImpl& other) const;

private:
    TCIMReference* fHandle;
    const TContainer* fContainer;             // not owned; may be null
    TCIMClass* fClass = nullptr;              // not owned; null until set
    TBindings fBindings;                      // by name as passed, so that case matters
    mutable ICIMElement* fElement = nullptr;  // not owned: what the last GetCIMElement found
};

#endif
