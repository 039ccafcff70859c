#ifndef KYR_BENCH_TOKENISER_H
#define KYR_BENCH_TOKENISER_H

/// Runs TXmlParser over a text with empty callbacks.
void Tokenise(char* text);

#endif
