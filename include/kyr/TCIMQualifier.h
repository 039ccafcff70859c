#ifndef TCIMQUALIFIER_H
#define TCIMQUALIFIER_H

#include <boost/shared_ptr.hpp>
#include <string>

#include "kyr/TCIMQualifierDecl.h"
#include "kyr/TCIMValue.h"

class TCIMQualifierImpl;

/// One use of a qualifier declaration, on a class or a property declaration. It does not keep its declaration alive,
/// and has neither a name of its own nor a list of who carries it. A copy makes a body of its own. One thread at a time
/// per object; one that is attached belongs to the thread of its carrier's container.
class KYR_API TCIMQualifier {
public:
    /// With the flavor that the declaration has now. The value is not compared with the declared type. Attach it with
    /// ICIMAllowQualifiers::AddQualifier, which wants it made with new.
    TCIMQualifier(const TCIMQualifierDecl& declaration, const TCIMValue& value);
    /// With a flavor of its own, in place of the declaration's.
    TCIMQualifier(const TCIMQualifierDecl& declaration, const TCIMValue& value, TCIMQualifierDecl::EFlavor flavor);
    /// Takes value, flavor and the mark of inheritance over. The copy is attached to nothing.
    TCIMQualifier(const TCIMQualifier& other);
    TCIMQualifier& operator=(const TCIMQualifier&) = delete;
    ~TCIMQualifier();

    /// The declaration's name, as written.
    const std::string& GetName() const;
    /// @{
    /// Those of the qualifier's own value, which may differ from the declaration's.
    TCIMValue::TCIMType GetType() const;
    bool IsArray() const;
    /// @}
    /// The one that it was made from.
    const TCIMQualifierDecl& GetDeclaration() const;
    /// A copy.
    TCIMValue GetValue() const;
    /// Its own, which may differ from that of its declaration.
    TCIMQualifierDecl::EFlavor GetFlavor() const;
    /// @{
    /// True while the qualifier is as a subclass inherited it. It plays no part in what may be replaced.
    bool GetPropagated() const;
    void SetPropagated(bool propagated);
    /// @}
    /// As TCIMValue::Set. Like the two below, it marks the qualifier as no longer inherited.
    void SetValue(const TCIMValue& value);
    /// Adds bits. What a subclass inherited before keeps the flavor that it was copied with.
    void SetFlavor(TCIMQualifierDecl::EFlavor flavor);
    /// Takes bits away.
    void UnsetFlavor(TCIMQualifierDecl::EFlavor flavor);

    /// @{
    /// By the declarations' names, without regard to case; the values play no part.
    bool operator==(const TCIMQualifier& other) const;
    bool operator<(const TCIMQualifier& other) const;
    /// @}

    /// For the core, whose classes reach each other's internals through it.
    boost::shared_ptr<TCIMQualifierImpl> GetBody() const;

private:
    friend class TCIMQualifierImpl;

    boost::shared_ptr<TCIMQualifierImpl> fBody;
};

#endif
