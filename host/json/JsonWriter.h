#ifndef KYR_HOST_JSON_JSONWRITER_H
#define KYR_HOST_JSON_JSONWRITER_H

#include <memory>
#include <string_view>

#include "base/Output.h"

/// Writes one JSON document as it goes: nothing is kept but the way down to where it stands. Texts may hold any bytes.
/// Those that are no UTF-8 come out as "\xFF", which a reader of the JSON sees; what a terminal would hide or act on
/// becomes an escape of JSON, which it does not.
class TJsonWriter {
public:
    explicit TJsonWriter(TOutput& output);
    ~TJsonWriter();
    TJsonWriter(const TJsonWriter&) = delete;
    TJsonWriter& operator=(const TJsonWriter&) = delete;

    void StartObject();
    /// The outermost one ends the document.
    void EndObject();
    void StartArray();
    void EndArray();
    void Key(std::string_view name);

    void Null();
    void Boolean(bool value);
    void String(std::string_view text);
    /// With as few digits as read back to the same number; "NaN", "Infinity" and "-Infinity" are strings.
    void Real(float value);
    void Real(double value);
    /// A value that is JSON already.
    void Json(std::string_view text);

private:
    class TBody;
    std::unique_ptr<TBody> fBody;
};

#endif
