#ifndef TCIMPROPERTYDECL_H
#define TCIMPROPERTYDECL_H

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/TCIMValue.h"

class TCIMPropertyDeclImpl;

/// Says that a class has a property of some name, type and default value. A class shares the object with every
/// subclass that is made afterwards.
class KYR_API TCIMPropertyDecl : public ICIMAllowQualifiers {
public:
    /// The value gives type, default and, for a reference, the referenced class. Not yet in the class.
    TCIMPropertyDecl(const std::string& name, TCIMClass& cls, const TCIMValue& value);
    /// Declarations are shared, not copied: always kyrStatusNotImplemented.
    TCIMPropertyDecl(TCIMPropertyDecl& other, TCIMClass& cls);
    TCIMPropertyDecl(const TCIMPropertyDecl&) = delete;
    TCIMPropertyDecl& operator=(const TCIMPropertyDecl&) = delete;
    ~TCIMPropertyDecl() override;

    /// Never fails.
    void Validate() const;
    /// Hands the declaration to its class: see TCIMClass::AddPropertyDecl.
    void AddToContainer() const;

    const std::string& GetName() const;
    /// Changes the text alone: a class goes on finding the declaration under the name that it was added with.
    void SetName(const std::string& name);
    const TCIMValue& GetValue() const;
    void SetValue(const TCIMValue& value);
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    /// The class that the declaration was made for, whichever classes share it.
    TCIMClass* GetClass() const;

    void AddQualifier(TCIMQualifier& qualifier) override;
    TCIMQualifier* GetQualifier(const std::string& name) const override;
    std::vector<const TCIMQualifier*> EnumerateQualifiers() const override;
    void RemoveQualifier(TCIMQualifier& qualifier) override;
    /// Null if there is none.
    TCIMQualifier* FindQualifier(const std::string& name) const;

    /// By name, without regard to case, and by nothing else.
    bool operator==(const TCIMPropertyDecl& other) const;
    bool operator<(const TCIMPropertyDecl& other) const;

    boost::shared_ptr<TCIMPropertyDeclImpl> GetBody() const;

private:
    friend class TCIMPropertyDeclImpl;

    boost::shared_ptr<TCIMPropertyDeclImpl> fBody;
};

#endif
