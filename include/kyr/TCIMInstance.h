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
/// name ignore case, and a malformed name raises kyrStatusInvalidCIMName. The caller owns an instance until it is
/// added; from then on its class does. It belongs to the thread that its container belongs to.
class KYR_API TCIMInstance : public ICIMElement {
public:
    /// Stamps a property DateTimeOfCollection, if the class declares one, with the present time; one that is declared
    /// with another type than datetime raises kyrStatusTypeMismatch. All other properties have their declared default
    /// until they are set. The class must outlive the instance. Hosts use TContainer::AllocateInstance.
    TCIMInstance(TCIMClass* cls);
    /// Instances are not copied: always kyrStatusNotImplemented.
    TCIMInstance(TCIMInstance& other, TCIMClass& cls);
    TCIMInstance(const TCIMInstance&) = delete;
    TCIMInstance& operator=(const TCIMInstance&) = delete;
    /// For an instance that was never added; TCIMClass::RemoveInstance destroys the others. References to it dangle.
    ~TCIMInstance() override;

    /// A key that is NULL raises kyrStatusInvalidInstance, except in a difference container; the log names the first
    /// one, as "Instance ...: key property ... is NULL". A key with a default need not be set.
    void Validate() const override;
    /// Validates the instance and hands it to its class. It must have been made with new. A failed Validate leaves it
    /// with the caller; a failure after that, such as a key that was renamed, destroys it. Its keys must not change
    /// afterwards: it would be found under the old path alone. Equal keys are no failure, and both instances stay; an
    /// instance that is added twice is listed twice. See docs/oddities.md.
    void AddToContainer() const override;
    /// Its class's.
    TContainer* GetContainer() const override;
    /// The class that it was made for.
    TCIMClass* GetClass() const;

    /// The property itself, good for the life of the instance. Raises kyrStatusNotFound, as do the setters.
    TCIMProperty* GetProperty(const std::string& name) const;
    /// Null if there is none.
    TCIMProperty* FindProperty(const std::string& name) const;
    /// Replaces the property of that name by a copy, its declaration and earlier value included.
    void SetProperty(const TCIMProperty& property);
    /// @{
    /// See TCIMProperty::SetValue and SetPrevValue. A refusal leaves the instance as it was.
    void SetPropertyValue(const std::string& name, const TCIMValue& value);
    void SetPrevPropertyValue(const std::string& name, const TCIMValue& value);
    void SetPrevPropertyValue(const std::string& name);
    /// @}
    /// In the order of the lower-cased names. The pointers stay good for the life of the instance.
    std::vector<const TCIMProperty*> EnumerateProperties() const;
    /// A reference to this instance, made from its present key values; without a container, so that its class cannot be
    /// set by name. Whether the instance has been added makes no difference.
    TCIMReference BuildPath() const;

    /// The instances of association classes that point to this instance. An empty argument is no filter;
    /// assocClass is the name of an association class and takes its subclasses in, role the name of the reference that
    /// points here. A reference to an instance that is not there is passed over; a NULL one that must be looked at
    /// raises kyrStatusValueIsNULL. Reads every instance of the association classes at first; from the second call on
    /// it takes the same short time however many there are, until one is added, removed or changed, and while all of
    /// their references point to instances that are there.
    std::vector<TCIMInstance*> References(const std::string& assocClass, const std::string& role) const;
    /// What stands at their other ends; resultClass takes subclasses in, resultRole is the name of the reference to the
    /// result. An end that is not there is passed over, but with a resultRole it raises kyrStatusNotFound. The own end
    /// is told by class, so that in an association of a class with itself an instance may meet itself and miss its
    /// partner: name role and resultRole there.
    std::vector<TCIMInstance*> Associators(const std::string& assocClass, const std::string& resultClass,
                                           const std::string& role, const std::string& resultRole) const;

    /// The same class, and equal properties throughout, DateTimeOfCollection among them. Earlier values do not count.
    bool operator==(const TCIMInstance& other) const;
    /// By the address of the class alone: instances of one class are never less than each other.
    bool operator<(const TCIMInstance& other) const;

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TCIMInstanceImpl> GetBody() const;

private:
    friend class TCIMInstanceImpl;

    boost::shared_ptr<TCIMInstanceImpl> fBody;
};

#endif
