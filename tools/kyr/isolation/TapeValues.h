#ifndef TAPEVALUES_H
#define TAPEVALUES_H

#include "isolation/Tape.h"
#include "kyr/TCIMValue.h"

class TContainer;

/// Puts a value on the tape exactly as it is: type, NULL, array size, references with their keys.
void PutValue(TTape& tape, const TCIMValue& value);

/// Takes it off again; references are to classes of the container. Raises TTapeError, or a status of the core.
TCIMValue TakeValue(TTapeReader& reader, TContainer& container);

#endif
