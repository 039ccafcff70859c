#ifndef TCIMCLASS_H
#define TCIMCLASS_H

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/ICIMElement.h"

class TCIMClassImpl;
class TCIMInstance;
class TCIMPropertyDecl;
class TCIMReference;

/// A CIM class: its place in the tree, qualifiers, property declarations and instances. It owns the latter three;
/// declarations it shares with its subclasses. Look-ups by name ignore case, and a malformed name raises
/// kyrStatusInvalidCIMName; instances are found by the exact text of their object path.
class KYR_API TCIMClass : public ICIMElement, public ICIMAllowQualifiers {
public:
    /// Takes what the superclass has now: every property declaration, and a copy of each qualifier whose flavor has
    /// eFlavorToSubclass. With a null superclass the container's root class is the superclass, and nothing is
    /// inherited. Hosts use TContainer::AllocateClass.
    TCIMClass(TContainer& container, std::string name, TCIMClass* superclass);
    TCIMClass(const TCIMClass&) = delete;
    TCIMClass& operator=(const TCIMClass&) = delete;
    ~TCIMClass() override;

    /// A class that is not abstract needs a key: kyrStatusInvalidClass.
    void Validate() const override;
    /// Validates the class, hands it to its container and enters it with its superclass and, for an association, with
    /// the classes that it references. A failure, such as kyrStatusAlreadyExists, leaves the class with the caller.
    void AddToContainer() const override;
    TContainer* GetContainer() const override;

    const std::string& GetName() const;
    TCIMClass* GetSuperClass() const;
    /// True for the classes at the top of the tree, whose superclass is the container's root class.
    bool IsRootClass() const;
    /// In the order in which they joined the container; with deep, each followed by its own.
    std::vector<TCIMClass*> EnumerateSubClasses(bool deep) const;
    bool IsAssociation() const;
    bool IsAbstract() const;
    /// True for the class itself too. Goes by name, exact in case.
    bool IsSubclassOf(const TCIMClass* other) const;

    void AddQualifier(TCIMQualifier& qualifier) override;
    TCIMQualifier* GetQualifier(const std::string& name) const override;
    std::vector<const TCIMQualifier*> EnumerateQualifiers() const override;
    void RemoveQualifier(TCIMQualifier& qualifier) override;
    /// Null if there is none.
    TCIMQualifier* FindQualifier(const std::string& name) const;

    /// Takes in a declaration made with new, and owns it. With the qualifier OVERRIDE it replaces an inherited one of
    /// the same type, from which it takes over nothing. Each refusal has a line in the log and leaves the declaration
    /// with the caller: kyrStatusNotAssociation (a reference in an ordinary class), kyrStatusInvalidCIMName,
    /// kyrStatusNotFound and kyrStatusTypeMismatch (nothing such to override), kyrStatusAlreadyExists.
    void AddPropertyDecl(TCIMPropertyDecl& declaration);
    /// Raises kyrStatusNotFound.
    TCIMPropertyDecl* GetPropertyDecl(const std::string& name) const;
    /// Null if there is none.
    TCIMPropertyDecl* FindPropertyDecl(const std::string& name) const;
    /// Inherited ones included, in the order of the lower-cased names.
    std::vector<const TCIMPropertyDecl*> EnumeratePropertyDecls() const;
    /// Takes the declaration of that name out of this class alone; kyrStatusNotFound.
    void RemovePropertyDecl(TCIMPropertyDecl& declaration);
    /// The names, as written, of the declarations whose qualifier KEY is true, in the order of the lower-cased names.
    std::vector<std::string> EnumerateKeyNames() const;

    /// Files an instance made with new under its object path, beside any others of the same path. If that fails, the
    /// instance is destroyed. Hosts use TCIMInstance::AddToContainer.
    void AddInstance(TCIMInstance& instance);
    /// Destroys every instance of the same object path; it may find none.
    void RemoveInstance(TCIMInstance& instance);
    /// Raises kyrStatusNotFound.
    TCIMInstance* GetInstance(const TCIMReference& reference) const;
    /// The first instance of that path in this very class, or null.
    TCIMInstance* FindInstance(const TCIMReference& reference) const;
    /// In the order of their paths; with deep, those of the subclasses behind.
    std::vector<TCIMInstance*> EnumerateInstances(bool deep) const;

    /// The association classes that point to this class or, through role-less declarations, to a superclass of it. An
    /// empty argument is no filter; assocClass takes subclasses in, role is the name of the reference to this class.
    std::vector<TCIMClass*> References(const std::string& assocClass, const std::string& role) const;
    /// The classes at the other ends of those associations; resultRole is the name of the reference to the result.
    std::vector<TCIMClass*> Associators(const std::string& assocClass, const std::string& resultClass,
                                        const std::string& role, const std::string& resultRole) const;

    /// By name as written: case counts.
    bool operator==(const TCIMClass& other) const;
    bool operator<(const TCIMClass& other) const;

    boost::shared_ptr<TCIMClassImpl> GetBody() const;

private:
    friend class TCIMClassImpl;

    boost::shared_ptr<TCIMClassImpl> fBody;
};

#endif
