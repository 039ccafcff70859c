#include "saved/CimXmlWriter.h"

#include <utf8proc.h>
#include <zlib.h>

#include <charconv>
#include <cmath>

#include "base/OutputFile.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/Qualifiers.h"
#include "model/ValueVisitor.h"
#include "saved/EndMark.h"

namespace {

using TType = TCIMValue::TCIMType;

constexpr size_t kBufferSize = 1 << 16;
constexpr int kDeepestReference = 100;
constexpr size_t kDateTimeLength = 25;
constexpr unsigned int kMostDays = 65535;  // the reader cuts the days of an interval to 16 bits

std::string DateTimeText(const TCIMDateTime& dateTime) {
    if (dateTime.IsNull()) throw TUnsavable("it holds a date-time that was never set");
    std::string text = dateTime.ToString();
    if (text.size() == kDateTimeLength && (!dateTime.IsInterval() || dateTime.GetDay() <= kMostDays)) return text;
    throw TUnsavable("the date-time " + text + " is out of the range that can be read back");
}

bool CanBeKeyOf(const TCIMClass& cls, const std::string& name, const TCIMValue& value) {
    const TCIMPropertyDecl* const declaration = cls.FindPropertyDecl(name);
    return declaration != nullptr && IsKey(*declaration) && declaration->GetType() == value.GetType() &&
           !value.IsNull() && !value.IsArray();
}

bool NeedsNoEscape(unsigned char c) {
    return (c >= ' ' && c != '<' && c != '&' && c != '>' && c != 0x7f) || c == '\t' || c == '\n';
}

// How many bytes at the start of the text can be copied as they are: those of its first character, or 0.
size_t PlainLength(std::string_view text) {
    if (static_cast<unsigned char>(text[0]) < 0x80) return NeedsNoEscape(static_cast<unsigned char>(text[0])) ? 1 : 0;
    utf8proc_int32_t character = 0;
    const auto bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const utf8proc_ssize_t length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &character);
    const bool isInXml = character != 0xfffe && character != 0xffff;
    return length > 0 && isInXml ? static_cast<size_t>(length) : 0;
}

// The core's reader makes a byte of a numeric reference: its number modulo 256. Other readers make the character of
// that number, and refuse control characters. So a byte that is no UTF-8 is written as the character of its number,
// and a control character as its picture (U+2400 and following), which has the same number modulo 256.
std::string EscapeXml(unsigned char c) {
    constexpr unsigned int kControlPictures = 0x2400;
    if (c == '<') return "&lt;";
    if (c == '&') return "&amp;";
    if (c == '>') return "&gt;";
    return "&#" + std::to_string(c < ' ' && c != '\r' ? kControlPictures + c : c) + ";";
}

// NUL cannot be written at all; Text() refuses it before.
void AppendXmlText(std::string& target, std::string_view text) {
    size_t done = 0;
    for (size_t i = 0; i < text.size();) {
        if (const size_t length = PlainLength(text.substr(i)); length != 0) {
            i += length;
            continue;
        }
        target.append(text, done, i - done).append(EscapeXml(static_cast<unsigned char>(text[i])));
        done = ++i;
    }
    target.append(text, done);
}

}  // namespace

std::string TypeAttribute(TCIMValue::TCIMType type) {
    const auto element = static_cast<TType::ECIMType>(type & ~TType::eCIMArrayFlag);
    if (element == TType::eCIMNone) return "";
    if (element == TType::eCIMChar || element == TType::eCIMReference)
        throw TUnsavable("documents have no values of its type");
    return " TYPE=\"" + TCIMValue::TCIMType(element).ToString() + "\"";
}

const char* PropertyElement(const TCIMPropertyDecl& declaration) {
    if (declaration.GetValue().IsReference()) return "PROPERTY.REFERENCE";
    return declaration.IsArray() ? "PROPERTY.ARRAY" : "PROPERTY";
}

std::string PropertyStart(const TCIMPropertyDecl& declaration) {
    const std::string start =
        std::string("<") + PropertyElement(declaration) + " NAME=\"" + declaration.GetName() + "\"";
    return declaration.GetValue().IsReference() ? start : start + TypeAttribute(declaration.GetType());
}

void TCimXmlWriter::Raw(std::string_view markup) {
    fBuffer.append(markup);
    if (fBuffer.size() >= kBufferSize) WriteBuffer();
}

void TCimXmlWriter::Attribute(const char* name, std::string_view value) {
    fBuffer.append(" ").append(name).append("=\"").append(value).append("\"");
}

void TCimXmlWriter::ShapeAttributes(const TCIMValue& value) {
    if (value.IsArray() && value.GetMaxArraySize() != 0)
        Attribute("ARRAYSIZE", std::to_string(value.GetMaxArraySize()));
    if (!value.IsReference() || !value.IsNull()) return;
    if (value.GetReferencedClass() == nullptr) throw TUnsavable("it is a reference to no class");
    Attribute("REFERENCECLASS", NameOf(*value.GetReferencedClass()));
}

void TCimXmlWriter::Value(const TCIMValue& value) {
    if (value.IsNull()) return;
    if (value.IsReference()) return Reference(value, 1);
    if (value.IsArray()) return Elements(value);
    Raw("<VALUE>");
    Scalar(value);
    Raw("</VALUE>");
}

std::string TCimXmlWriter::NameOf(const TCIMClass& cls) const {
    if (&cls == fContainer.GetRootClass()) return "";
    if (fContainer.FindClass(cls.GetName()) == &cls) return cls.GetName();
    throw TUnsavable("the class '" + cls.GetName() + "' is not in the collection under its name");
}

size_t TCimXmlWriter::Finish(const TContents& contents) {
    Raw(EndMarkStart(contents));
    WriteBuffer();
    Raw(EndMarkEnd(fChecksum));
    WriteBuffer();
    return fSize;
}

void TCimXmlWriter::Text(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) throw TUnsavable("its text holds a NUL byte");
    AppendXmlText(fBuffer, text);
}

void TCimXmlWriter::Scalar(const TCIMValue& value) {
    VisitType(value.GetType(), TOverloads{[&](TContentType<std::string>) { Text(value.operator std::string()); },
                                          [&](TContentType<float>) { Real(value.operator float()); },
                                          [&](TContentType<double>) { Real(value.operator double()); },
                                          [&](TContentType<TCIMDateTime>) { Raw(DateTimeText(value)); },
                                          [&](auto) { Raw(value.ToString(10)); }});
}

// The shortest text that reads back as the same number.
template <typename T>
void TCimXmlWriter::Real(T number) {
    char text[32];
    char* const end = std::to_chars(text, text + sizeof text, number).ptr;
    if (!std::isfinite(number)) throw TUnsavable("the number " + std::string(text, end) + " cannot be read back");
    fBuffer.append(text, end);
}

void TCimXmlWriter::Elements(const TCIMValue& array) {
    Raw("<VALUE.ARRAY>");
    for (const TCIMValue& element : array.operator std::vector<TCIMValue>&()) {
        if ((element.GetType() | TType::eCIMArrayFlag) != array.GetType() || element.IsArray())
            throw TUnsavable("it is an array with an element of another type");
        const bool isTyped = element.GetType() != TType::eCIMNone;
        if (element.IsNull() && isTyped) throw TUnsavable("it is an array with a NULL among its elements");
        Raw("<VALUE>");
        if (isTyped) Scalar(element);
        Raw("</VALUE>");
    }
    Raw("</VALUE.ARRAY>");
}

void TCimXmlWriter::Reference(const TCIMReference& reference, int depth) {
    if (depth > kDeepestReference) throw TUnsavable("its keys are references nested too deeply");
    const TCIMClass& cls = *reference.GetClass();
    const TKeyBindings bindings = reference.EnumerateKeyBindings();
    Raw(bindings.empty() ? "<VALUE.REFERENCE><CLASSNAME" : "<VALUE.REFERENCE><INSTANCENAME");
    Attribute(bindings.empty() ? "NAME" : "CLASSNAME", NameOf(cls));
    Raw(bindings.empty() ? "/" : ">");
    for (const auto& [name, value] : bindings) KeyBinding(cls, name, value, depth);
    Raw(bindings.empty() ? "></VALUE.REFERENCE>" : "</INSTANCENAME></VALUE.REFERENCE>");
}

void TCimXmlWriter::KeyBinding(const TCIMClass& cls, const std::string& name, const TCIMValue& value, int depth) {
    if (!CanBeKeyOf(cls, name, value))
        throw TUnsavable("it is a reference with '" + name + "', which cannot be read back as a key of " +
                         cls.GetName());
    Raw("<KEYBINDING");
    Attribute("NAME", name);
    Raw(value.IsReference() ? ">" : "><KEYVALUE>");
    if (value.IsReference())
        Reference(value, depth + 1);
    else
        Scalar(value);
    Raw(value.IsReference() ? "</KEYBINDING>" : "</KEYVALUE></KEYBINDING>");
}

void TCimXmlWriter::WriteBuffer() {
    fSize += fBuffer.size();
    fChecksum = crc32_z(fChecksum, reinterpret_cast<const Bytef*>(fBuffer.data()), fBuffer.size());
    if (fSize <= kLargestDocument) fFile.Write(fBuffer);
    fBuffer.clear();
}
