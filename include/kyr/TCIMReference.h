#ifndef TCIMREFERENCE_H
#define TCIMREFERENCE_H

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>

#include "kyr/TCIMValue.h"

class ICIMElement;
class TCIMReferenceImpl;

/// Names a class, or an instance by its class and the values of its keys. Set the container if the class is to be
/// found by name, then the class, then the keys. A copy makes a body of its own. It owns neither class nor instance,
/// and nothing tells it when they go. One thread at a time per object, also for reading: looking for the instance
/// writes down what was found. Unless told otherwise a failure has a line in the log.
class KYR_API TCIMReference {
public:
    /// Empty. The container may be null; it is needed by SetClassName alone.
    TCIMReference(const TContainer* container);
    /// Object paths are not read: raises what SetPath raises.
    TCIMReference(const TContainer* container, const std::string& path);
    /// @{
    /// Takes over what GetCIMElement has found, too.
    TCIMReference(const TCIMReference& other);
    TCIMReference& operator=(const TCIMReference& other);
    /// @}
    ~TCIMReference();

    /// Leaves class and keys alone, even if they are another container's.
    void SetContainer(TContainer* container);
    /// Back to the start, container included.
    void Clear();
    /// Object paths are printed and never read, so this always raises: kyrStatusInvalidOpSequence without a container,
    /// kyrStatusNotImplemented, which is not logged, with one.
    void SetPath(const std::string& path);
    /// Raises kyrStatusInvalidReference when no class is set. The line in the log says "before container set"; the
    /// words are kept for hosts that match on them.
    TCIMClass* GetClass() const;
    /// The class's name as written, where SetClassName may have been given it in another case. Raises as GetClass.
    const std::string& GetClassName() const;
    /// kyrStatusInvalidOpSequence without a container or with keys bound, kyrStatusNotFound, which is not logged, for
    /// an unknown class. The empty name is the root class.
    void SetClassName(const std::string& name);
    /// kyrStatusInvalidOpSequence with keys bound.
    void SetClass(TCIMClass& cls);
    /// Binds a key to a copy of the value. The first binding of a name stays, and a second one is dropped without a
    /// complaint. kyrStatusInvalidOpSequence without a class or for a property that is no key, kyrStatusNotFound, which
    /// is not logged, for an unknown property, kyrStatusTypeMismatch for another type than the declared one. The name
    /// is kept as given: spelled in another case than declared, it is taken and finds no instance.
    void AddKeyValue(const std::string& name, const TCIMValue& value);
    /// A copy, in the order of the names' bytes: capitals come first.
    std::map<const std::string, const TCIMValue> EnumerateKeyBindings() const;
    /// Replaces all bindings, unchecked; with an empty map the class can be set again.
    void SetKeyBindings(std::map<const std::string, const TCIMValue> bindings);

    /// The object path, `Class.Key="value",Other="value"`, by which classes file their instances. The keys stand in the
    /// order of EnumerateKeyBindings, their values as TCIMValue::ToString(10) gives them. Nothing is escaped, and a key
    /// that is NULL or has no text is left out. Raises kyrStatusInvalidReference while there is no class.
    std::string GetPath() const;
    /// The instance of that path, or the class (null if none is set) if no keys are bound. An instance is looked for in
    /// this very class, not in its subclasses. Once found it is kept until Clear, whatever is bound later, and dangles
    /// when the instance is destroyed. kyrStatusNotFound, which is not logged, if there is none; the next call looks
    /// again.
    ICIMElement* GetCIMElement() const;

    /// The same class (as a pointer) and equal bindings; the container does not count.
    bool operator==(const TCIMReference& other) const;
    /// By the address of the class, then by the bindings.
    bool operator<(const TCIMReference& other) const;

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TCIMReferenceImpl> GetBody() const;

private:
    friend class TCIMReferenceImpl;

    boost::shared_ptr<TCIMReferenceImpl> fBody;
};

#endif
