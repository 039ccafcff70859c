#ifndef KYR_HOST_BASE_GZIP_H
#define KYR_HOST_BASE_GZIP_H

#include <string_view>

/// Whether the bytes begin as a compressed file does.
inline bool IsGzip(std::string_view bytes) { return bytes.substr(0, 2) == "\x1F\x8B"; }

#endif
