#ifndef KYR_HOST_CHECK_SCHEMA_H
#define KYR_HOST_CHECK_SCHEMA_H

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "check/Markup.h"

// What documents declare, as they are written and with the elements that it stands in. The core's model has no lines,
// and refuses what is to be told here. Names are found in any case, as the core finds them, and types are in lower
// case.

struct TQualifierUse {
    const TElement* element;
    std::string name;
    std::string type;
    bool isArray;
    std::vector<std::string> values;  ///< one if it is no array; none: NULL

    bool IsTrue() const;
};

struct TQualifierDeclaration {
    const TElement* element;
    std::string name;
    std::string type;
    bool isArray;
    bool isInherited;                      ///< by subclasses
    bool isOverridable;                    ///< by them
    std::vector<std::string_view> scopes;  ///< the names in its SCOPE; none: it may stand everywhere
};

/// Classes and properties have qualifiers.
struct TCarrier {
    const TElement* element;
    std::string name;
    std::vector<TQualifierUse> qualifiers;

    /// Null if there is none.
    const TQualifierUse* Find(const std::string& qualifier) const;
    /// Whether it has a qualifier with the value true.
    bool Is(const std::string& qualifier) const;
    /// The values of the qualifier; none if there is no such qualifier.
    std::vector<std::string> ValuesOf(const std::string& qualifier) const;
};

struct TPropertyDeclaration : TCarrier {
    std::string type;  ///< of its elements, if it is an array; empty for a reference
    bool isArray;
    bool isReference;
    bool isPropagated;  ///< says of itself that the superclass declares it
    bool isKey;
    std::string referencedClass = {};  ///< of a reference

    bool IsUnsigned() const;
    bool IsNumber() const;
};

struct TClassDeclaration : TCarrier {
    std::string file;
    std::string superclass;  ///< empty: none
    std::vector<TPropertyDeclaration> properties = {};
    /// Those of them that the core takes, by their names in lower case: the first of each name, and none that is
    /// propagated.
    std::unordered_map<std::string, const TPropertyDeclaration*> taken = {};
};

/// What one document declares.
struct TDocumentSchema {
    explicit TDocumentSchema(const TMarkup& markup);

    std::deque<TQualifierDeclaration> qualifiers;
    std::deque<TClassDeclaration> classes;
    std::vector<const TElement*> instances;
};

/// What is declared in front of a place in a document: that of the documents read before, and what was added of it.
class TKnownSchema {
public:
    /// What of two declarations is added first stands. Returns the one that stands.
    const TClassDeclaration& Add(const TClassDeclaration& declaration);
    void Add(const TQualifierDeclaration& declaration);

    // Null if there is none.
    const TClassDeclaration* FindClass(const std::string& name) const;
    const TQualifierDeclaration* FindQualifier(const std::string& name) const;

    /// The class, its superclass, and so on. Ends where a superclass is not known, or after 100 of them.
    std::vector<const TClassDeclaration*> Ancestry(const TClassDeclaration& cls) const;
    /// Whether all superclasses are known.
    bool IsWhole(const std::vector<const TClassDeclaration*>& ancestry) const;
    /// The declaration that a class has of the property; null if none.
    static const TPropertyDeclaration* FindProperty(const std::vector<const TClassDeclaration*>& ancestry,
                                                    const std::string& name);
    /// How many of the class's properties, overridden ones left out, have that set.
    static size_t CountOf(const std::vector<const TClassDeclaration*>& ancestry, bool TPropertyDeclaration::*member);
    /// Whether the class has a qualifier with the value true, its own or an inherited one.
    bool HasClassQualifier(const std::vector<const TClassDeclaration*>& ancestry, const std::string& name) const;

    std::vector<std::string> ClassNames() const;
    std::vector<std::string> QualifierNames() const;

private:
    std::unordered_map<std::string, const TClassDeclaration*> fClasses;
    std::unordered_map<std::string, const TQualifierDeclaration*> fQualifiers;
};

/// The name in lower case, by which it is found.
std::string LowerName(std::string name);
/// The text without blanks around it.
std::string Trimmed(const std::string& text);

#endif
