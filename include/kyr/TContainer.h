#ifndef TCONTAINER_H
#define TCONTAINER_H

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "kyr/TCIMQualifierDecl.h"

class TCIMClass;
class TCIMInstance;
class TContainerImpl;

/// One schema and its data: the store of qualifier declarations and classes, which own everything else. Names are
/// found without regard to case; a malformed one raises kyrStatusInvalidCIMName. One thread at a time.
class KYR_API TContainer {
public:
    /// Empty but for the root class, from which all classes descend.
    TContainer();
    TContainer(const TContainer&) = delete;
    TContainer& operator=(const TContainer&) = delete;
    virtual ~TContainer();

    /// The hooks through which a derived container makes objects of its own; the root class is made without them. What
    /// they return is the caller's until it is added.
    virtual TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const;
    virtual TCIMInstance* AllocateInstance(TCIMClass* cls) const;
    virtual TCIMQualifierDecl* AllocateQualifierDecl(const std::string& name, const TCIMValue& value,
                                                     TCIMQualifierDecl::EScope scope,
                                                     TCIMQualifierDecl::EFlavor flavor) const;

    /// Enters a class made with new, and owns it. kyrStatusAlreadyExists leaves it with the caller. Hosts use
    /// TCIMClass::AddToContainer.
    void AddClass(TCIMClass& cls);
    /// The empty name is the root class. Raises kyrStatusNotFound.
    TCIMClass* GetClass(const std::string& name) const;
    /// The empty name is the root class. Null if there is none.
    TCIMClass* FindClass(const std::string& name) const;
    /// All classes are EnumerateSubClasses(true) of this one.
    TCIMClass* GetRootClass() const;
    /// Destroys the class of that name. It must have no subclasses, and no association may point to it.
    void RemoveClass(TCIMClass& cls);

    /// Takes a declaration made with new, and destroys it if it cannot be added: kyrStatusAlreadyExists. Hosts use
    /// TCIMQualifierDecl::AddToContainer.
    void AddQualifierDecl(TCIMQualifierDecl& declaration);
    /// Raises kyrStatusNotFound, for the empty name too.
    TCIMQualifierDecl* GetQualifierDecl(const std::string& name) const;
    /// Null if there is none.
    TCIMQualifierDecl* FindQualifierDecl(const std::string& name) const;
    /// Destroys the declaration of that name. No qualifier may use it.
    void RemoveQualifierDecl(TCIMQualifierDecl& declaration);
    /// In the order of the lower-cased names.
    std::vector<TCIMQualifierDecl*> EnumerateQualifiers() const;

    /// Reads a CIM-XML document of at most 104857600 bytes, gzip-compressed if ".gz" stands anywhere in its path, and
    /// returns the classes that it brought, in document order. A failure keeps what was read before it, and has lines
    /// in the log: kyrStatusFileNotFound, kyrStatusFileSystemError, kyrStatusInvalidGzipFile, kyrStatusCorruptGzipFile,
    /// kyrStatusOutOfMemory, kyrStatusInvalidSpecificationDocument (no CIM-XML that this reader takes, or too large),
    /// and whatever building the objects raised.
    std::vector<TCIMClass*> PopulateContainerFromFile(const std::string& path);

    /// From here on the container takes instances with NULL keys and carries a list of differences. There is no way
    /// back; call it before the container is filled.
    void hackhack_TurnIntoADiffContainer();
    bool isDiffContainer() const;
    /// The list of the instances that changed between two collections. What goes in it is the host's affair; the
    /// instances stay their classes'. Each raises kyrStatusNotSupported in an ordinary container.
    void setDiffInstances(std::vector<TCIMInstance*> instances);
    std::vector<TCIMInstance*> getDiffInstances() const;
    bool hasDifferences() const;

    boost::shared_ptr<TContainerImpl> GetBody() const;

private:
    friend class TContainerImpl;

    boost::shared_ptr<TContainerImpl> fBody;
};

#endif
