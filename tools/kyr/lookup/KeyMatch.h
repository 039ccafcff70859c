#ifndef KEYMATCH_H
#define KEYMATCH_H

#include <string>

class TCIMInstance;

/// How far the keys of an object path name an instance.
enum EKeyMatch { eNoMatch, eSomeKeys, eAllKeys };

/// Compares the instance with the text behind the dot of an object path. Nothing is escaped in object paths, so that
/// one cannot tell where a value ends; but whether a text can be read as the keys of a given instance is decidable.
EKeyMatch MatchKeys(const std::string& text, const TCIMInstance& instance);

#endif
