#ifndef KYR_MODEL_TCIMREFERENCEIMPL_H
#define KYR_MODEL_TCIMREFERENCEIMPL_H

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <map>
#include <string>

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
    bool HasClass() const { return fClass != nullptr; }
    TCIMClass* GetClass() const;
    /// Null until it is set.
    TCIMClass* FindClass() const { return fClass; }
    void SetClassName(const std::string& name);
    void SetClass(TCIMClass& cls);
    void AddKeyValue(const std::string& name, const TCIMValue& value);
    const TBindings& Bindings() const;
    void SetKeyBindings(TBindings bindings);
    std::string GetPath() const;
    ICIMElement* GetCIMElement() const;
    /// Like GetCIMElement, but null where that raises kyrStatusNotFound.
    ICIMElement* FindCIMElement() const;
    /// What FindCIMElement gives without a look-up; null if it needs one.
    ICIMElement* GetKnownElement() const { return Bindings().empty() ? fClass : fElement; }
    bool operator==(const TCIMReferenceImpl& other) const;
    bool operator<(const TCIMReferenceImpl& other) const;

private:
    TBindings& OwnBindings();

    TCIMReference* fHandle;
    const TContainer* fContainer;  // not owned; may be null
    TCIMClass* fClass = nullptr;   // not owned; null until set
    // By name as passed, so that case matters; null for none. Copies share them until one of them binds a key.
    boost::shared_ptr<TBindings> fBindings;
    // Whether a copy may have them, too. Their count would not tell: what another thread has read of them before it let
    // go of its copy is not ordered before a look at the count.
    mutable std::atomic<bool> fIsShared = false;
    mutable ICIMElement* fElement = nullptr;  // not owned: what the last GetCIMElement found
};

#endif
