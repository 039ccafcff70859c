// What kyr check reads of a document and finds in it. The input is a document. Whatever it is, checking it ends,
// findings lie in the document, and what the core's reader takes has none of the mistakes that the reader would refuse.
#include <algorithm>
#include <cstdint>
#include <string>

#include "check/Allowances.h"
#include "check/DocumentRules.h"
#include "kyr/TContainer.h"
#include "support/Documents.h"
#include "support/FuzzSupport.h"
#include "xml/TCIMXMLParser.h"

namespace {

TFindings Check(std::string_view document) {
    TFindings findings;
    const TMarkup markup = ReadMarkup("document", document, findings);
    AddAllowances(markup, findings);
    CheckStructure(markup, findings);
    const TDocumentSchema schema(markup);
    TKnownSchema known;
    CheckSchema(markup, schema, known, findings);
    CheckValues(markup, schema, known, findings);
    ApplyAllowances({}, findings);
    findings.Sort();
    return findings;
}

bool Has(const TFindings& findings, std::initializer_list<std::string_view> rules) {
    const std::vector<TFinding>& all = findings.All();
    return std::any_of(all.begin(), all.end(), [&rules](const TFinding& finding) {
        return std::find(rules.begin(), rules.end(), finding.rule->id) != rules.end();
    });
}

bool IsTaken(std::string_view document) {
    const TRunLog log;
    TContainer container;
    TDocumentText text(document);
    TCIMXMLParser parser(&container);
    return StatusOf([&] { parser.Parse(text.Begin()); }) == kyrStatusOK;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    const TFindings findings = Check(document);
    const auto lines = static_cast<std::size_t>(std::count(document.begin(), document.end(), '\n')) + 1;
    for (const TFinding& finding : findings.All())
        Require(finding.place.line <= lines, "a finding lies in the document");
    const bool isLeftEarly = Has(findings, {"D01", "D09", "D17"});
    if (!isLeftEarly && IsReadable(document) && IsTaken(document))
        Require(!Has(findings, {"D02", "D03", "D04", "D07"}), "what is told as refused is refused");
    return 0;
}
