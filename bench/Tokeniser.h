#ifndef TOKENISER_H
#define TOKENISER_H

/// Runs our tokeniser over a text with callbacks that do nothing.
void Tokenise(char* text);

#endif
