// A picture file on its way into an icon. A drawing is made anew for every size, which shows more at 16 pixels than one
// that was scaled down.
#pragma once

#include "base/files.h"
#include "icon/from_image.h"

#include <functional>

namespace pelorin {

class SourceFile {
public:
    /// Throws `FileException` when the file cannot be opened.
    explicit SourceFile(std::string_view path);

    [[nodiscard]] ByteSpan Data() const { return m_file.Data(); }
    /// True for a drawing. False for pixels, of which there is one source whatever the size.
    [[nodiscard]] bool Scalable() const { return m_scalable; }
    /// The picture; one that is scalable as large as fits into `size`, or as the file says when that is 0 x 0. Empty
    /// when it cannot be read.
    [[nodiscard]] DibBlock Read(Size size = {}) const;

private:
    FileView m_file;
    int m_kind = 0;
    bool m_scalable = false;
};

/// Gives the picture for formats of a size, made ready by `PrepareIconSource`.
using SourceForSize = std::function<DibBlock(Size)>;

/// The formats of a picture file: those of a size that `art` has from there, the others from `make`, which is asked
/// once for every size when the file is scalable and once in all when it is not.
[[nodiscard]] IconObjects CreateFormats(const SourceFile& file, const SourceForSize& make, std::span<const SizeArt> art,
                                        const FromImageOptions& options);

} // namespace pelorin
