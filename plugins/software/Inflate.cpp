#include "Inflate.h"

#include <lz4frame.h>
#include <zlib.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

namespace {

constexpr size_t kPiece = 1 << 20;
constexpr int kGzipOnly = 16 + MAX_WBITS;

}  // namespace

bool InflateGzip(std::string_view file, const TTakePiece& take) {
    if (file.size() > UINT_MAX) return false;
    z_stream stream = {};
    if (inflateInit2(&stream, kGzipOnly) != Z_OK) return false;
    const std::unique_ptr<z_stream, int (*)(z_stream*)> owner(&stream, inflateEnd);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(file.data()));
    stream.avail_in = static_cast<uInt>(file.size());
    std::vector<char> piece(kPiece);
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = kPiece;
        result = inflate(&stream, Z_NO_FLUSH);
        if (!take({piece.data(), kPiece - stream.avail_out})) return true;
    }
    return result == Z_STREAM_END;
}

bool InflateLz4(std::string_view file, const TTakePiece& take) {
    LZ4F_dctx* context = nullptr;
    if (LZ4F_isError(LZ4F_createDecompressionContext(&context, LZ4F_VERSION))) return false;
    const std::unique_ptr<LZ4F_dctx, LZ4F_errorCode_t (*)(LZ4F_dctx*)> owner(context, LZ4F_freeDecompressionContext);
    std::vector<char> piece(kPiece);
    size_t expected = 1;
    while (expected != 0) {
        size_t written = kPiece, taken = file.size();
        expected = LZ4F_decompress(context, piece.data(), &written, file.data(), &taken, nullptr);
        if (LZ4F_isError(expected) || (taken == 0 && written == 0)) return false;
        file.remove_prefix(taken);
        if (!take({piece.data(), written})) return true;
    }
    return true;
}
