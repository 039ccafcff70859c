#ifndef TCIMQUALIFIERDECL_H
#define TCIMQUALIFIERDECL_H

#include <boost/shared_ptr.hpp>
#include <string>

#include "kyr/TCIMValue.h"

class TCIMQualifierDeclImpl;

/// Declares a qualifier for a container: name, type, default value, scope and flavor. The default is for readers: a
/// class without the qualifier is not treated as if it had it. The core itself acts on KEY, ABSTRACT, ASSOCIATION,
/// OVERRIDE, DONTCOLLECT, PLUGINNAME, PLUGINVERSION and those of TCIMProperty::ToString, and declares none of them.
/// A declaration belongs to the thread that its container belongs to.
class KYR_API TCIMQualifierDecl {
public:
    /// A set of bits. A qualifier takes its declaration's when it is made, and has its own from then on.
    enum EFlavor : unsigned int {
        /// A later qualifier of the same name may replace this one. A declaration in a document has this bit and the
        /// next unless it says otherwise.
        eFlavorOverridable = 1,
        /// Subclasses inherit the qualifier when they are made.
        eFlavorToSubclass = 2,
        /// Stored and compared only.
        eFlavorTranslatable = 4,
    };
    /// A set of bits: where a qualifier is meant to stand. Kept for reading; nothing refuses a qualifier because of its
    /// scope. The scopes METHOD, PARAMETER and INDICATION of a document have no bit.
    enum EScope : unsigned int {
        eScopeClass = 1,
        eScopeAssociation = 2,
        eScopeProperty = 4,
        eScopeReference = 8,
    };

    /// Empty name, a NULL value without a type, no scope, no flavor; the scope cannot be set later.
    TCIMQualifierDecl(TContainer& container);
    /// The declaration is not yet in the container, and its name not yet checked. Hosts use
    /// TContainer::AllocateQualifierDecl.
    TCIMQualifierDecl(TContainer& container, const std::string& name, const TCIMValue& value, EScope scope,
                      EFlavor flavor);
    TCIMQualifierDecl(const TCIMQualifierDecl&) = delete;
    TCIMQualifierDecl& operator=(const TCIMQualifierDecl&) = delete;
    /// For a declaration that was never added. Qualifiers made from it point to it: they must be gone before.
    virtual ~TCIMQualifierDecl();

    /// Never fails. Kept for hosts that link to it.
    void Validate() const;
    /// Hands the declaration to its container, which owns it from then on. It must have been made with new. When that
    /// fails, with kyrStatusAlreadyExists or kyrStatusInvalidCIMName, the declaration is destroyed: do not touch it
    /// afterwards, whatever comes of it.
    void AddToContainer() const;

    /// As written.
    const std::string& GetName() const;
    /// Changes the text alone: a container goes on finding the declaration under the name that it was added with.
    void SetName(const std::string& name);
    /// @{
    /// Those of the default value.
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    /// @}
    /// A copy of the default.
    TCIMValue GetValue() const;
    /// As TCIMValue::Set, for the default alone: qualifiers have values of their own.
    void SetValue(const TCIMValue& value);
    /// The container that the declaration was made for, also before it has been added.
    TContainer* GetContainer() const;
    /// The scope that it was made with.
    EScope GetScope() const;
    /// The flavor of the qualifiers that are made from now on.
    EFlavor GetFlavor() const;
    /// Adds bits, for qualifiers that are made from now on.
    void SetFlavor(EFlavor flavor);
    /// Takes bits away.
    void UnsetFlavor(EFlavor flavor);

    /// @{
    /// By name, without regard to case, and by nothing else. A malformed name raises kyrStatusInvalidCIMName.
    bool operator==(const TCIMQualifierDecl& other) const;
    bool operator<(const TCIMQualifierDecl& other) const;
    /// @}

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TCIMQualifierDeclImpl> GetBody() const;

private:
    friend class TCIMQualifierDeclImpl;

    boost::shared_ptr<TCIMQualifierDeclImpl> fBody;
};

/// @relates TCIMQualifierDecl
/// @{
/// Makes and cuts sets of bits; without it the result would be an integer, which no operation takes.
constexpr TCIMQualifierDecl::EFlavor operator|(TCIMQualifierDecl::EFlavor a, TCIMQualifierDecl::EFlavor b) {
    return static_cast<TCIMQualifierDecl::EFlavor>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
}
constexpr TCIMQualifierDecl::EFlavor operator&(TCIMQualifierDecl::EFlavor a, TCIMQualifierDecl::EFlavor b) {
    return static_cast<TCIMQualifierDecl::EFlavor>(static_cast<unsigned int>(a) & static_cast<unsigned int>(b));
}
constexpr TCIMQualifierDecl::EFlavor operator~(TCIMQualifierDecl::EFlavor a) {
    return static_cast<TCIMQualifierDecl::EFlavor>(~static_cast<unsigned int>(a));
}
constexpr TCIMQualifierDecl::EScope operator|(TCIMQualifierDecl::EScope a, TCIMQualifierDecl::EScope b) {
    return static_cast<TCIMQualifierDecl::EScope>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
}
constexpr TCIMQualifierDecl::EScope operator&(TCIMQualifierDecl::EScope a, TCIMQualifierDecl::EScope b) {
    return static_cast<TCIMQualifierDecl::EScope>(static_cast<unsigned int>(a) & static_cast<unsigned int>(b));
}
constexpr TCIMQualifierDecl::EScope operator~(TCIMQualifierDecl::EScope a) {
    return static_cast<TCIMQualifierDecl::EScope>(~static_cast<unsigned int>(a));
}
/// @}

#endif
