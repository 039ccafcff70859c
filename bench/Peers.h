#ifndef KYR_BENCH_PEERS_H
#define KYR_BENCH_PEERS_H

#include <cstddef>
#include <memory>
#include <string>

// The XML parsers that TXmlParser is compared with. The program ends if one of them refuses the document.

void ParseWithPugixml(char* text, std::size_t size);
/// With empty handlers, like the next one.
void ParseWithExpat(const std::string& document);
void ParseWithLibxml2Sax(const std::string& document);
std::shared_ptr<void> BuildLibxml2Tree(const std::string& document);

#endif
