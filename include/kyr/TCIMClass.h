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
/// kyrStatusInvalidCIMName; instances are found by the exact text of their object path. What the operations hand out
/// stays the class's or the container's. A class belongs to the thread that its container belongs to.
///
/// The order of making a class: allocate it, attach its qualifiers (ASSOCIATION before any reference is declared), add
/// its property declarations, then AddToContainer. A qualifier or declaration that is added later reaches neither
/// subclasses nor instances that exist already, and References and Associators do not know a reference among them.
class KYR_API TCIMClass : public ICIMElement, public ICIMAllowQualifiers {
public:
    /// Takes what the superclass has now: every property declaration, and a copy of each qualifier whose flavor has
    /// eFlavorToSubclass. With a null superclass the container's root class is the superclass, and nothing is
    /// inherited. The name is not checked before the class is added. Hosts use TContainer::AllocateClass.
    TCIMClass(TContainer& container, std::string name, TCIMClass* superclass);
    TCIMClass(const TCIMClass&) = delete;
    TCIMClass& operator=(const TCIMClass&) = delete;
    /// Destroys the instances and qualifiers, and the declarations that no other class shares. For a class that was
    /// never added; TContainer::RemoveClass destroys the others.
    ~TCIMClass() override;

    /// A class that is not abstract needs a key, an inherited one will do: kyrStatusInvalidClass, with "Class ... has
    /// no keys" in the log. A KEY or ABSTRACT that is not boolean raises kyrStatusTypeMismatch.
    void Validate() const override;
    /// Validates the class, hands it to its container and enters it with its superclass and, for an association, with
    /// the classes that it references. A failure, such as kyrStatusAlreadyExists, leaves the class with the caller,
    /// save one: an ASSOCIATION that is not boolean raises kyrStatusTypeMismatch when the container owns the class
    /// already. It is validated first: a repeated class that brings no key is refused for that.
    void AddToContainer() const override;
    TContainer* GetContainer() const override;

    /// As written when the class was made.
    const std::string& GetName() const;
    /// The container's root class for a class at the top of the tree; null for the root class alone.
    TCIMClass* GetSuperClass() const;
    /// True for the classes at the top of the tree, whose superclass is the container's root class.
    bool IsRootClass() const;
    /// In the order in which they joined the container; with deep, each followed by its own. Without this class.
    std::vector<TCIMClass*> EnumerateSubClasses(bool deep) const;
    /// The class has the qualifier ASSOCIATION, and it is true. A superclass's counts only as far as it was inherited.
    bool IsAssociation() const;
    /// The same for ABSTRACT. An abstract class is never asked of a plugin, but it may have instances.
    bool IsAbstract() const;
    /// True for the class itself too, and of the root class for every class. Goes by name, exact in case.
    bool IsSubclassOf(const TCIMClass* other) const;

    /// The four of ICIMAllowQualifiers; what is removed here stays with superclass and subclasses, which have copies.
    void AddQualifier(TCIMQualifier& qualifier) override;
    TCIMQualifier* GetQualifier(const std::string& name) const override;
    std::vector<const TCIMQualifier*> EnumerateQualifiers() const override;
    void RemoveQualifier(TCIMQualifier& qualifier) override;
    /// Null if there is none.
    TCIMQualifier* FindQualifier(const std::string& name) const;

    /// Takes in a declaration made with new, and owns it. With the qualifier OVERRIDE, whatever its value, it replaces
    /// an inherited one of the same type in this class alone. It takes nothing over from that: a key that is overridden
    /// needs KEY again. Hosts use TCIMPropertyDecl::AddToContainer.
    ///
    /// Each refusal has a line in the log and leaves the declaration with the caller: kyrStatusNotAssociation (a scalar
    /// reference in an ordinary class), kyrStatusInvalidCIMName, kyrStatusNotFound and kyrStatusTypeMismatch (nothing
    /// such to override), kyrStatusAlreadyExists (declared here, or inherited and no OVERRIDE). But for the name, the
    /// lines begin with "Attempt to ".
    void AddPropertyDecl(TCIMPropertyDecl& declaration);
    /// Raises kyrStatusNotFound.
    TCIMPropertyDecl* GetPropertyDecl(const std::string& name) const;
    /// Null if there is none.
    TCIMPropertyDecl* FindPropertyDecl(const std::string& name) const;
    /// Inherited ones included, in the order of the lower-cased names.
    std::vector<const TCIMPropertyDecl*> EnumeratePropertyDecls() const;
    /// Takes the declaration of that name out of this class alone; kyrStatusNotFound. It is destroyed unless another
    /// class shares it. The class may have no instances: their properties point to the declaration.
    void RemovePropertyDecl(TCIMPropertyDecl& declaration);
    /// The names, as written, of the declarations whose qualifier KEY is true, in the order of the lower-cased names.
    std::vector<std::string> EnumerateKeyNames() const;

    /// Files an instance made with new under its object path, beside any others of the same path; keys are not tested
    /// for NULL. If that fails, the instance is destroyed. Hosts use TCIMInstance::AddToContainer.
    void AddInstance(TCIMInstance& instance);
    /// Destroys every instance of the object path that the argument has now, also others than the argument. It may find
    /// none, as for an instance whose keys have changed since it was added.
    void RemoveInstance(TCIMInstance& instance);
    /// As FindInstance, but raises kyrStatusNotFound.
    TCIMInstance* GetInstance(const TCIMReference& reference) const;
    /// The first instance of that path in this very class, not in its subclasses, or null. Only the text of the path
    /// counts: keys must be spelled as they are declared.
    TCIMInstance* FindInstance(const TCIMReference& reference) const;
    /// In the order of their paths, those of one path in the order of adding; with deep, the subclasses' behind.
    std::vector<TCIMInstance*> EnumerateInstances(bool deep) const;

    /// The association classes that point to this class or, if no role is given, to a superclass of it. An empty
    /// argument is no filter; assocClass takes subclasses in, role is the name of the reference to this class. An
    /// unknown assocClass gives an empty result.
    std::vector<TCIMClass*> References(const std::string& assocClass, const std::string& role) const;
    /// The classes at the other ends of those associations; resultClass takes subclasses in, resultRole is the name of
    /// the reference to the result. The class's own end is left out once, so that an association of a class with itself
    /// gives the class; an end that is reached twice is listed twice. More of this kind stands in docs/oddities.md.
    std::vector<TCIMClass*> Associators(const std::string& assocClass, const std::string& resultClass,
                                        const std::string& role, const std::string& resultRole) const;

    /// @{
    /// By name as written: case counts.
    bool operator==(const TCIMClass& other) const;
    bool operator<(const TCIMClass& other) const;
    /// @}

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TCIMClassImpl> GetBody() const;

private:
    friend class TCIMClassImpl;

    boost::shared_ptr<TCIMClassImpl> fBody;
};

#endif
