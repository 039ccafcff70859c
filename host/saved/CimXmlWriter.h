#ifndef KYR_HOST_SAVED_CIMXMLWRITER_H
#define KYR_HOST_SAVED_CIMXMLWRITER_H

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "kyr/TCIMValue.h"

class TCIMClass;
class TCIMPropertyDecl;
class TCIMReference;
class TContainer;
class TOutputFile;

/// Says why something would not read back as it is.
class TUnsavable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes CIM-XML in the form that the core's reader takes back without loss. What it would not is a TUnsavable.
class TCimXmlWriter {
public:
    TCimXmlWriter(const TContainer& container, TOutputFile& file) : fContainer(container), fFile(file) {}

    /// Markup, as it stands.
    void Raw(std::string_view markup);
    /// A blank in front. Values of attributes have no escapes; all of ours are words, numbers and CIM names.
    void Attribute(const char* name, std::string_view value);
    /// What a value's own element does not tell: the size of an array, the class of a NULL reference.
    void ShapeAttributes(const TCIMValue& value);
    /// VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for NULL.
    void Value(const TCIMValue& value);
    /// The name by which a document speaks of the class: empty for the root class.
    std::string NameOf(const TCIMClass& cls) const;

    /// Hands the rest to the file and gives the size of all. Beyond kLargestDocument nothing is handed over.
    size_t Finish();

    static constexpr size_t kLargestDocument = 104857600;  // what the reader takes

private:
    using TKeyBindings = std::map<const std::string, const TCIMValue>;

    void Text(std::string_view text);
    void Scalar(const TCIMValue& value);
    template <typename T>
    void Real(T number);
    void Elements(const TCIMValue& array);
    void Reference(const TCIMReference& reference, int depth);
    void KeyBinding(const TCIMClass& cls, const std::string& name, const TCIMValue& value, int depth);
    void Spill();

    const TContainer& fContainer;
    TOutputFile& fFile;
    std::string fBuffer;
    size_t fSize = 0;
};

/// TYPE with a blank in front, an array's being its elements'; nothing for a value without a type.
std::string TypeAttribute(TCIMValue::TCIMType type);
/// "PROPERTY", "PROPERTY.ARRAY" or "PROPERTY.REFERENCE".
const char* PropertyElement(const TCIMPropertyDecl& declaration);
/// The start tag of the declaration, and of each property that is declared by it, with name and type.
std::string PropertyStart(const TCIMPropertyDecl& declaration);

/// Writes all instances of exactly those classes with those values that are their own. With stable, values that change
/// by themselves are left out unless they are keys. Raises TCommandError with eExitOutput for what would not read back
/// as it is.
void WriteInstances(const std::vector<TCIMClass*>& classes, bool stable, TCimXmlWriter& writer);

/// Writes all qualifier declarations, then all classes, each behind what it needs. Raises TCommandError with
/// eExitOutput for what would not read back as it is.
void WriteSchema(const TContainer& container, TCimXmlWriter& writer);

/// All classes, each behind its superclass, the classes that its references point to, and its elder siblings. Raises
/// TCommandError with eExitOutput if there is no such order.
std::vector<const TCIMClass*> OrderClasses(const TContainer& container);

#endif
