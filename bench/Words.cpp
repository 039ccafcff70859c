#include "Words.h"

#include <string>
#include <vector>

#include "Schema.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"

namespace {

using TType = TCIMValue::TCIMType;

constexpr unsigned kWords = 20;

void AddWords(TContainer& container, TCIMPropertyDecl& declaration, const std::string& qualifier,
              const std::string& prefix) {
    using TDecl = TCIMQualifierDecl;
    std::vector<TCIMValue> texts;
    for (unsigned i = 0; i < kWords; ++i) texts.emplace_back(prefix + std::to_string(i));
    const TCIMValue value(TType::eCIMString, 0, texts);
    container.AllocateQualifierDecl(qualifier, value, TDecl::EScope(), TDecl::EFlavor())->AddToContainer();
    declaration.AddQualifier(*new TCIMQualifier(*container.GetQualifierDecl(qualifier), value));
}

}  // namespace

TWords::TWords(unsigned count) {
    TCIMClass& cls = DeclareClass(fContainer, "Bench_Device",
                                  {{"Id", NullOf(TType::eCIMUint32)}, {"State", NullOf(TType::eCIMUint16)}}, 1);
    AddWords(fContainer, *cls.GetPropertyDecl("State"), "ValueMap", "");
    AddWords(fContainer, *cls.GetPropertyDecl("State"), "Values", "in some state number ");
    for (unsigned i = 0; i < count; ++i) {
        TCIMInstance* const instance = fContainer.AllocateInstance(&cls);
        instance->SetPropertyValue("Id", TCIMValue(i));
        instance->SetPropertyValue("State", TCIMValue(static_cast<unsigned short>(i % kWords)));
        instance->AddToContainer();
        fStates.push_back(instance->GetProperty("State"));
    }
}

std::size_t TWords::DisplayAll() const {
    std::size_t length = 0;
    for (const TCIMProperty* state : fStates) length += state->ToString().size();
    return length;
}
