#ifndef TCIMQUALIFIERDECL_H
#define TCIMQUALIFIERDECL_H

#include <boost/shared_ptr.hpp>
#include <string>

#include "kyr/TCIMValue.h"

class TCIMQualifierDeclImpl;

/// Declares a qualifier for a container: name, type, default value, scope and flavor.
class KYR_API TCIMQualifierDecl {
public:
    /// A set of bits.
    enum EFlavor : unsigned int {
        eFlavorOverridable = 1,   ///< a later qualifier of the same name may replace this one
        eFlavorToSubclass = 2,    ///< subclasses inherit the qualifier when they are made
        eFlavorTranslatable = 4,  ///< stored and compared only
    };
    /// A set of bits. Kept for reading; nothing refuses a qualifier because of its scope.
    enum EScope : unsigned int {
        eScopeClass = 1,
        eScopeAssociation = 2,
        eScopeProperty = 4,
        eScopeReference = 8,
    };

    /// Empty name, default value, no scope, no flavor.
    TCIMQualifierDecl(TContainer& container);
    /// The declaration is not yet in the container. Hosts use TContainer::AllocateQualifierDecl.
    TCIMQualifierDecl(TContainer& container, const std::string& name, const TCIMValue& value, EScope scope,
                      EFlavor flavor);
    TCIMQualifierDecl(const TCIMQualifierDecl&) = delete;
    TCIMQualifierDecl& operator=(const TCIMQualifierDecl&) = delete;
    virtual ~TCIMQualifierDecl();

    /// Never fails.
    void Validate() const;
    /// Hands the declaration to its container, which owns it from then on. When that fails, with
    /// kyrStatusAlreadyExists or kyrStatusInvalidCIMName, the declaration is destroyed.
    void AddToContainer() const;

    const std::string& GetName() const;
    /// Changes the text alone: a container goes on finding the declaration under the name that it was added with.
    void SetName(const std::string& name);
    /// Those of the default value.
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    TCIMValue GetValue() const;
    void SetValue(const TCIMValue& value);
    TContainer* GetContainer() const;
    EScope GetScope() const;
    EFlavor GetFlavor() const;
    /// Adds bits.
    void SetFlavor(EFlavor flavor);
    /// Takes bits away.
    void UnsetFlavor(EFlavor flavor);

    /// By name, without regard to case, and by nothing else.
    bool operator==(const TCIMQualifierDecl& other) const;
    bool operator<(const TCIMQualifierDecl& other) const;

    boost::shared_ptr<TCIMQualifierDeclImpl> GetBody() const;

private:
    friend class TCIMQualifierDeclImpl;

    boost::shared_ptr<TCIMQualifierDeclImpl> fBody;
};

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

#endif
