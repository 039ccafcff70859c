#ifndef KYR_MODEL_TCONTAINERIMPL_H
#define KYR_MODEL_TCONTAINERIMPL_H

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>
#include <vector>

#include "kyr/TContainer.h"

class TContainerImpl {
public:
    explicit TContainerImpl(TContainer& handle) : fHandle(&handle) {}
    TContainerImpl(const TContainerImpl&) = delete;
    TContainerImpl& operator=(const TContainerImpl&) = delete;
    ~TContainerImpl();

    static TContainerImpl& Of(const TContainer& handle) { return *handle.fBody; }
    /// A CIM name in lower case, the form in which names are compared. Logs and raises kyrStatusInvalidCIMName for a
    /// malformed name; the empty name is allowed.
    static std::string NormalizeName(const std::string& name);
    /// Orders two names by their normalised forms.
    static int CompareNames(const std::string& a, const std::string& b);

    void Initialize();
    /// Mutable, for the const allocators of TContainer: what they make may change the container later.
    TContainer& GetHandle() const { return *fHandle; }

    void AddClass(TCIMClass& cls);
    TCIMClass* GetClass(const std::string& name) const;
    TCIMClass* FindClass(const std::string& name) const;
    TCIMClass* GetRootClass() const { return fRootClass; }
    void RemoveClass(TCIMClass& cls);

    void AddQualifierDecl(TCIMQualifierDecl& declaration);
    TCIMQualifierDecl* GetQualifierDecl(const std::string& name) const;
    TCIMQualifierDecl* FindQualifierDecl(const std::string& name) const;
    void RemoveQualifierDecl(TCIMQualifierDecl& declaration);
    std::vector<TCIMQualifierDecl*> EnumerateQualifiers() const;

    void TurnIntoADiffContainer() { fIsDiff = true; }
    bool IsDiffContainer() const { return fIsDiff; }
    void SetDiffInstances(std::vector<TCIMInstance*> instances);
    std::vector<TCIMInstance*> GetDiffInstances() const;
    bool HasDifferences() const;

private:
    using TQualifierDecls = std::map<std::string, boost::shared_ptr<TCIMQualifierDecl>, std::less<>>;
    using TClasses = std::map<std::string, boost::shared_ptr<TCIMClass>, std::less<>>;

    std::pair<TQualifierDecls::const_iterator, bool> LookupQualifier(const std::string& name) const;
    std::pair<TClasses::const_iterator, bool> LookupClass(const std::string& name) const;
    void RequireDiffContainer() const;

    TContainer* fHandle;
    TQualifierDecls fQualifierDecls;  // by normalised name
    TClasses fClasses;                // by normalised name
    TCIMClass* fRootClass = nullptr;  // owned; not in fClasses
    bool fIsDiff = false;
    std::vector<TCIMInstance*> fDiffInstances;  // their classes own them
};

#endif
