#ifndef TCIMVALUE_H
#define TCIMVALUE_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class TCIMClass;
class TCIMDateTime;
class TCIMReference;
class TCIMValueImpl;
class TContainer;

/// The one carrier of data: NULL (a type and nothing more), a boolean, a number, a string, a date-time, a reference
/// or an array of values. A value reads back as exactly the type that it holds; nothing is ever converted. Copies are
/// deep. One thread at a time per object.
///
/// Constructors and conversions are implicit, which makes some mistakes compile: use IsNull() and not `if (value)`,
/// write static_cast<std::string>(value), and compare with TCIMValue(5u) and not with 5.
class KYR_API TCIMValue {
public:
    /// The type of a value: one ECIMType, an array type having eCIMArrayFlag set. An array of references is thus
    /// TCIMType::ECIMType(eCIMReference | eCIMArrayFlag).
    class KYR_API TCIMType {
    public:
        /// Values of unlike types are ordered by these numbers, which are part of the library's interface.
        enum ECIMType : int {
            eCIMNone = 0,
            eCIMBoolean = 1,
            eCIMUint8 = 2,
            eCIMSint8 = 3,
            eCIMUint16 = 4,
            eCIMSint16 = 5,
            eCIMUint32 = 6,
            eCIMSint32 = 7,
            eCIMUint64 = 8,
            eCIMSint64 = 9,
            eCIMReal32 = 10,
            eCIMReal64 = 11,
            eCIMChar = 12,  ///< has a name and a number, and no value ever holds one
            eCIMString = 13,
            eCIMDateTime = 14,
            eCIMReference = 15,
            eCIMArrayFlag = 16
        };

        /// From one of the numbers above, or an array's.
        TCIMType(ECIMType type) : fType(type) {}
        /// From the name of a CIM type in any case, as documents have it in their TYPE attributes. "char" and
        /// "reference" are not taken, and no array has a name: kyrStatusTypeMismatch, as for every unknown word.
        TCIMType(std::string name);
        /// @{
        /// A copy has the same number.
        TCIMType(const TCIMType&) = default;
        TCIMType& operator=(const TCIMType&) = default;
        /// @}

        /// The number.
        operator ECIMType() const { return fType; }
        /// The name in small letters; an array's is its element's. Raises kyrStatusTypeMismatch for a number without
        /// one, eCIMNone among them.
        std::string ToString() const;

    private:
        ECIMType fType;
    };

    /// A NULL without a type.
    TCIMValue();
    /// A NULL of type char cannot be copied: kyrStatusTypeMismatch.
    TCIMValue(const TCIMValue& other);
    /// @{
    /// Integers become the CIM type of their width and sign; unsigned long is uint64, and long is sint64. A plain char
    /// becomes a sint32, and a long long does not compile: cast them.
    TCIMValue(bool value);
    TCIMValue(unsigned char value);
    TCIMValue(signed char value);
    TCIMValue(unsigned short value);
    TCIMValue(short value);
    TCIMValue(unsigned int value);
    TCIMValue(int value);
    TCIMValue(unsigned long value);
    TCIMValue(long value);
    TCIMValue(float value);
    TCIMValue(double value);
    TCIMValue(const std::string& value);
    /// @}
    /// Up to the terminating NUL; the pointer must not be null.
    TCIMValue(const char* value);
    /// A date-time that is itself NULL makes a value that is not, and that raises when it is printed.
    TCIMValue(const TCIMDateTime& value);
    /// The referenced class is the reference's, which must have one: kyrStatusInvalidReference. The instance that it
    /// names is looked for at once, and need not be there.
    TCIMValue(const TCIMReference& value);
    /// A NULL of the type. A maxArraySize other than 0 makes the type an array type. Nothing holds an array to the
    /// size; 0 stands for an array without one.
    TCIMValue(TCIMType type, unsigned int maxArraySize);
    /// An array; type is the element's, with or without eCIMArrayFlag. The elements are copied. One of another type
    /// raises kyrStatusInvalidProperty, with both types in the log; a NULL of the type is none.
    TCIMValue(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);
    /// Reads text as a scalar of the type: numbers with "0x" (hexadecimal) and "0" (octal) prefixes, "true" and "false"
    /// in small letters, the 25 characters of a date-time. Text that is no number reads as 0, text that is no boolean
    /// as false, and what stands behind a number is left unread. Eight-bit numbers are cut to their width, others that
    /// are too large become the largest of their type. None of this is told: documents in the field have such text.
    ///
    /// Raises kyrStatusTypeMismatch for a type that has no text form, kyrStatusInvalidDateTime for a bad date-time, and
    /// always for a reference, since object paths are never read. The text is not changed.
    TCIMValue(TCIMType type, std::string& text, TContainer& container);
    /// A type alone would silently become a sint32 holding the type's number, and a null pointer a text.
    TCIMValue(TCIMType type) = delete;
    TCIMValue(std::nullptr_t) = delete;
    ~TCIMValue();

    /// As Set(const TCIMValue&), which may do nothing, and may raise.
    TCIMValue& operator=(const TCIMValue& other);

    /// @{
    /// The typed forms make the value one of that type; referenced class and array size stay what they were.
    void Set(bool value);
    void Set(unsigned char value);
    void Set(signed char value);
    void Set(unsigned short value);
    void Set(short value);
    void Set(unsigned int value);
    void Set(int value);
    void Set(unsigned long value);
    void Set(long value);
    void Set(float value);
    void Set(double value);
    void Set(const std::string& value);
    void Set(const char* value);
    void Set(const TCIMDateTime& value);
    void Set(const TCIMReference& value);
    /// @}
    /// As the constructor. The elements are installed before they are checked: after kyrStatusInvalidProperty the value
    /// has them, as hosts in the field expect. They may be the value's own.
    void Set(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);
    /// Takes type and data over, the referenced class of a reference and the size of an array too. Nothing happens if
    /// the two are equal, so that an equal array keeps its old size. The comparison may raise kyrStatusInvalidDateTime
    /// (a timestamp over an interval), which leaves the value as it was. Assigning a value without a type, or a NULL of
    /// type char, over another raises kyrStatusTypeMismatch and loses the data. The other may be an element of this
    /// one.
    void Set(const TCIMValue& other);
    /// A NULL of the type, array types with their flag; the size counts for array types only.
    void SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize);

    /// An empty text and an array without elements are not NULL.
    bool IsNull() const { return fBody == nullptr; }
    /// A NULL has a type too, unless it was made without one.
    TCIMType GetType() const { return fType; }
    /// True for an array, NULL or not.
    bool IsArray() const { return (fType & TCIMType::eCIMArrayFlag) != 0; }
    /// True for a scalar reference, NULL or not; false for an array of them.
    bool IsReference() const { return fType == TCIMType::eCIMReference; }
    /// The size that was declared, not the number of elements; 0 for none. A scalar that was an array before keeps it.
    unsigned int GetMaxArraySize() const { return fMaxArraySize; }
    /// The class that a reference points to; null for a value that never was one. Not owned.
    TCIMClass* GetReferencedClass() const { return fReferencedClass; }
    /// For the NULL reference of a declaration, which has its target class from here; kyrStatusInvalidOpSequence if
    /// there is a value.
    void SetReferencedClass(TCIMClass& cls);

    /// @{
    /// Each raises kyrStatusValueIsNULL for NULL and kyrStatusTypeMismatch for any type but its own: a uint8 does not
    /// read as an unsigned int, nor a number as a text. ToString prints any type.
    operator bool() const;
    operator unsigned char() const;
    operator signed char() const;
    operator unsigned short() const;
    operator short() const;
    operator unsigned int() const;
    operator int() const;
    operator unsigned long() const;
    operator long() const;
    operator float() const;
    operator double() const;
    operator std::string() const;
    operator TCIMDateTime() const;
    operator TCIMReference() const;
    /// @}
    /// The array's own vector, not a copy: good until the value is set or destroyed. What is put in it is not checked,
    /// and changes the array although the value is constant.
    operator std::vector<TCIMValue>&() const;

    /// The plain text. The base is 8, 10 or 16 for booleans and unsigned numbers, and only 10 for signed and real ones;
    /// anything else raises kyrStatusNotSupported. Base 16 gives all digits of the width, in capitals and without "0x";
    /// reals have six significant digits. Texts stand without quotes, date-times in their 25 characters, references as
    /// their object path, all three whatever the base. An array is "{ 1, 2 }". NULL, also as an element, raises
    /// kyrStatusValueIsNULL. TCIMProperty::ToString is for people.
    std::string ToString(unsigned char base) const;

    /// @{
    /// Values of unlike types are unequal, and a NaN equals nothing. NULL references must agree in the referenced
    /// class, NULL arrays in their size. A timestamp and an interval raise kyrStatusInvalidDateTime.
    bool operator==(const TCIMValue& other) const;
    bool operator!=(const TCIMValue& other) const;
    /// @}
    /// @{
    /// NULL first, then by type number, then by value, texts by their bytes; two arrays of one type raise
    /// kyrStatusNotImplemented. Two NULLs of unlike types are each greater than the other, since the four are built on
    /// == and <: do not sort values of mixed types.
    bool operator<(const TCIMValue& other) const;
    bool operator>(const TCIMValue& other) const;
    bool operator>=(const TCIMValue& other) const;
    bool operator<=(const TCIMValue& other) const;
    /// @}

private:
    friend class TCIMValueTransfer;  // the core's own moves

    TCIMType fType;
    unsigned int fMaxArraySize;
    TCIMValueImpl* fBody;         // owned; null: the value is NULL
    TCIMClass* fReferencedClass;  // not owned
};

/// @relates TCIMValue
/// Writes TCIMType::ToString, and raises as it does. Values themselves have no such operator.
KYR_API std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type);

#endif
