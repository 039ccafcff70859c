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
/// found without regard to case; a malformed one raises kyrStatusInvalidCIMName.
///
/// A container and all that it holds are used by one thread at a time, also for reading; references into it count as
/// part of it. Separate containers may be used on separate threads at once, and so may separate values. What one thread
/// has made another may use and destroy, once the host has handed it over, by a lock or a join. While several threads
/// are at work the host changes neither TZ nor the locale.
class KYR_API TContainer {
public:
    /// Empty but for the root class, from which all classes descend. No qualifier is declared in advance, not even KEY.
    TContainer();
    TContainer(const TContainer&) = delete;
    TContainer& operator=(const TContainer&) = delete;
    /// Destroys classes, instances and declarations; pointers to them that were handed out dangle.
    virtual ~TContainer();

    /// @{
    /// The hooks through which a derived container makes objects of its own; documents and plugins make theirs through
    /// them too. The root class is made without them. What they return is the caller's until it is added, and to be
    /// deleted if it is not. With a null superclass, the class stands at the top of the tree and inherits nothing.
    virtual TCIMClass* AllocateClass(const std::string& name, TCIMClass* superclass) const;
    virtual TCIMInstance* AllocateInstance(TCIMClass* cls) const;
    virtual TCIMQualifierDecl* AllocateQualifierDecl(const std::string& name, const TCIMValue& value,
                                                     TCIMQualifierDecl::EScope scope,
                                                     TCIMQualifierDecl::EFlavor flavor) const;
    /// @}

    /// Enters a class made with new, and owns it, but does not enter it with its superclass or its associations: hosts
    /// use TCIMClass::AddToContainer, which does. kyrStatusAlreadyExists, with a line at kyrLogDebug, leaves the class
    /// with the caller.
    void AddClass(TCIMClass& cls);
    /// The empty name is the root class. Raises kyrStatusNotFound, which is not logged.
    TCIMClass* GetClass(const std::string& name) const;
    /// The empty name is the root class. Null if there is none.
    TCIMClass* FindClass(const std::string& name) const;
    /// The nameless top of the tree, which has neither keys nor instances. It is in no list of classes, and all classes
    /// are EnumerateSubClasses(true) of it.
    TCIMClass* GetRootClass() const;
    /// Destroys the class of that name with its instances; kyrStatusNotFound. It must have no subclasses, it may be no
    /// association that other classes are joined by, and no reference may name it: their pointers would dangle.
    void RemoveClass(TCIMClass& cls);

    /// Takes a declaration made with new, and destroys it if it cannot be added: kyrStatusAlreadyExists, with a line at
    /// kyrLogDebug, or kyrStatusInvalidCIMName. A refused class stays with its caller, but a refused declaration does
    /// not: see docs/oddities.md. Hosts use TCIMQualifierDecl::AddToContainer.
    void AddQualifierDecl(TCIMQualifierDecl& declaration);
    /// Raises kyrStatusNotFound, for the empty name too.
    TCIMQualifierDecl* GetQualifierDecl(const std::string& name) const;
    /// Null if there is none.
    TCIMQualifierDecl* FindQualifierDecl(const std::string& name) const;
    /// Destroys the declaration of that name; kyrStatusNotFound. No qualifier may use it: each points to its
    /// declaration.
    void RemoveQualifierDecl(TCIMQualifierDecl& declaration);
    /// In the order of the lower-cased names.
    std::vector<TCIMQualifierDecl*> EnumerateQualifiers() const;

    /// Reads a CIM-XML document of at most 104857600 bytes, gzip-compressed if ".gz" stands anywhere in its path, and
    /// returns the classes that it brought, in document order. A class or qualifier declaration that is there already
    /// is dropped, and such a class is not in the result. An instance that is there already is added once more.
    ///
    /// A file that cannot be read raises kyrStatusFileNotFound (a directory too), kyrStatusFileSystemError,
    /// kyrStatusInvalidGzipFile, kyrStatusCorruptGzipFile (the content is not as long as its trailer says),
    /// kyrStatusOutOfMemory or, if it is too large, kyrStatusInvalidSpecificationDocument; none of them is logged.
    /// Content that is no CIM-XML of the kind that is taken raises kyrStatusInvalidSpecificationDocument, and building
    /// the objects raises what their operations raise. Both are logged with the number of the line in the document, and
    /// then as "Previous error was while parsing file '...'". What was read before a failure stays in the container.
    std::vector<TCIMClass*> PopulateContainerFromFile(const std::string& path);

    /// Makes this a difference container, as hosts use it to tell what changed between two collections: from here on it
    /// takes instances with NULL keys, takes references in documents whose keys are no keys of the class, and carries a
    /// list of differences. There is no way back; call it before the container is filled. Hosts link to the odd name,
    /// so it stays.
    void hackhack_TurnIntoADiffContainer();
    /// True once it was made one.
    bool isDiffContainer() const;
    /// @{
    /// The list of the instances that changed. What goes in it is the host's affair: the core neither compares
    /// collections nor takes an instance out when it is removed. The instances stay their classes'. Each of the three
    /// raises kyrStatusNotSupported in an ordinary container, hasDifferences too, with a line in the log.
    void setDiffInstances(std::vector<TCIMInstance*> instances);
    std::vector<TCIMInstance*> getDiffInstances() const;
    bool hasDifferences() const;
    /// @}

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TContainerImpl> GetBody() const;

private:
    friend class TContainerImpl;

    boost::shared_ptr<TContainerImpl> fBody;
};

#endif
