#include "json/JsonWriter.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>

#include "base/Text.h"

namespace {

/// The output stream that RapidJSON's writer asks for. It writes blocks, since it is called for each character.
class TStream {
public:
    using Ch = char;

    TStream(TOutput& output, TJsonWriter::ELayout layout)
        : fOutput(output), fIsOneLine(layout == TJsonWriter::ELayout::eOneLine) {}

    // In texts a line feed is escaped, so that one that comes here only arranges them.
    void Put(char c) {
        if (fIsOneLine && c == '\n') return fBlock.back() == ',' ? Put(' ') : void();
        if (fBlock.size() == kBlockSize) WriteBlock();
        fBlock += c;
    }
    void Fill(char c, size_t count) {
        if (fBlock.size() + count > kBlockSize) WriteBlock();
        fBlock.append(count, c);
    }
    void Append(std::string_view text) {
        if (fBlock.size() + text.size() > kBlockSize) WriteBlock();
        text.size() > kBlockSize ? fOutput.Write(text) : (void)fBlock.append(text);
    }
    // RapidJSON calls it once, at the end of the document.
    void Flush() {
        Append("\n");
        WriteBlock();
    }

private:
    static constexpr size_t kBlockSize = 16384;

    void WriteBlock() {
        fOutput.Write(fBlock);
        fBlock.clear();
    }

    TOutput& fOutput;
    const bool fIsOneLine;
    std::string fBlock;
};

/// RapidJSON indents by it.
void PutN(TStream& stream, char c, size_t count) { stream.Fill(c, count); }

constexpr unsigned int kDelete = 0x7F;

/// RapidJSON's target encoding: UTF-8, except that hidden characters are escaped.
struct TCautiousEncoding : rapidjson::UTF8<> {
    template <typename TTarget>
    static void Encode(TTarget& target, unsigned int point) {
        if (point != kDelete && !IsHiddenCharacter(point)) return rapidjson::UTF8<>::Encode(target, point);
        for (const char c : EscapedCharacter(point)) target.Put(c);
    }
    template <typename TTarget>
    static void EncodeUnsafe(TTarget& target, unsigned int point) {
        Encode(target, point);
    }
};

/// Whether the text stands in JSON as it is.
bool IsPlain(std::string_view text) {
    bool isPlain = true;
    for (const char c : text) isPlain &= c >= 0x20 && c < static_cast<char>(kDelete) && c != '"' && c != '\\';
    return isPlain;
}

// Of printable ASCII, which has no other characters that JSON escapes. Paths are full of quotes.
std::string WithEscapes(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size() + text.size() / 4);
    for (const char c : text) {
        if (c == '"' || c == '\\') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// RapidJSON's writer, which goes through a text character by character, with a way round for most texts.
class TWriter : public rapidjson::PrettyWriter<TStream, rapidjson::UTF8<>, TCautiousEncoding> {
public:
    explicit TWriter(TStream& stream) : PrettyWriter(stream) {}

    void PlainString(std::string_view text) {
        PrettyPrefix(rapidjson::kStringType);
        os_->Put('"');
        os_->Append(text);
        os_->Put('"');
        EndValue(true);
    }
};

rapidjson::SizeType SizeOf(std::string_view text) { return static_cast<rapidjson::SizeType>(text.size()); }

}  // namespace

class TJsonWriter::TBody {
public:
    TBody(TOutput& output, ELayout layout) : fStream(output, layout), fWriter(fStream) {
        fWriter.SetIndent(' ', layout == ELayout::eOneLine ? 0 : 2);
        fWriter.SetFormatOptions(rapidjson::kFormatSingleLineArray);
    }

    void String(std::string_view text) {
        if (IsPlain(text)) return fWriter.PlainString(text);
        if (IsPrintableAscii(text)) return fWriter.PlainString(WithEscapes(text));
        const std::string valid = ValidText(text);
        fWriter.String(valid.data(), SizeOf(valid));
    }

    template <typename TReal>
    void Real(TReal value) {
        if (std::isnan(value)) return String("NaN");
        if (std::isinf(value)) return String(value < 0 ? "-Infinity" : "Infinity");
        char text[64];
        const char* const end = std::to_chars(text, text + sizeof text, value).ptr;
        fWriter.RawValue(text, static_cast<size_t>(end - text), rapidjson::kNumberType);
    }

    // RapidJSON's reader passes the value to the writer, so that it is indented like the rest.
    void Json(std::string_view text) {
        const std::string copy(text);
        rapidjson::StringStream stream(copy.c_str());
        if (rapidjson::Reader().Parse(stream, fWriter).IsError()) throw std::logic_error("no JSON: " + copy);
    }

    TStream fStream;
    TWriter fWriter;
};

TJsonWriter::TJsonWriter(TOutput& output, ELayout layout) : fBody(std::make_unique<TBody>(output, layout)) {}
TJsonWriter::~TJsonWriter() = default;

void TJsonWriter::StartObject() { fBody->fWriter.StartObject(); }
void TJsonWriter::EndObject() { fBody->fWriter.EndObject(); }
void TJsonWriter::StartArray() { fBody->fWriter.StartArray(); }
void TJsonWriter::EndArray() { fBody->fWriter.EndArray(); }
void TJsonWriter::Key(std::string_view name) { fBody->String(name); }

void TJsonWriter::Null() { fBody->fWriter.Null(); }
void TJsonWriter::Boolean(bool value) { fBody->fWriter.Bool(value); }
void TJsonWriter::String(std::string_view text) { fBody->String(text); }
void TJsonWriter::Integer(std::string_view digits) {
    fBody->fWriter.RawValue(digits.data(), digits.size(), rapidjson::kNumberType);
}
void TJsonWriter::Real(float value) { fBody->Real(value); }
void TJsonWriter::Real(double value) { fBody->Real(value); }
void TJsonWriter::Json(std::string_view text) { fBody->Json(text); }

void WriteIfAny(TJsonWriter& json, std::string_view key, std::string_view text) {
    if (text.empty()) return;
    json.Key(key);
    json.String(text);
}
