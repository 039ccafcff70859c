#ifndef TCIMINSTANCE_H
#define TCIMINSTANCE_H

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "kyr/ICIMElement.h"
#include "kyr/TCIMReference.h"

class TCIMClass;
class TCIMInstanceImpl;
class TCIMProperty;

/// One collected object: a property for each declaration that its class had when the instance was made. Look-ups by
/// name ignore case, and a malformed name raises kyrStatusInvalidCIMName.
class KYR_API TCIMInstance : public ICIMElement {
public:
    /// Stamps a property DateTimeOfCollection, if the class declares one, with the present time. Hosts use
    /// TContainer::AllocateInstance.
    TCIMInstance(TCIMClass* cls);
    /// Instances are not copied: always kyrStatusNotImplemented.
    TCIMInstance(TCIMInstance& other, TCIMClass& cls);
    TCIMInstance(const TCIMInstance&) = delete;
    TCIMInstance& operator=(const TCIMInstance&) = delete;
    ~TCIMInstance() override;

    /// A key that is NULL raises kyrStatusInvalidInstance, except in a difference container.
    void Validate() const override;
    /// Validates the instance and hands it to its class. It must have been made with new. A failed Validate leaves it
    /// with the caller; a failure after that destroys it. Its keys must not change afterwards.
    void AddToContainer() const override;
    TContainer* GetContainer() const override;
    TCIMClass* GetClass() const;

    /// Raises kyrStatusNotFound, as do the setters.
    TCIMProperty* GetProperty(const std::string& name) const;
    /// Null if there is none.
    TCIMProperty* FindProperty(const std::string& name) const;
    /// Replaces the property of that name by a copy.
    void SetProperty(const TCIMProperty& property);
    /// See TCIMProperty::SetValue and SetPrevValue.
    void SetPropertyValue(const std::string& name, const TCIMValue& value);
    void SetPrevPropertyValue(const std::string& name, const TCIMValue& value);
    void SetPrevPropertyValue(const std::string& name);
    /// In the order of the lower-cased names. The pointers stay good for the life of the instance.
    std::vector<const TCIMProperty*> EnumerateProperties() const;
    /// A reference to this instance, made from its present key values; without a container.
    TCIMReference BuildPath() const;

    /// The instances of association classes that point to this instance. An empty argument is no filter.
    std::vector<TCIMInstance*> References(const std::string& assocClass, const std::string& role) const;
    /// What stands at their other ends.
    std::vector<TCIMInstance*> Associators(const std::string& assocClass, const std::string& resultClass,
                                           const std::string& role, const std::string& resultRole) const;

    /// The same class, and equal properties throughout.
    bool operator==(const TCIMInstance& other) const;
    /// By class alone: instances of one class are never less than each other.
    bool operator<(const TCIMInstance& other) const;

    boost::shared_ptr<TCIMInstanceImpl> GetBody() const;

private:
    friend class TCIMInstanceImpl;

    boost::shared_ptr<TCIMInstanceImpl> fBody;
};

#endif
