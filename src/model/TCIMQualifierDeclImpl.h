#ifndef KYR_MODEL_TCIMQUALIFIERDECLIMPL_H
#define KYR_MODEL_TCIMQUALIFIERDECLIMPL_H

#include <string>

#include "kyr/TCIMQualifierDecl.h"

class TCIMQualifierDeclImpl {
public:
    TCIMQualifierDeclImpl(TCIMQualifierDecl& handle, TContainer& container);
    TCIMQualifierDeclImpl(TCIMQualifierDecl& handle, TContainer& container, const std::string& name,
                          const TCIMValue& value, TCIMQualifierDecl::EScope scope, TCIMQualifierDecl::EFlavor flavor);
    /// Copies all but the container.
    TCIMQualifierDeclImpl(const TCIMQualifierDeclImpl& other, TContainer& container);

    static TCIMQualifierDeclImpl& Of(const TCIMQualifierDecl& handle) { return *handle.fBody; }

    void AddToContainer() const;
    const std::string& GetName() const { return fName; }
    void SetName(const std::string& name) { fName = name; }
    const TCIMValue& Value() const { return fValue; }
    void SetValue(const TCIMValue& value) { fValue = value; }
    TContainer* GetContainer() const { return fContainer; }
    TCIMQualifierDecl::EScope GetScope() const { return fScope; }
    TCIMQualifierDecl::EFlavor GetFlavor() const { return fFlavor; }
    void SetFlavor(TCIMQualifierDecl::EFlavor flavor) { fFlavor = fFlavor | flavor; }
    void UnsetFlavor(TCIMQualifierDecl::EFlavor flavor) { fFlavor = fFlavor & ~flavor; }
    bool IsAdopted() const { return fAdopted; }
    void SetAdopted() { fAdopted = true; }

private:
    TCIMQualifierDecl* fHandle;
    TContainer* fContainer;  // not owned
    std::string fName;       // as written
    TCIMValue fValue;        // the default, which also gives the type
    TCIMQualifierDecl::EScope fScope;
    TCIMQualifierDecl::EFlavor fFlavor;
    bool fAdopted = false;  // owned by a container; a second owner would destroy it twice
};

#endif
