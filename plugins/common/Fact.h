#ifndef KYR_PLUGINS_COMMON_FACT_H
#define KYR_PLUGINS_COMMON_FACT_H

#include <optional>
#include <string>
#include <utility>

/// Why there is no value. "Not reported" is for what nobody is told on this machine, whatever rights they have.
enum class EAbsence { eNotPresent, eNoPermission, eNotSupported, eReadError, eNotReported };

/// The absence for an errno of opening or reading a file.
EAbsence AbsenceOf(int error);
const char* AbsenceText(EAbsence absence);

/// The result of reading one value: the value or why there is none, and the source, which is a path of the inventoried
/// machine (without the folder of a recorded one) or the name of a call.
template <typename T>
struct TFact {
    std::optional<T> value;
    EAbsence absence = EAbsence::eNotPresent;  ///< only meaningful without a value
    std::string source;

    static TFact Of(T value, std::string source) {
        return {std::optional<T>(std::move(value)), EAbsence::eNotPresent, std::move(source)};
    }
    static TFact Missing(EAbsence absence, std::string source) { return {std::nullopt, absence, std::move(source)}; }

    explicit operator bool() const { return value.has_value(); }
    const T& operator*() const { return *value; }
    const T* operator->() const { return &*value; }
    T ValueOr(T other) const { return value.value_or(std::move(other)); }

    /// The fact with its value converted. If the function returns an empty optional, the fact is "not supported": the
    /// source has a value, but not one that is understood.
    template <typename F>
    auto Map(F function) const {
        using TResult = typename decltype(function(*value))::value_type;
        if (!value) return TFact<TResult>::Missing(absence, source);
        auto mapped = function(*value);
        if (!mapped) return TFact<TResult>::Missing(EAbsence::eNotSupported, source);
        return TFact<TResult>::Of(std::move(*mapped), source);
    }
};

/// Whether the source of a list could be read; if not, why.
using TListing = TFact<bool>;
template <typename T>
TListing ListingOf(const TFact<T>& list) {
    return list.Map([](const T&) { return std::optional(true); });
}
template <typename T>
bool IsUnreadable(const TFact<T>& fact) {
    return !fact && (fact.absence == EAbsence::eNoPermission || fact.absence == EAbsence::eReadError);
}
/// What is known of a value of which the first source says nothing: what the second one says, unless that is nothing
/// either and the first one could not be read.
template <typename T>
TFact<T> Otherwise(const TFact<T>& first, TFact<T> second) {
    return !second && IsUnreadable(first) ? first : second;
}
/// The same for two sources of which machines have one or the other: of two absences, that of the source that is there.
template <typename T>
TFact<T> EitherOf(const TFact<T>& first, const TFact<T>& second) {
    const bool isSecond = !first && first.absence == EAbsence::eNotPresent && second.absence != EAbsence::eNotPresent;
    return isSecond || (!first && second) ? second : first;
}
/// As ListingOf, for a source that not every machine has: only one that is there and cannot be read is missing.
template <typename T>
TListing UnlessUnreadable(const TFact<T>& fact) {
    return !IsUnreadable(fact) ? TListing::Of(true, fact.source) : ListingOf(fact);
}
/// A list that is empty on no machine: its source is not what it should be, if it is.
template <typename T>
TFact<T> NeverEmpty(TFact<T> list) {
    if (list && list->empty()) list.value.reset();
    return list;
}

#endif
