#ifndef TCIMQUALIFIER_H
#define TCIMQUALIFIER_H

#include <boost/shared_ptr.hpp>
#include <string>

#include "kyr/TCIMQualifierDecl.h"
#include "kyr/TCIMValue.h"

class TCIMQualifierImpl;

/// One use of a qualifier declaration, on a class or a property declaration. It does not keep its declaration alive.
/// A copy makes a body of its own.
class KYR_API TCIMQualifier {
public:
    /// With the declaration's flavor.
    TCIMQualifier(const TCIMQualifierDecl& declaration, const TCIMValue& value);
    TCIMQualifier(const TCIMQualifierDecl& declaration, const TCIMValue& value, TCIMQualifierDecl::EFlavor flavor);
    TCIMQualifier(const TCIMQualifier& other);
    TCIMQualifier& operator=(const TCIMQualifier&) = delete;
    ~TCIMQualifier();

    /// The declaration's name.
    const std::string& GetName() const;
    /// Those of the qualifier's own value, which may differ from the declaration's.
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    const TCIMQualifierDecl& GetDeclaration() const;
    TCIMValue GetValue() const;
    TCIMQualifierDecl::EFlavor GetFlavor() const;
    /// True while the qualifier is as it was inherited: each of the three below makes it false.
    bool GetPropagated() const;
    void SetPropagated(bool propagated);
    void SetValue(const TCIMValue& value);
    /// Adds bits.
    void SetFlavor(TCIMQualifierDecl::EFlavor flavor);
    /// Takes bits away.
    void UnsetFlavor(TCIMQualifierDecl::EFlavor flavor);

    /// By the declarations' names, without regard to case; the values play no part.
    bool operator==(const TCIMQualifier& other) const;
    bool operator<(const TCIMQualifier& other) const;

    boost::shared_ptr<TCIMQualifierImpl> GetBody() const;

private:
    friend class TCIMQualifierImpl;

    boost::shared_ptr<TCIMQualifierImpl> fBody;
};

#endif
