#ifndef KYR_MODEL_TCIMINSTANCEIMPL_H
#define KYR_MODEL_TCIMINSTANCEIMPL_H

#include <boost/weak_ptr.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "model/TCIMElementImpl.h"
#include "model/TPropertyLayout.h"

class TCIMPropertyDecl;

class TCIMInstanceImpl : public TCIMElementImpl {
public:
    TCIMInstanceImpl(TCIMInstance& handle, TCIMClass* cls);
    TCIMInstanceImpl(const TCIMInstanceImpl&) = delete;
    TCIMInstanceImpl& operator=(const TCIMInstanceImpl&) = delete;

    static TCIMInstanceImpl& Of(const TCIMInstance& handle) { return *handle.fBody; }

    void Validate() const override;
    TContainer* GetContainer() const override;
    /// Validates the instance and hands it to its class. A failure after the validation destroys the handle.
    void AddToContainer();
    TCIMClass* GetClass() const { return fClass; }

    TCIMProperty* GetProperty(std::string_view name) const;
    TCIMProperty* FindProperty(std::string_view name) const;
    void SetProperty(const TCIMProperty& property);
    void SetPropertyValue(std::string_view name, const TCIMValue& value);
    /// Like SetPropertyValue, but may move the value's content.
    void TakePropertyValue(std::string_view name, TCIMValue& value);
    void SetPrevPropertyValue(std::string_view name, const TCIMValue& value);
    void SetPrevPropertyValue(std::string_view name);
    std::vector<const TCIMProperty*> EnumerateProperties() const;
    TCIMReference BuildPath() const;
    /// The text of that path. In the usual case no reference is made for it.
    std::string BuildPathText() const;
    /// The owner of the handle, shared if the handle has one because it is added a second time.
    boost::shared_ptr<TCIMInstance> Adopt();
    bool IsAdopted() const { return !fOwner.expired(); }

    /// Adds what the references refer to. False if one is NULL or has not been looked up.
    bool CollectTargets(std::vector<const ICIMElement*>& targets) const;
    std::vector<TCIMInstance*> References(const std::string& assocClass, const std::string& role) const;
    std::vector<TCIMInstance*> Associators(const std::string& assocClass, const std::string& resultClass,
                                           const std::string& role, const std::string& resultRole) const;

    bool operator==(const TCIMInstanceImpl& other) const;

private:
    class TKeys;

    TCIMProperty& PropertyAt(size_t index) const { return fProperties[index]; }
    const TCIMValue& ValueAt(size_t index) const;
    const std::string& NameAt(size_t index) const;
    void RequireKey(const TCIMPropertyDecl& key, const TCIMValue& value) const;
    bool CollectKeys(TKeys& keys) const;
    static bool IsLikeCopied(const TCIMValue& value);
    bool CollectBoundKeys(TKeys& keys) const;
    bool IsReferredToBy(const TCIMInstance& association, const std::string& role) const;
    bool IsReferredToBy(const TCIMProperty& property) const;
    void AddOtherEnds(const TCIMInstance& association, const TCIMClass& resultClass, const std::string& role,
                      std::vector<TCIMInstance*>& result) const;

    TCIMInstance* fHandle;
    TCIMClass* fClass;  // not owned
    boost::shared_ptr<const TPropertyLayout> fLayout;
    mutable std::vector<TCIMProperty>
        fProperties;  // in the layout's order; never grows, because hosts keep pointers to its elements
    boost::weak_ptr<TCIMInstance> fOwner;
};

/// Adds an instance to its class, which owns it from then on. If that raises, the pointer is null when the failure has
/// destroyed the instance; otherwise the instance is still the caller's.
void CloseInstance(TCIMInstance*& instance);

#endif
