#include "support/RandomContainer.h"

#include <random>

#include "support/SchemaBuilder.h"

namespace {

using TDecl = TCIMQualifierDecl;

// clang-format off
// Out of the range of a type they give its extremes.
constexpr const char* kNumbers[] = {
    "0", "-0", "1", "-1", "127", "-128", "65535", "-2147483648", "4294967295", "9223372036854775807",
    "-9223372036854775808", "18446744073709551615", "0.1", "16777217", "1e-45", "-1e22", "4.9406564584124654e-324",
    "2.2250738585072014e-308", "1.7976931348623157e308"};
// clang-format on
constexpr const char* kPieces[] = {"a",  " ",    "\n",   "\r\n",     "\t",       "<",    "&",        "]]>",
                                   "\"", "&lt;", "\x01", "\x7f\x80", "</VALUE>", "\xff", "\xc3\xa9", "0x1"};

class TFiller {
public:
    TFiller(TContainer& container, unsigned int seed) : fContainer(container), fSchema(container), fRandom(seed) {}

    void Fill() {
        AddDeclaration("Key", TCIMValue(false), TDecl::eFlavorToSubclass);
        AddDeclaration("Association", TCIMValue(false), TDecl::eFlavorToSubclass);
        AddDeclaration("Abstract", TCIMValue(false), TDecl::EFlavor(0));
        AddDeclaration("Override", Null(CIM::eCIMString), TDecl::eFlavorOverridable);
        for (unsigned int i = 0; i < 5; ++i) AddRandomDeclaration("Q" + std::to_string(i));
        for (unsigned int i = Below(8) + 1; i != 0; --i) AddClass("C" + std::to_string(Below(1000)));
        for (unsigned int i = fClasses.empty() ? 0 : Below(30); i != 0; --i) AddInstance(*Pick(fClasses));
    }

private:
    unsigned int Below(unsigned int limit) { return static_cast<unsigned int>(fRandom() % limit); }
    bool Rarely() { return Below(4) == 0; }
    template <typename T>
    const T& Pick(const std::vector<T>& from) {
        return from[Below(static_cast<unsigned int>(from.size()))];
    }

    void AddDeclaration(const std::string& name, const TCIMValue& value, TDecl::EFlavor flavor) {
        fContainer.AllocateQualifierDecl(name, value, static_cast<TDecl::EScope>(Below(16)), flavor)->AddToContainer();
    }

    void AddRandomDeclaration(const std::string& name) {
        TCIMValue value = Any(AnyType(), Rarely() ? 1 + Below(9) : 0);
        AddDeclaration(name, value, static_cast<TDecl::EFlavor>(Below(8)));
        fQualifiers.push_back(name);
    }

    void Qualify(ICIMAllowQualifiers& carrier) {
        for (const std::string& name : fQualifiers) {
            if (!Rarely() || carrier.EnumerateQualifiers().size() > 6) continue;
            const TDecl& declaration = *fContainer.GetQualifierDecl(name);
            const TCIMValue& declared = declaration.GetValue();
            const TCIMValue null(declared.GetType(), 0);
            const TCIMValue value =
                Rarely() ? null : WithoutSize(Any(ElementOf(declared.GetType()), declared.IsArray()));
            (void)StatusOf([&] { fSchema.Qualify(carrier, name, value, static_cast<TDecl::EFlavor>(Below(8))); });
        }
    }

    void AddClass(const std::string& name) {
        TCIMClass* const superclass = fClasses.empty() || Rarely() ? nullptr : Pick(fClasses);
        if (fContainer.FindClass(name) != nullptr) return;
        std::unique_ptr<TCIMClass> cls = fSchema.NewClass(name, {}, superclass);
        const bool isAssociation = cls->IsAssociation() || (!fClasses.empty() && Rarely());
        if (isAssociation) fSchema.Qualify(*cls, "Association", TCIMValue(true), TDecl::eFlavorToSubclass);
        if (Rarely()) fSchema.Qualify(*cls, "Abstract", TCIMValue(true), TDecl::EFlavor(0));
        Qualify(*cls);
        for (unsigned int i = Below(6); i != 0; --i) AddProperty(*cls, isAssociation && Below(2) == 0);
        if (cls->EnumerateKeyNames().empty()) fSchema.AddProperty(*cls, {"Id" + name, Null(AnyType()), {"Key"}});
        cls->AddToContainer();
        fClasses.push_back(cls.release());
    }

    // Each name stands for one type, so that an inherited one can be overridden.
    void AddProperty(TCIMClass& cls, bool isReference) {
        const unsigned int number = Below(40);
        const std::string name = (isReference ? "R" : "P") + std::to_string(number);
        const auto type = static_cast<CIM::ECIMType>(CIM::eCIMBoolean + number % 14);
        const bool isArray = !isReference && number > 28;
        TCIMValue value = isReference ? AnyReference() : Any(type == CIM::eCIMChar ? CIM::eCIMUint8 : type, isArray);
        const TCIMPropertyDecl* const inherited = cls.FindPropertyDecl(name);
        if (inherited != nullptr && inherited->GetClass() == &cls) return;
        std::unique_ptr<TCIMPropertyDecl> made = fSchema.NewProperty(cls, {name, value});
        if (inherited != nullptr) fSchema.Qualify(*made, "Override", TCIMValue("x"));
        if (isReference && Rarely()) fSchema.Qualify(*made, "Key", TCIMValue(true), TDecl::eFlavorToSubclass);
        Qualify(*made);
        made->AddToContainer();
        made.release();
    }

    void AddInstance(TCIMClass& cls) {
        std::unique_ptr<TCIMInstance> instance = fSchema.NewInstance(cls);
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) {
            const bool isKey = declaration->FindQualifier("Key") != nullptr;
            if (!isKey && Rarely()) continue;
            const TCIMValue& declared = declaration->GetValue();
            TCIMValue value = Like(declared);
            if (!isKey && Rarely()) value.SetNullValue(declared.GetType(), declared.GetMaxArraySize());
            if (value.IsNull() && value.IsReference()) value.SetReferencedClass(*declared.GetReferencedClass());
            while (isKey && value.IsNull()) value = Like(declared);
            instance->SetPropertyValue(declaration->GetName(), value);
        }
        if (StatusOf([&] { instance->AddToContainer(); }) == kyrStatusOK) fInstances.push_back(instance.release());
    }

    TCIMValue Like(const TCIMValue& declared) {
        if (declared.IsReference()) return TCIMValue(ReferenceTo(*declared.GetReferencedClass()));
        return Any(ElementOf(declared.GetType()), declared.IsArray());
    }

    TCIMValue AnyReference() {
        TCIMClass& cls = *Pick(fClasses);
        return Rarely() ? TCIMValue(ReferenceTo(cls)) : NullReferenceTo(cls);
    }

    TCIMReference ReferenceTo(TCIMClass& cls) {
        if (!fInstances.empty() && Rarely()) {
            const TCIMInstance& target = *Pick(fInstances);
            if (target.GetClass()->IsSubclassOf(&cls)) return target.BuildPath();
        }
        TCIMReference reference = To(cls);
        for (const std::string& key : cls.EnumerateKeyNames()) {
            TCIMValue value = Like(cls.GetPropertyDecl(key)->GetValue());
            if (!value.IsNull()) reference.AddKeyValue(key, value);
        }
        return reference;
    }

    static CIM::ECIMType ElementOf(CIM type) { return static_cast<CIM::ECIMType>(type & ~CIM::eCIMArrayFlag); }
    static TCIMValue WithoutSize(const TCIMValue& value) {
        if (!value.IsArray()) return value;
        if (value.IsNull()) return TCIMValue(value.GetType(), 0);
        return TCIMValue(ElementOf(value.GetType()), 0, value.operator std::vector<TCIMValue>&());
    }
    CIM::ECIMType AnyType() {
        const unsigned int type = CIM::eCIMBoolean + Below(CIM::eCIMDateTime);
        return type == CIM::eCIMChar || type > CIM::eCIMDateTime ? CIM::eCIMString : static_cast<CIM::ECIMType>(type);
    }

    TCIMValue Any(CIM::ECIMType type, unsigned int arraySize) {
        if (arraySize == 0) return Rarely() ? Null(type) : Scalar(type);
        if (Rarely()) return TCIMValue(type, arraySize);
        std::vector<TCIMValue> elements;
        for (unsigned int i = Below(4); i != 0; --i) elements.push_back(Scalar(type));
        return TCIMValue(type, arraySize, elements);
    }

    TCIMValue Scalar(CIM::ECIMType type) {
        if (type == CIM::eCIMString) return TCIMValue(Text());
        if (type == CIM::eCIMDateTime) return TCIMValue(Moment());
        std::string text = Rarely() ? std::to_string(fRandom()) + "e-" + std::to_string(Below(60))
                                    : kNumbers[Below(std::size(kNumbers))];
        if (type == CIM::eCIMBoolean) text = Below(2) == 0 ? "true" : "false";
        return TCIMValue(type, text, fContainer);
    }

    TCIMDateTime Moment() {
        const auto below = [this](unsigned int limit) { return static_cast<unsigned short>(Below(limit)); };
        if (Rarely()) return TCIMDateTime(Below(65536), below(24), below(60), below(60), Below(1000000));
        const auto offset = static_cast<short>(static_cast<int>(Below(1999)) - 999);
        return TCIMDateTime(static_cast<unsigned short>(1970 + Below(8029)), below(100), Below(100), below(100),
                            below(100), below(100), Below(1000000), offset);
    }
    std::string Text() {
        std::string text;
        for (unsigned int i = Below(6); i != 0; --i) text += kPieces[Below(std::size(kPieces))];
        return Rarely() ? text + static_cast<char>(1 + Below(255)) : text;
    }

    TContainer& fContainer;
    SchemaBuilder fSchema;
    std::mt19937_64 fRandom;
    std::vector<std::string> fQualifiers;
    std::vector<TCIMClass*> fClasses;
    std::vector<TCIMInstance*> fInstances;
};

}  // namespace

void FillAtRandom(TContainer& container, unsigned int seed) { TFiller(container, seed).Fill(); }
