#include "saved/CimXmlWriter.h"

#include "base/ExitStatus.h"
#include "base/StatusWords.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"

namespace {

using TType = TCIMValue::TCIMType;
using TDecl = TCIMQualifierDecl;

constexpr TDecl::EFlavor kUsualFlavor = TDecl::eFlavorOverridable | TDecl::eFlavorToSubclass;

template <typename TBit>
struct TNamedBit {
    const char* name;
    TBit bit;
};

constexpr TNamedBit<TDecl::EFlavor> kFlavors[] = {{"OVERRIDABLE", TDecl::eFlavorOverridable},
                                                  {"TOSUBCLASS", TDecl::eFlavorToSubclass},
                                                  {"TRANSLATABLE", TDecl::eFlavorTranslatable}};
constexpr TNamedBit<TDecl::EScope> kScopes[] = {{"CLASS", TDecl::eScopeClass},
                                                {"ASSOCIATION", TDecl::eScopeAssociation},
                                                {"PROPERTY", TDecl::eScopeProperty},
                                                {"REFERENCE", TDecl::eScopeReference}};

/// Runs the action. If something in it cannot be saved, the name of the part is put in front of the reason.
template <typename TAction>
void Within(const std::string& part, TAction action) {
    try {
        action();
    } catch (const TUnsavable& e) {
        throw TUnsavable(part + ": " + e.what());
    } catch (const TKYRException& e) {
        throw TUnsavable(part + ": " + WithStatusInWords(e.what()));
    }
}

void Require(bool condition, const char* reason) {
    if (!condition) throw TUnsavable(reason);
}

std::string Quoted(const std::string& name) { return "'" + name + "'"; }

bool HaveSameFlavorAndValue(const TCIMQualifier& a, const TCIMQualifier& b) {
    return a.GetFlavor() == b.GetFlavor() && a.GetValue() == b.GetValue();
}

// The qualifier of the superclass that the class inherits if it has none of its own; null if there is none.
const TCIMQualifier* FindInherited(const TCIMClass& cls, const std::string& name) {
    const TCIMQualifier* const found = cls.GetSuperClass()->FindQualifier(name);
    if (found == nullptr || (found->GetFlavor() & TDecl::eFlavorToSubclass) == 0) return nullptr;
    return found;
}

class TCimXmlSchemaWriter {
public:
    TCimXmlSchemaWriter(const TContainer& container, TCimXmlWriter& writer) : fContainer(container), fWriter(writer) {}

    void Write() {
        const TCIMClass& root = *fContainer.GetRootClass();
        Within("the root class", [&] {
            Require(root.EnumerateQualifiers().empty() && root.EnumeratePropertyDecls().empty(),
                    "no document can give it qualifiers or properties");
        });
        for (const TDecl* declaration : fContainer.EnumerateQualifiers())
            Within("the qualifier declaration " + Quoted(declaration->GetName()),
                   [&] { WriteDeclaration(*declaration); });
        for (const TCIMClass* cls : OrderClasses(fContainer))
            Within("the class " + Quoted(cls->GetName()), [&] { WriteClass(*cls); });
    }

private:
    // The reader takes the default of an array only together with ARRAYSIZE. ISARRAY is for an array whose default is
    // NULL.
    void WriteDeclaration(const TDecl& declaration) {
        const TCIMValue value = declaration.GetValue();
        Require(!value.IsArray() || value.IsNull() || value.GetMaxArraySize() != 0,
                "the default of an array needs an array size");
        Require(fContainer.FindQualifierDecl(declaration.GetName()) == &declaration, "it was renamed");
        fWriter.Raw("<QUALIFIER.DECLARATION");
        fWriter.Attribute("NAME", declaration.GetName());
        fWriter.Raw(TypeAttribute(value.GetType()));
        if (value.IsArray() && value.IsNull()) fWriter.Attribute("ISARRAY", "true");
        fWriter.ShapeAttributes(value);
        WriteFlavor(declaration.GetFlavor(), kUsualFlavor);
        fWriter.Raw("><SCOPE");
        for (const auto& [name, bit] : kScopes)
            if ((declaration.GetScope() & bit) != 0) fWriter.Attribute(name, "true");
        fWriter.Raw("/>");
        fWriter.Value(value);
        fWriter.Raw("</QUALIFIER.DECLARATION>\n");
    }

    // Writes only the flavors that differ from the usual ones, which the reader assumes.
    void WriteFlavor(TDecl::EFlavor flavor, TDecl::EFlavor usual) {
        for (const auto& [name, bit] : kFlavors)
            if (((flavor ^ usual) & bit) != 0) fWriter.Attribute(name, (flavor & bit) != 0 ? "true" : "false");
    }

    void WriteClass(const TCIMClass& cls) {
        Require(!fWriter.NameOf(cls).empty(), "it has no name");
        Require(cls.IsAbstract() || !cls.EnumerateKeyNames().empty(), "it is not abstract and has no key");
        RequireInheritance(cls);
        fWriter.Raw("<VALUE.OBJECT><CLASS");
        fWriter.Attribute("NAME", cls.GetName());
        if (!cls.IsRootClass()) fWriter.Attribute("SUPERCLASS", cls.GetSuperClass()->GetName());
        fWriter.Raw(">\n");
        for (const TCIMQualifier* qualifier : cls.EnumerateQualifiers()) WriteClassQualifier(cls, *qualifier);
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
            Within("property " + Quoted(declaration->GetName()), [&] { WriteProperty(cls, *declaration); });
        fWriter.Raw("</CLASS></VALUE.OBJECT>\n");
    }

    // The reader adds to each class all that its superclass has, so a class that lacks some of it would be read back
    // with more.
    static void RequireInheritance(const TCIMClass& cls) {
        for (const TCIMQualifier* qualifier : cls.GetSuperClass()->EnumerateQualifiers())
            if (FindInherited(cls, qualifier->GetName()) != nullptr &&
                cls.FindQualifier(qualifier->GetName()) == nullptr)
                throw TUnsavable("it lacks the qualifier " + Quoted(qualifier->GetName()) + " of its superclass");
        for (const TCIMPropertyDecl* inherited : cls.GetSuperClass()->EnumeratePropertyDecls()) {
            const TCIMPropertyDecl* const own = cls.FindPropertyDecl(inherited->GetName());
            if (own == nullptr || (own != inherited && own->GetClass() != &cls))
                throw TUnsavable("it lacks the property " + Quoted(inherited->GetName()) + " of its superclass");
        }
    }

    // A qualifier that the reader adds by itself, because it is inherited, must not be written, but be equal to that.
    void WriteClassQualifier(const TCIMClass& cls, const TCIMQualifier& qualifier) {
        const TCIMQualifier* const inherited = FindInherited(cls, qualifier.GetName());
        const bool isFixed = inherited != nullptr && (inherited->GetFlavor() & TDecl::eFlavorOverridable) == 0;
        if (!qualifier.GetPropagated() && !isFixed) return WriteQualifier(qualifier);
        if (inherited == nullptr || !HaveSameFlavorAndValue(*inherited, qualifier))
            throw TUnsavable("its qualifier " + Quoted(qualifier.GetName()) + " is not as it would be inherited");
    }

    void WriteQualifier(const TCIMQualifier& qualifier) {
        const TDecl& declaration = qualifier.GetDeclaration();
        Within("qualifier " + Quoted(qualifier.GetName()), [&] {
            Require(fContainer.FindQualifierDecl(qualifier.GetName()) == &declaration, "its declaration is missing");
            fWriter.Raw("<QUALIFIER");
            fWriter.Attribute("NAME", qualifier.GetName());
            const TCIMValue value = qualifier.GetValue();
            fWriter.Raw(TypeAttribute(value.GetType()));
            WriteFlavor(qualifier.GetFlavor(), declaration.GetFlavor());
            fWriter.Raw(">");
            WriteQualifierValue(value, declaration);
            fWriter.Raw("</QUALIFIER>\n");
        });
    }

    void WriteQualifierValue(const TCIMValue& value, const TDecl& declaration) {
        Require(!value.IsArray() || value.GetMaxArraySize() == 0, "it has an array size");
        const bool isDeclared = value.GetType() == declaration.GetType();
        Require(!value.IsNull() || isDeclared || value.GetType() == TType::eCIMNone,
                "it is a NULL of another type than the declared one");
        fWriter.Value(value);
        if (value.IsNull() && !isDeclared) fWriter.Raw("<VALUE></VALUE>");  // read back as a value without a type
    }

    void WriteProperty(const TCIMClass& cls, const TCIMPropertyDecl& declaration) {
        Require(cls.FindPropertyDecl(declaration.GetName()) == &declaration, "it was renamed");
        const TCIMPropertyDecl* const inherited = cls.GetSuperClass()->FindPropertyDecl(declaration.GetName());
        if (inherited == &declaration) return;
        const TCIMValue& value = declaration.GetValue();
        Require(declaration.GetClass() == &cls, "it was made for another class");
        Require((declaration.FindQualifier("Override") != nullptr) == (inherited != nullptr),
                "an inherited property needs the qualifier Override, and only such a one may have it");
        Require(inherited == nullptr || inherited->GetType() == value.GetType(), "it overrides one of another type");
        Require(!value.IsReference() || cls.IsAssociation(), "its class is no association");
        fWriter.Raw(PropertyStart(declaration));
        fWriter.ShapeAttributes(value);
        fWriter.Raw(">");
        for (const TCIMQualifier* qualifier : declaration.EnumerateQualifiers()) WriteQualifier(*qualifier);
        fWriter.Value(value);
        fWriter.Raw(std::string("</") + PropertyElement(declaration) + ">\n");
    }

    const TContainer& fContainer;
    TCimXmlWriter& fWriter;
};

}  // namespace

void WriteSchema(const TContainer& container, TCimXmlWriter& writer) {
    try {
        TCimXmlSchemaWriter(container, writer).Write();
    } catch (const TUnsavable& e) {
        throw TCommandError(eExitOutput, std::string("cannot save ") + e.what());
    }
}
