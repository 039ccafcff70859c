#ifndef KYR_PLUGINS_COMMON_FACT_H
#define KYR_PLUGINS_COMMON_FACT_H

#include <optional>
#include <string>
#include <utility>

/// Why a value could not be had.
enum class EAbsence { eNotPresent, eNoPermission, eNotSupported, eReadError };

/// The absence that an errno of opening or reading a file stands for.
EAbsence AbsenceOf(int error);
const char* AbsenceText(EAbsence absence);

/// What a reader looked for: the value, or why there is none; and where it looked, as a path of the machine that is
/// described, not of the folder that it is read from.
template <typename T>
struct TFact {
    std::optional<T> value;
    EAbsence absence = EAbsence::eNotPresent;  ///< counts without a value
    std::string source;

    static TFact Of(T value, std::string source) {
        return {std::optional<T>(std::move(value)), EAbsence::eNotPresent, std::move(source)};
    }
    static TFact Missing(EAbsence absence, std::string source) { return {std::nullopt, absence, std::move(source)}; }

    explicit operator bool() const { return value.has_value(); }
    const T& operator*() const { return *value; }
    const T* operator->() const { return &*value; }
    T ValueOr(T other) const { return value.value_or(std::move(other)); }

    /// The same fact with its value made into another. A function that gives an empty optional makes it "not
    /// supported": there is something, but nothing that we understand.
    template <typename F>
    auto Map(F function) const {
        using TResult = typename decltype(function(*value))::value_type;
        if (!value) return TFact<TResult>::Missing(absence, source);
        auto mapped = function(*value);
        if (!mapped) return TFact<TResult>::Missing(EAbsence::eNotSupported, source);
        return TFact<TResult>::Of(std::move(*mapped), source);
    }
};

/// Whether there is what a list of things is made of; if not, why.
using TListing = TFact<bool>;
template <typename T>
TListing ListingOf(const TFact<T>& list) {
    return list.Map([](const T&) { return std::optional(true); });
}

#endif
