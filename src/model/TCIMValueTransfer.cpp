#include "model/TCIMValueTransfer.h"

#include <utility>

#include "model/TCIMArrayValueImpl.h"

namespace {
using TType = TCIMValue::TCIMType;

bool CanBeCopied(const TCIMValue& value);

bool CanAllBeCopied(const std::vector<TCIMValue>& values) {
    for (const TCIMValue& value : values)
        if (value.GetType() != TType::eCIMNone && !CanBeCopied(value)) return false;
    return true;
}

bool CanBeCopied(const TCIMValue& value) {
    if (value.IsArray()) return value.IsNull() || CanAllBeCopied(TCIMArrayValueImpl::ElementsOf(value));
    return value.GetType() != TType::eCIMNone && value.GetType() != TType::eCIMChar;
}
}  // namespace

void* TCIMValueTransfer::fgVoidClass = nullptr;

void TCIMValueTransfer::TakeOver(TCIMValue& target, TCIMValue& source) {
    target.fType = std::exchange(source.fType, TType::eCIMNone);
    target.fMaxArraySize = std::exchange(source.fMaxArraySize, 0);
    target.fBody = std::exchange(source.fBody, nullptr);
    target.fReferencedClass = std::exchange(source.fReferencedClass, nullptr);
}

void TCIMValueTransfer::Replace(TCIMValue& target, TCIMValue& source) {
    delete target.fBody;
    TakeOver(target, source);
}

void TCIMValueTransfer::Assign(TCIMValue& target, TCIMValue& source) {
    if (!CanBeCopied(source)) return target.Set(source);
    if (target == source) return;
    if (source.IsArray()) target.fMaxArraySize = source.fMaxArraySize;
    if (source.IsReference()) target.fReferencedClass = source.fReferencedClass;
    Install(target, source.fType, std::exchange(source.fBody, nullptr));
}

void TCIMValueTransfer::SetArray(TCIMValue& target, TCIMValue::TCIMType type, unsigned int maxArraySize,
                                 std::vector<TCIMValue>& elements) {
    if (!CanAllBeCopied(elements)) return target.Set(type, maxArraySize, elements);
    auto* const body = new TCIMArrayValueImpl(std::move(elements));
    Install(target, static_cast<TType::ECIMType>(type | TType::eCIMArrayFlag), body);
    target.fMaxArraySize = maxArraySize;
    body->RequireElementType(static_cast<TType::ECIMType>(type & ~TType::eCIMArrayFlag));
}

void TCIMValueTransfer::Install(TCIMValue& target, TCIMValue::TCIMType type, TCIMValueImpl* body) {
    target.fType = type;
    delete std::exchange(target.fBody, body);
}
