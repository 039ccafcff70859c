#ifndef KYR_MODEL_TCIMARRAYVALUEIMPL_H
#define KYR_MODEL_TCIMARRAYVALUEIMPL_H

#include <string>
#include <utility>
#include <vector>

#include "model/TCIMValueImpl.h"

class TCIMArrayValueImpl final : public TCIMValueImpl {
public:
    explicit TCIMArrayValueImpl(std::vector<TCIMValue> elements) : fElements(std::move(elements)) {}

    static std::vector<TCIMValue>& ElementsOf(const TCIMValue& value);

    /// Logs and raises kyrStatusInvalidProperty if an element has another type.
    void RequireElementType(TCIMValue::TCIMType type) const;

    operator std::vector<TCIMValue>&() const override { return fElements; }
    std::string ToString(unsigned char base) const override;
    bool operator==(const TCIMValue& other) const override { return fElements == ElementsOf(other); }
    bool operator<(const TCIMValue& other) const override;

private:
    mutable std::vector<TCIMValue>
        fElements;  // mutable: hosts change the elements of a constant value through its conversion
};

#endif
