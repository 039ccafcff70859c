#ifndef KYR_MODEL_TQUALIFIERMAP_H
#define KYR_MODEL_TQUALIFIERMAP_H

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>
#include <vector>

class TCIMQualifier;

/// The qualifiers of one carrier, a class or a property declaration, by normalised name; and the one rule by which a
/// qualifier may replace another.
class TQualifierMap {
public:
    void Add(TCIMQualifier& qualifier);
    TCIMQualifier* Get(const std::string& name) const;
    TCIMQualifier* Find(const std::string& name) const;
    std::vector<const TCIMQualifier*> Enumerate() const;
    void Remove(TCIMQualifier& qualifier);
    /// Copies in what a subclass inherits of its superclass's qualifiers.
    void InheritFrom(const TQualifierMap& superClass);
    /// The qualifier KEY, or null. It is asked for at every instance, so it is known without a search.
    const TCIMQualifier* GetKey() const { return fKey; }

private:
    using TMap = std::map<std::string, boost::shared_ptr<TCIMQualifier>, std::less<>>;

    void Insert(const std::string& name, TCIMQualifier* qualifier);
    void Erase(TMap::iterator entry);

    TMap fMap;
    const TCIMQualifier* fKey = nullptr;  // owned by the map
};

#endif
