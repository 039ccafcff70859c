#ifndef KYR_PLUGINS_SOFTWARE_INFLATE_H
#define KYR_PLUGINS_SOFTWARE_INFLATE_H

#include <functional>
#include <string_view>

/// Takes the content of a compressed file in pieces, until it returns false.
using TTakePiece = std::function<bool(std::string_view piece)>;

// Give what was compressed piece by piece. False if the file is damaged.

bool InflateGzip(std::string_view file, const TTakePiece& take);
bool InflateLz4(std::string_view file, const TTakePiece& take);

#endif
