#ifndef KYR_HOST_CHECK_MARKUP_H
#define KYR_HOST_CHECK_MARKUP_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "check/Findings.h"

struct TAttribute {
    std::string_view name;
    std::string_view value;
};

/// An element as it is written.
struct TElement {
    std::string_view name;
    size_t line = 0;
    size_t endLine = 0;
    std::vector<TAttribute> attributes = {};
    std::string text = {};  ///< of elements without children, references decoded
    TElement* parent = nullptr;
    std::vector<TElement*> children = {};

    /// Names of elements and attributes are the same in any case. Here they are given in upper case.
    bool Is(std::string_view upperName) const;
    /// The attribute's value; empty if there is none.
    std::string Get(std::string_view upperName) const;
    bool Has(std::string_view upperName) const;
};

bool IsProperty(const TElement& element);

/// A comment that allows what the element behind it violates.
struct TAllowingComment {
    size_t line;
    std::string text;         ///< all of it
    const TElement* element;  ///< null: none follows
};

/// The elements of a document with their lines. The text must live as long.
struct TMarkup {
    std::string file;
    std::deque<TElement> elements = {};  ///< in the order of their start tags
    std::vector<TAllowingComment> comments = {};
    bool isCut = false;  ///< the rest was not read: there is too much of it, or too many mistakes

    static constexpr size_t kMostParts = 1'000'000;

    /// Null if there is none.
    const TElement* Root() const { return elements.empty() ? nullptr : &elements.front(); }
    /// Where the element is: its line, and the class and property that it belongs to.
    TPlace PlaceOf(const TElement& element) const;
};

/// Reads a document and adds what violates the rules of writing it. Unlike the core's reader, it goes on behind a
/// mistake, so that one run tells all mistakes of a document, and it ends, whatever the text.
TMarkup ReadMarkup(const std::string& file, std::string_view text, TFindings& findings);

#endif
