#ifndef KYR_MODEL_TCIMCLASSIMPL_H
#define KYR_MODEL_TCIMCLASSIMPL_H

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "kyr/TCIMClass.h"
#include "kyr/kyrStatus.h"
#include "model/TCIMElementImpl.h"
#include "model/TPropertyLayout.h"
#include "model/TQualifierMap.h"
#include "model/TReferenceIndex.h"

class TCIMClassImpl : public TCIMElementImpl {
public:
    TCIMClassImpl(TCIMClass& handle, TContainer& container, std::string name, TCIMClass* superClass);
    TCIMClassImpl(const TCIMClassImpl&) = delete;
    TCIMClassImpl& operator=(const TCIMClassImpl&) = delete;
    ~TCIMClassImpl() override;

    static TCIMClassImpl& Of(const TCIMClass& handle) { return *handle.fBody; }

    void Validate() const override;
    TContainer* GetContainer() const override { return fContainer; }
    void AddToContainer();
    /// True once the class has joined its container, which owns it from then on.
    bool IsAdded() const { return fAdded; }
    /// Called by the destructor of the container: the destructor of this class then leaves the list of its superclass
    /// alone.
    void ForgetSuperClassList() { fAdded = false; }

    const std::string& GetName() const { return fName; }
    TCIMClass* GetSuperClass() const { return fSuperClass; }
    bool IsRootClass() const;
    std::vector<TCIMClass*> EnumerateSubClasses(bool deep) const;
    bool IsAssociation() const;
    bool IsAbstract() const;
    bool IsSubclassOf(const TCIMClass* other) const;
    TQualifierMap& Qualifiers() { return fQualifiers; }

    void AddChildClass(TCIMClass& child);
    void RemoveChildClass(TCIMClass& child);
    void AddAssociationClass(TCIMClass& association);

    void AddPropertyDecl(TCIMPropertyDecl& declaration);
    TCIMPropertyDecl* GetPropertyDecl(const std::string& name) const;
    TCIMPropertyDecl* FindPropertyDecl(const std::string& name) const;
    std::vector<const TCIMPropertyDecl*> EnumeratePropertyDecls() const;
    void RemovePropertyDecl(TCIMPropertyDecl& declaration);
    std::vector<std::string> EnumerateKeyNames() const;
    /// The key declarations, in the order of EnumerateKeyNames.
    std::vector<const TCIMPropertyDecl*> EnumerateKeyDecls() const;
    /// The layout for new instances.
    boost::shared_ptr<const TPropertyLayout> GetPropertyLayout();
    /// True if the layout holds the present declarations, and if the layout and this class find each by its name.
    bool IsPresentLayout(const TPropertyLayout& layout) const;
    /// The indices in that layout of the declarations that have the qualifier KEY, which need not be true.
    const std::vector<size_t>& GetKeyCandidates();

    /// How long the path of an instance may become, by those that were made before.
    size_t GetLongestPath() const { return fLongestPath; }
    void NotePath(size_t length) { fLongestPath = std::max(fLongestPath, std::min(length, kLongestNotedPath)); }

    void AddInstance(TCIMInstance& instance);
    void RemoveInstance(TCIMInstance& instance);
    TCIMInstance* GetInstance(const TCIMReference& reference) const;
    TCIMInstance* FindInstance(const TCIMReference& reference) const;
    std::vector<TCIMInstance*> EnumerateInstances(bool deep) const;
    /// Gives those instances that refer to the target, in the order of EnumerateInstances(false), or if they are not
    /// known all instances and false.
    bool FindReferring(const TCIMInstance& target, std::vector<TCIMInstance*>& instances);

    std::vector<TCIMClass*> References(const std::string& assocClass, const std::string& role) const;
    std::vector<TCIMClass*> Associators(const std::string& assocClass, const std::string& resultClass,
                                        const std::string& role, const std::string& resultRole) const;

private:
    static constexpr size_t kLongestNotedPath = 256;

    using TPropertyDecls = std::map<std::string, boost::shared_ptr<TCIMPropertyDecl>, std::less<>>;

    void RegisterWithReferencedClasses();
    bool HasSettledNames() const;
    void CollectKeyCandidates();
    void RemoveOverriddenDecl(TPropertyDecls::iterator existing, const TCIMPropertyDecl& declaration);
    [[noreturn]] void RefuseDecl(kyrStatusCode code, const std::string& attempt, const TCIMPropertyDecl& declaration,
                                 const std::string& relation, const std::string& reason) const;
    std::vector<TCIMClass*> FindAssociations(const TCIMClass& assocClass, const std::string& role) const;
    bool RefersToThis(const TCIMClass& association, const std::string& role) const;
    void AddOtherEnds(const TCIMClass& association, const TCIMClass& resultClass, const std::string& role,
                      std::vector<TCIMClass*>& result) const;

    TCIMClass* fHandle;
    TContainer* fContainer;  // not owned
    std::string fName;       // as written
    TCIMClass* fSuperClass;  // not owned; null for the root class alone
    TQualifierMap fQualifiers;
    TPropertyDecls fPropertyDecls;                     // by normalised name; inherited ones are shared
    std::vector<TCIMClass*> fChildClasses;             // not owned, in the order of joining
    std::set<TCIMClass*> fAssociations;                // not owned: the associations that reference this class
    TReferenceIndex::TInstances fInstances;            // by object path
    std::unique_ptr<TReferenceIndex> fReferenceIndex;  // null: nobody asked since fInstances changed
    boost::shared_ptr<const TPropertyLayout> fLayout;  // null: must be rebuilt, the declarations changed
    unsigned long fLayoutRenameCount = 0;              // of TCIMPropertyDeclImpl::GetRenameCount when fLayout was built
    bool fHasSettledNames = false;                     // when fLayout was built
    std::vector<size_t> fKeyCandidates;                // of fLayout
    size_t fLongestPath = 0;                           // of its instances, in characters
    unsigned long fKeyChangeCount = 0;  // of TCIMPropertyDeclImpl::GetKeyChangeCount when they were collected
    bool fAdded = false;
};

#endif
