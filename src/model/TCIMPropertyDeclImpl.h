#ifndef KYR_MODEL_TCIMPROPERTYDECLIMPL_H
#define KYR_MODEL_TCIMPROPERTYDECLIMPL_H

#include <atomic>
#include <memory>
#include <string>

#include "kyr/TCIMPropertyDecl.h"
#include "model/TCIMQualifierImpl.h"
#include "model/TQualifierMap.h"
#include "model/ValueMapTable.h"

class TCIMPropertyDeclImpl {
public:
    TCIMPropertyDeclImpl(TCIMPropertyDecl& handle, const std::string& name, TCIMClass& cls, const TCIMValue& value)
        : fHandle(&handle), fName(name), fClass(&cls), fValue(value) {}

    static TCIMPropertyDeclImpl& Of(const TCIMPropertyDecl& handle) { return *handle.fBody; }
    /// Counts the renamings of all declarations. A layout built at another count may hold old names.
    static unsigned long GetRenameCount() { return fgRenameCount; }
    /// Counts how often a declaration gained or lost a qualifier KEY.
    static unsigned long GetKeyChangeCount() { return fgKeyChangeCount; }

    void AddToContainer() const;
    const std::string& GetName() const { return fName; }
    void SetName(const std::string& name);
    const TCIMValue& GetValue() const { return fValue; }
    void SetValue(const TCIMValue& value);
    TCIMClass* GetClass() const { return fClass; }
    const TQualifierMap& Qualifiers() const { return fQualifiers; }
    void AddQualifier(TCIMQualifier& qualifier);
    void RemoveQualifier(TCIMQualifier& qualifier);
    /// The words that were kept; null if a qualifier has changed since, or the locale is not the usual one.
    const TValueWords* FindWords() const;
    const TValueWords& KeepWords(std::unique_ptr<const TValueWords> words) const;
    bool HasKeyQualifier() const { return fQualifiers.GetKey() != nullptr; }
    /// Raises kyrStatusTypeMismatch if the qualifier KEY is not boolean.
    bool IsKey() const { return HasKeyQualifier() && TCIMQualifierImpl::IsTrue(fQualifiers.GetKey()); }

private:
    class TKeyWatch;

    // Of every container, and so of every thread.
    static std::atomic<unsigned long> fgRenameCount;
    static std::atomic<unsigned long> fgKeyChangeCount;

    TCIMPropertyDecl* fHandle;
    std::string fName;  // as written
    TCIMClass* fClass;  // not owned
    TCIMValue fValue;   // carries the type, the default and the referenced class
    TQualifierMap fQualifiers;
    mutable std::unique_ptr<const TValueWords> fWords;  // null: not made since a qualifier was added or removed
    mutable unsigned long fWordsChangeCount = 0;        // of TCIMQualifierImpl::GetChangeCount when fWords was made
};

#endif
