#include "saved/CimXmlWriter.h"

#include "base/ExitStatus.h"
#include "base/StatusWords.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMReference.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"

namespace {

/// What all instances of a class have in common for one property, found once for speed.
struct TColumn {
    const TCIMPropertyDecl* declaration;
    bool isKey;
    bool isLeftOut;
    bool isStamped;     // the core sets it to the present time in every new instance
    std::string start;  // the tags of its element
    std::string end;
};

/// Writes the instances of one class.
class TInstanceWriter {
public:
    TInstanceWriter(const TCIMClass& cls, bool stable, TCimXmlWriter& writer) : fClass(cls), fWriter(writer) {
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) {
            const bool isKey = IsKey(*declaration);
            fColumns.push_back({declaration, isKey, stable && !isKey && IsVolatile(*declaration),
                                IsSameName(declaration->GetName(), "DateTimeOfCollection"), PropertyStart(*declaration),
                                std::string("</") + PropertyElement(*declaration) + ">\n"});
        }
    }

    void Write(const TCIMInstance& instance) {
        const TColumn* at = nullptr;
        try {
            WriteInstance(instance, at);
        } catch (const TUnsavable& e) {
            Refuse(instance, at, e);
        } catch (const TKYRException& e) {
            Refuse(instance, at, e);
        }
    }

private:
    // Leaves the column of the property that it could not write in at.
    void WriteInstance(const TCIMInstance& instance, const TColumn*& at) {
        const std::vector<const TCIMProperty*> properties = instance.EnumerateProperties();
        if (properties.size() != fColumns.size()) throw TUnsavable("its class has got other properties since");
        fWriter.Raw("<VALUE.OBJECT><INSTANCE");
        fWriter.Attribute("CLASSNAME", fWriter.NameOf(fClass));
        fWriter.Raw(">\n");
        for (size_t i = 0; i < properties.size(); ++i) {
            at = &fColumns[i];
            WriteProperty(*properties[i], *at);
        }
        fWriter.Raw("</INSTANCE></VALUE.OBJECT>\n");
    }

    // A property without an element reads back with the default of its class, or as the present time if it is stamped.
    // So a stamped one that is left out is written as NULL.
    void WriteProperty(const TCIMProperty& property, const TColumn& column) {
        const TCIMValue value = property.GetValue();
        if (&property.GetDeclaration() != column.declaration || property.GetType() != value.GetType())
            throw TUnsavable("its declaration has changed since");
        if (column.isKey && value.IsNull()) throw TUnsavable("it is a key and NULL");
        if (column.isLeftOut) return column.isStamped ? WriteElement(TCIMValue(), column) : void();
        if (!property.GetPropagated()) return WriteElement(value, column);
        if (column.isStamped) throw TUnsavable("without a value it would be given the present time");
    }

    void WriteElement(const TCIMValue& value, const TColumn& column) {
        fWriter.Raw(column.start);
        fWriter.ShapeAttributes(value);
        if (value.IsNull()) return fWriter.Raw("/>\n");
        fWriter.Raw(">");
        fWriter.Value(value);
        fWriter.Raw(column.end);
    }

    [[noreturn]] void Refuse(const TCIMInstance& instance, const TColumn* column, const std::exception& reason) const {
        const std::string property = column == nullptr ? "" : "property '" + column->declaration->GetName() + "' of ";
        throw TCommandError(eExitOutput, "cannot save " + property + "the instance " + PathOf(instance) + ": " +
                                             WithStatusInWords(reason.what()) +
                                             "; choose classes without it with --class");
    }

    std::string PathOf(const TCIMInstance& instance) const {
        try {
            return instance.BuildPath().GetPath();
        } catch (const TKYRException&) {
            return "of " + fClass.GetName();
        }
    }

    const TCIMClass& fClass;
    TCimXmlWriter& fWriter;
    std::vector<TColumn> fColumns;
};

}  // namespace

void WriteInstances(const std::vector<TCIMClass*>& classes, bool stable, TCimXmlWriter& writer) {
    for (const TCIMClass* cls : classes) {
        TInstanceWriter instances(*cls, stable, writer);
        for (const TCIMInstance* instance : cls->EnumerateInstances(false)) instances.Write(*instance);
    }
}
