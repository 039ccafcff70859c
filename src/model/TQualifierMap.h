#ifndef KYR_MODEL_TQUALIFIERMAP_H
#define KYR_MODEL_TQUALIFIERMAP_H

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/TSmallObject.h"

class TCIMQualifier;
struct TLiteralName;

/// The qualifiers of a class or a property declaration by normalised name, and the rule by which one replaces another.
class TQualifierMap {
public:
    void Add(TCIMQualifier& qualifier);
    TCIMQualifier* Get(const std::string& name) const;
    TCIMQualifier* Find(const std::string& name) const;
    TCIMQualifier* Find(const TLiteralName& name) const;
    std::vector<const TCIMQualifier*> Enumerate() const;
    void Remove(TCIMQualifier& qualifier);
    /// Adds copies of the superclass's qualifiers that propagate to subclasses.
    void InheritFrom(const TQualifierMap& superClass);
    /// The qualifier KEY, or null. Kept beside the map because every new instance asks for it.
    const TCIMQualifier* GetKey() const { return fKey; }

private:
    using TEntry = std::pair<const std::string, boost::shared_ptr<TCIMQualifier>>;
    using TMap = std::map<std::string, boost::shared_ptr<TCIMQualifier>, std::less<>, TSmallObjectAllocator<TEntry>>;

    void Insert(std::string_view name, TCIMQualifier* qualifier);
    void Erase(TMap::iterator entry);

    TMap fMap;
    const TCIMQualifier* fKey = nullptr;  // owned by the map
};

#endif
