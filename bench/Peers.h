#ifndef KYR_BENCH_PEERS_H
#define KYR_BENCH_PEERS_H

#include <cstddef>
#include <memory>
#include <string>

// The XML readers that ours is measured against. A document that one of them refuses ends the program.

void ParseWithPugixml(char* text, std::size_t size);
/// With handlers that do nothing, as are those of the next one.
void ParseWithExpat(const std::string& document);
void ParseWithLibxml2Sax(const std::string& document);
std::shared_ptr<void> BuildLibxml2Tree(const std::string& document);

#endif
