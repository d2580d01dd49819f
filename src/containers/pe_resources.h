// A program image with other resources, everything else byte for byte as it was.
//
// The new tree goes where the old one stood when it fits there, or when nothing follows the section in memory.
// Otherwise it gets a section of its own at the end, and an old section that held nothing but resources keeps its
// addresses and gives up its bytes, so that no other section has to move in memory: base relocations, exports and code
// stay right. In the file, what stands behind the change moves, and with it the places that headers keep of it:
// sections, symbol table, debug data, certificate table. Data behind the image stays behind the image.
#pragma once

#include "containers/file_splice.h"
#include "containers/resource_tree.h"

namespace pelorin {

enum class ResourceChange {
    Done,
    Signed,     ///< the file carries a signature, which would not hold any longer
    NotAnImage, ///< not a program image, or its headers contradict each other
    Damaged,    ///< sections overlap or lie outside the file, or the resource tree is not whole
    NoRoom,     ///< a new section is needed and the headers have no room for it
    TooLarge,   ///< more resources than the format's numbers can name, or an image beyond 2 GiB
};

/// One line for a person.
[[nodiscard]] const char* DescribeResourceChange(ResourceChange change);

/// True when the image has a certificate table.
[[nodiscard]] bool IsSigned(const PeImage& image);

/// Plans the change into `out`, which was made over the image's file and is of no use unless the answer is `Done`. The
/// tree must be sorted. `dropSignature` removes a certificate table and its entry.
[[nodiscard]] ResourceChange ReplaceResources(const PeImage& image, const ResourceTree& tree, bool dropSignature,
                                              FileSplice& out);

} // namespace pelorin
