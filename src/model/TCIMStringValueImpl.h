#ifndef KYR_MODEL_TCIMSTRINGVALUEIMPL_H
#define KYR_MODEL_TCIMSTRINGVALUEIMPL_H

#include <string>
#include <utility>

#include "model/TCIMValueImpl.h"

class TCIMStringValueImpl final : public TCIMValueImpl {
public:
    explicit TCIMStringValueImpl(std::string text) : fText(std::move(text)) {}

    /// The text itself, without a copy. The value must be a string and not NULL.
    static const std::string& TextOf(const TCIMValue& value);

    operator std::string() const override { return fText; }
    std::string ToString(unsigned char) const override { return fText; }
    bool operator==(const TCIMValue& other) const override { return fText == TextOf(other); }
    bool operator<(const TCIMValue& other) const override { return fText < TextOf(other); }

private:
    std::string fText;
};

#endif
