#ifndef KYR_HOST_JSON_JSONWRITER_H
#define KYR_HOST_JSON_JSONWRITER_H

#include <memory>
#include <string_view>

#include "base/Output.h"

/// Writes one JSON document to the output as it is made, without a copy in memory. Texts may hold any bytes. Bytes that
/// are not UTF-8 are written as visible text such as "\xFF". Characters that a terminal would hide or act on become
/// JSON escapes, which a reader of the JSON turns back into the characters.
class TJsonWriter {
public:
    enum class ELayout { eIndented, eOneLine };

    explicit TJsonWriter(TOutput& output, ELayout layout = ELayout::eIndented);
    ~TJsonWriter();
    TJsonWriter(const TJsonWriter&) = delete;
    TJsonWriter& operator=(const TJsonWriter&) = delete;

    void StartObject();
    /// Closing the outermost object ends the document.
    void EndObject();
    void StartArray();
    void EndArray();
    void Key(std::string_view name);

    void Null();
    void Boolean(bool value);
    void String(std::string_view text);
    /// An integer of any size, as digits.
    void Integer(std::string_view digits);
    /// A number with as few digits as read back to the same one. JSON has no NaN and infinity: they are written as the
    /// strings "NaN", "Infinity" and "-Infinity".
    void Real(float value);
    void Real(double value);
    /// A value that is given as JSON.
    void Json(std::string_view text);

private:
    class TBody;
    std::unique_ptr<TBody> fBody;
};

/// Writes the member of an object, if the text is not empty.
void WriteIfAny(TJsonWriter& json, std::string_view key, std::string_view text);

#endif
