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
/// deep.
///
/// Constructors and conversions are implicit, which makes some mistakes compile: use IsNull() and not `if (value)`,
/// write static_cast<std::string>(value), and compare with TCIMValue(5u) and not with 5.
class KYR_API TCIMValue {
public:
    /// The type of a value: one ECIMType, an array type having eCIMArrayFlag set.
    class KYR_API TCIMType {
    public:
        /// Values of unlike types are ordered by these numbers.
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

        TCIMType(ECIMType type) : fType(type) {}
        /// From the name of a CIM type in any case. "char" and "reference" are not taken, and no array has a name:
        /// kyrStatusTypeMismatch, as for every unknown word.
        TCIMType(std::string name);
        TCIMType(const TCIMType&) = default;
        TCIMType& operator=(const TCIMType&) = default;

        operator ECIMType() const { return fType; }
        /// The name; an array's is its element's. Raises kyrStatusTypeMismatch for a number without one.
        std::string ToString() const;

    private:
        ECIMType fType;
    };

    /// A NULL without a type.
    TCIMValue();
    TCIMValue(const TCIMValue& other);
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
    TCIMValue(const char* value);
    TCIMValue(const TCIMDateTime& value);
    /// The referenced class is the reference's, which must have one: kyrStatusInvalidReference.
    TCIMValue(const TCIMReference& value);
    /// A NULL of the type. A maxArraySize other than 0 makes the type an array type.
    TCIMValue(TCIMType type, unsigned int maxArraySize);
    /// An array; type is the element's. An element of another type raises kyrStatusInvalidProperty.
    TCIMValue(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);
    /// Reads text as a scalar of the type: numbers with "0x" and "0" prefixes, "true" and "false". Text that is no
    /// number reads as 0. Raises kyrStatusTypeMismatch for a type that has no text form, kyrStatusInvalidDateTime for
    /// a bad date-time, and always for a reference, since object paths are never read.
    TCIMValue(TCIMType type, std::string& text, TContainer& container);
    /// A type alone would silently become a sint32 holding the type's number.
    TCIMValue(TCIMType type) = delete;
    TCIMValue(std::nullptr_t) = delete;
    ~TCIMValue();

    /// As Set(const TCIMValue&).
    TCIMValue& operator=(const TCIMValue& other);

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
    /// The elements are installed before they are checked: after kyrStatusInvalidProperty the value has them.
    void Set(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);
    /// Nothing happens if the two are equal. The comparison may raise kyrStatusInvalidDateTime, which leaves the value
    /// as it was. Assigning a value without a type over another raises kyrStatusTypeMismatch and loses the data.
    void Set(const TCIMValue& other);
    /// A NULL of the type; the size counts for array types only.
    void SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize);

    bool IsNull() const { return fBody == nullptr; }
    TCIMType GetType() const { return fType; }
    bool IsArray() const { return (fType & TCIMType::eCIMArrayFlag) != 0; }
    /// True for a scalar reference, NULL or not; false for an array of them.
    bool IsReference() const { return fType == TCIMType::eCIMReference; }
    unsigned int GetMaxArraySize() const { return fMaxArraySize; }
    /// The class that a reference points to; null for other types. Not owned.
    TCIMClass* GetReferencedClass() const { return fReferencedClass; }
    /// For a NULL reference; kyrStatusInvalidOpSequence if there is a value.
    void SetReferencedClass(TCIMClass& cls);

    /// Each raises kyrStatusValueIsNULL for NULL and kyrStatusTypeMismatch for any type but its own.
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
    /// The array's own vector, not a copy.
    operator std::vector<TCIMValue>&() const;

    /// The plain text. The base is 8, 10 or 16 for unsigned numbers, and only 10 for signed and real ones; anything
    /// else raises kyrStatusNotSupported. An array is "{ 1, 2 }". NULL, also as an element, raises
    /// kyrStatusValueIsNULL.
    std::string ToString(unsigned char base) const;

    /// Values of unlike types are unequal. Date-times may raise kyrStatusInvalidDateTime.
    bool operator==(const TCIMValue& other) const;
    bool operator!=(const TCIMValue& other) const;
    /// NULL first, then by type number, then by value; two arrays of one type raise kyrStatusNotImplemented. Two NULLs
    /// of unlike types are each greater than the other, by the way the four are built on == and <.
    bool operator<(const TCIMValue& other) const;
    bool operator>(const TCIMValue& other) const;
    bool operator>=(const TCIMValue& other) const;
    bool operator<=(const TCIMValue& other) const;

private:
    friend class TCIMValueTransfer;  // the core's own moves

    TCIMType fType;
    unsigned int fMaxArraySize;
    TCIMValueImpl* fBody;         // owned; null: the value is NULL
    TCIMClass* fReferencedClass;  // not owned
};

/// Writes the type's name.
KYR_API std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type);

#endif
