#include "model/TCIMPropertyDeclImpl.h"

#include <utility>

#include "kyr/TCIMClass.h"
#include "model/TNormalizedName.h"
#include "model/TReferenceIndex.h"

namespace {

constexpr unsigned long kOutdated = ~0ul;  // words by names that the usual locale does not give

}  // namespace

std::atomic<unsigned long> TCIMPropertyDeclImpl::fgRenameCount = 0;
std::atomic<unsigned long> TCIMPropertyDeclImpl::fgKeyChangeCount = 0;

/// Counts a change of the qualifier KEY when it ends, also by an exception.
class TCIMPropertyDeclImpl::TKeyWatch {
public:
    explicit TKeyWatch(const TQualifierMap& qualifiers) : fQualifiers(qualifiers), fBefore(qualifiers.GetKey()) {}
    ~TKeyWatch() {
        if (fQualifiers.GetKey() != fBefore) ++fgKeyChangeCount;
    }
    TKeyWatch(const TKeyWatch&) = delete;
    TKeyWatch& operator=(const TKeyWatch&) = delete;

private:
    const TQualifierMap& fQualifiers;
    const TCIMQualifier* fBefore;
};

void TCIMPropertyDeclImpl::AddToContainer() const {
    fHandle->Validate();
    fClass->AddPropertyDecl(*fHandle);
}

void TCIMPropertyDeclImpl::SetName(const std::string& name) {
    fName = name;
    ++fgRenameCount;
}

void TCIMPropertyDeclImpl::SetValue(const TCIMValue& value) {
    if (value.IsReference() || fValue.IsReference()) TReferenceIndex::NoteChange();
    fValue = value;
}

void TCIMPropertyDeclImpl::AddQualifier(TCIMQualifier& qualifier) {
    const TKeyWatch watch(fQualifiers);
    fWords.reset();
    fQualifiers.Add(qualifier);
}

void TCIMPropertyDeclImpl::RemoveQualifier(TCIMQualifier& qualifier) {
    const TKeyWatch watch(fQualifiers);
    fWords.reset();
    fQualifiers.Remove(qualifier);
}

const TValueWords* TCIMPropertyDeclImpl::FindWords() const {
    const bool isPresent = fWordsChangeCount == TCIMQualifierImpl::GetChangeCount();
    return isPresent && TNormalizedName::IsUsualLocale() ? fWords.get() : nullptr;
}

const TValueWords& TCIMPropertyDeclImpl::KeepWords(std::unique_ptr<const TValueWords> words) const {
    fWords = std::move(words);
    fWordsChangeCount = TNormalizedName::IsUsualLocale() ? TCIMQualifierImpl::GetChangeCount() : kOutdated;
    return *fWords;
}
