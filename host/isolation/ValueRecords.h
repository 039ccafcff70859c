#ifndef KYR_HOST_ISOLATION_VALUERECORDS_H
#define KYR_HOST_ISOLATION_VALUERECORDS_H

#include "isolation/RecordStream.h"
#include "kyr/TCIMValue.h"

class TContainer;

/// Puts a value on the stream exactly as it is: type, NULL, array size, references with their keys.
void PutValue(TRecordStream& stream, const TCIMValue& value);

/// Takes it off again; references are to classes of the container. Raises TRecordError, or a status of the core.
TCIMValue TakeValue(TRecordReader& reader, TContainer& container);

#endif
