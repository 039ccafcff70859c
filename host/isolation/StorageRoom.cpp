#include "isolation/StorageRoom.h"

#include <algorithm>

#include "base/Memory.h"
#include "saved/CimXmlWriter.h"

namespace {

constexpr size_t kMost = TCimXmlWriter::kLargestDocument / 8 * 7;  // the rest is for the states
constexpr size_t kLeast = TCimXmlWriter::kLargestDocument / 8;

// An instance takes several times the memory that it takes in a file, in this process and in the plugin's.
constexpr size_t kAddressSpaceForEachByte = 16;

}  // namespace

TStorageRoom::TStorageRoom(size_t schemaBytes)
    : fBytes(std::min(schemaBytes < kMost - kLeast ? kMost - schemaBytes : kLeast,
                      AddressSpaceLimit() / kAddressSpaceForEachByte)),
      fForAssociations(fBytes / 8) {}

size_t TStorageRoom::BytesFor(EPass pass) const {
    switch (pass) {
        case EPass::eSmallParts:
            return fBytes / 8;
        case EPass::eRest:
            return (fBytes - std::min(fBytes, fForAssociations)) / 8 * 7;
        default:
            return fBytes / 2;
    }
}
