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
struct TContents;

/// Thrown for what CIM-XML cannot hold, or what the core's reader would give back changed; what() says why.
class TUnsavable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes CIM-XML from which the core's reader gets the same objects back. Raises TUnsavable for everything else.
class TCimXmlWriter {
public:
    TCimXmlWriter(const TContainer& container, TOutputFile& file) : fContainer(container), fFile(file) {}

    /// Appends markup without change.
    void Raw(std::string_view markup);
    /// Appends a blank and name="value". The value is not escaped, because the core's reader does not decode escapes in
    /// attributes: it must be a word, a number or a CIM name.
    void Attribute(const char* name, std::string_view value);
    /// Appends ARRAYSIZE or REFERENCECLASS if the value has the size of an array or is a NULL reference: the elements
    /// of values have no place for these.
    void ShapeAttributes(const TCIMValue& value);
    /// Appends the element VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for NULL.
    void Value(const TCIMValue& value);
    /// The name of the class in the document: empty for the root class. Raises TUnsavable if the name would be read
    /// back as another class.
    std::string NameOf(const TCIMClass& cls) const;

    /// Appends the end mark, writes what is still buffered and returns the size of the document. Of a document that
    /// gets larger than kLargestDocument the rest is counted, but not written.
    size_t Finish(const TContents& contents);

    static constexpr size_t kLargestDocument = 104857600;  ///< bytes; the core's reader refuses more

private:
    using TKeyBindings = std::map<const std::string, const TCIMValue>;

    void Text(std::string_view text);
    void Scalar(const TCIMValue& value);
    template <typename T>
    void Real(T number);
    void Elements(const TCIMValue& array);
    void Reference(const TCIMReference& reference, int depth);
    void KeyBinding(const TCIMClass& cls, const std::string& name, const TCIMValue& value, int depth);
    void WriteBuffer();

    const TContainer& fContainer;
    TOutputFile& fFile;
    std::string fBuffer;
    size_t fSize = 0;
    unsigned long fChecksum = 0;  // CRC-32 of what was written
};

/// The attribute TYPE with a blank in front; for an array it is the type of its elements. Empty for a value without a
/// type.
std::string TypeAttribute(TCIMValue::TCIMType type);
/// The name of the element for the declaration: "PROPERTY", "PROPERTY.ARRAY" or "PROPERTY.REFERENCE".
const char* PropertyElement(const TCIMPropertyDecl& declaration);
/// The start tag with name and type, without the closing bracket. It is the same for the declaration and for the
/// property in instances.
std::string PropertyStart(const TCIMPropertyDecl& declaration);

/// Writes all instances of exactly those classes, with the values that were set in them (not those that the class
/// declares as defaults). With stable, volatile properties are left out unless they are keys. Raises TCommandError with
/// eExitOutput for what cannot be read back.
void WriteInstances(const std::vector<TCIMClass*>& classes, bool stable, TCimXmlWriter& writer);

/// Writes all qualifier declarations, then all classes in the order of OrderClasses. Raises TCommandError with
/// eExitOutput for what cannot be read back.
void WriteSchema(const TContainer& container, TCimXmlWriter& writer);

/// All classes in an order in which the reader can read them: each follows its superclass, the classes that its
/// references point to, and the siblings that were declared before it. Raises TCommandError with eExitOutput if classes
/// depend on each other in a cycle.
std::vector<const TCIMClass*> OrderClasses(const TContainer& container);

#endif
