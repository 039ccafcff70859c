#ifndef TCIMPROPERTYDECL_H
#define TCIMPROPERTYDECL_H

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/TCIMValue.h"

class TCIMPropertyDeclImpl;

/// Says that a class has a property of some name, type and default value. A class shares the object with every
/// subclass that is made afterwards, so that a qualifier which is attached later counts in all of them. It belongs to
/// the thread that the class's container belongs to.
class KYR_API TCIMPropertyDecl : public ICIMAllowQualifiers {
public:
    /// The value gives type, default and, for a reference, the referenced class: a reference without a default is a
    /// NULL value with TCIMValue::SetReferencedClass. The declaration is not yet in the class, which it points to and
    /// does not keep alive. The name is not checked before it is added.
    TCIMPropertyDecl(const std::string& name, TCIMClass& cls, const TCIMValue& value);
    /// Declarations are shared, not copied: always kyrStatusNotImplemented.
    TCIMPropertyDecl(TCIMPropertyDecl& other, TCIMClass& cls);
    TCIMPropertyDecl(const TCIMPropertyDecl&) = delete;
    TCIMPropertyDecl& operator=(const TCIMPropertyDecl&) = delete;
    /// For a declaration that no class has taken; the last class that shares it destroys it otherwise.
    ~TCIMPropertyDecl() override;

    /// Never fails: the class does the checking. Kept for hosts that link to it.
    void Validate() const;
    /// Hands the declaration to its class, which owns it from then on. TCIMClass::AddPropertyDecl tells what is
    /// refused; a refused declaration stays the caller's, to be deleted.
    void AddToContainer() const;

    /// As written.
    const std::string& GetName() const;
    /// Changes the text alone: a class goes on finding the declaration under the name that it was added with, while
    /// instances that are made from then on have the property under the new one. Do not rename keys: an instance whose
    /// path cannot be made is destroyed when it is added.
    void SetName(const std::string& name);
    /// The default of properties that have no value of their own; NULL where none was declared.
    const TCIMValue& GetValue() const;
    /// Shows through every property that has no value of its own. Neither type nor name is compared with what is there,
    /// so that a value of another type makes properties that have a value unfit to be copied. A NULL without a type is
    /// refused with kyrStatusTypeMismatch, and the default is lost.
    void SetValue(const TCIMValue& value);
    /// @{
    /// An array type has TCIMValue::TCIMType::eCIMArrayFlag set.
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    /// @}
    /// The class that the declaration was made for, whichever classes share it.
    TCIMClass* GetClass() const;

    /// The four of ICIMAllowQualifiers. KEY is read at each use: attaching or removing it counts from then on.
    void AddQualifier(TCIMQualifier& qualifier) override;
    TCIMQualifier* GetQualifier(const std::string& name) const override;
    std::vector<const TCIMQualifier*> EnumerateQualifiers() const override;
    void RemoveQualifier(TCIMQualifier& qualifier) override;
    /// Null if there is none.
    TCIMQualifier* FindQualifier(const std::string& name) const;

    /// @{
    /// By name, without regard to case, and by nothing else. A malformed name raises kyrStatusInvalidCIMName.
    bool operator==(const TCIMPropertyDecl& other) const;
    bool operator<(const TCIMPropertyDecl& other) const;
    /// @}

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TCIMPropertyDeclImpl> GetBody() const;

private:
    friend class TCIMPropertyDeclImpl;

    boost::shared_ptr<TCIMPropertyDeclImpl> fBody;
};

#endif
