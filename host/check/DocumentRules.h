#ifndef KYR_HOST_CHECK_DOCUMENTRULES_H
#define KYR_HOST_CHECK_DOCUMENTRULES_H

#include "check/Findings.h"
#include "check/Markup.h"
#include "check/Schema.h"

// The rules for documents, in groups. Each adds what violates its rules.

/// Which elements stand where (D). What the text itself violates, ReadMarkup has told.
void CheckStructure(const TMarkup& markup, TFindings& findings);

/// Classes, properties and qualifiers (S), in the order of the document. The known schema is that of the documents that
/// are read before; afterwards it has this document's declarations too.
void CheckSchema(const TMarkup& markup, const TDocumentSchema& document, TKnownSchema& known, TFindings& findings);

/// Units and words of values (V).
void CheckValues(const TMarkup& markup, const TDocumentSchema& document, const TKnownSchema& known,
                 TFindings& findings);

/// Whether a text is a value of the type; empty if it is, and otherwise what is wrong with it, such as "is above 255".
std::string FaultOfValue(const std::string& type, const std::string& text);

/// The nearest of the words as a remedy, such as "did you mean 'uint32'?", or else the other text.
std::string NearestOr(const std::string& word, const std::vector<std::string>& words, const std::string& otherwise);

#endif
