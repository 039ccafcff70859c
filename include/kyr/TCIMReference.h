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
/// and nothing tells it when they go.
class KYR_API TCIMReference {
public:
    /// Empty. The container may be null.
    TCIMReference(const TContainer* container);
    /// Object paths are not read: raises what SetPath raises.
    TCIMReference(const TContainer* container, const std::string& path);
    TCIMReference(const TCIMReference& other);
    TCIMReference& operator=(const TCIMReference& other);
    ~TCIMReference();

    void SetContainer(TContainer* container);
    /// Back to the start, container included.
    void Clear();
    /// Always raises: kyrStatusInvalidOpSequence without a container, kyrStatusNotImplemented with one.
    void SetPath(const std::string& path);
    /// Raises kyrStatusInvalidReference when no class is set.
    TCIMClass* GetClass() const;
    /// As GetClass.
    const std::string& GetClassName() const;
    /// kyrStatusInvalidOpSequence without a container or with keys bound, kyrStatusNotFound for an unknown class. The
    /// empty name is the root class.
    void SetClassName(const std::string& name);
    /// kyrStatusInvalidOpSequence with keys bound.
    void SetClass(TCIMClass& cls);
    /// Binds a key to a copy of the value. The first binding of a name stays. kyrStatusInvalidOpSequence without a
    /// class or for a property that is no key, kyrStatusNotFound for an unknown property, kyrStatusTypeMismatch for
    /// another type than the declared one. The name is kept as given, and its case counts from here on.
    void AddKeyValue(const std::string& name, const TCIMValue& value);
    /// A copy.
    std::map<const std::string, const TCIMValue> EnumerateKeyBindings() const;
    /// Replaces all bindings, unchecked.
    void SetKeyBindings(std::map<const std::string, const TCIMValue> bindings);

    /// The object path, `Class.Key="value",Other="value"`, by which classes file their instances. Nothing is escaped,
    /// and a NULL key is left out. Raises kyrStatusInvalidReference while there is no class.
    std::string GetPath() const;
    /// The instance of that path, or the class if no keys are bound. An instance is looked for in this very class, not
    /// in its subclasses, and once found it is kept until Clear. kyrStatusNotFound if there is none.
    ICIMElement* GetCIMElement() const;

    /// By class (as a pointer) and bindings.
    bool operator==(const TCIMReference& other) const;
    bool operator<(const TCIMReference& other) const;

    boost::shared_ptr<TCIMReferenceImpl> GetBody() const;

private:
    friend class TCIMReferenceImpl;

    boost::shared_ptr<TCIMReferenceImpl> fBody;
};

#endif
