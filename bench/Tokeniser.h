#ifndef KYR_BENCH_TOKENISER_H
#define KYR_BENCH_TOKENISER_H

/// Runs our tokeniser over a text with callbacks that do nothing.
void Tokenise(char* text);

#endif
