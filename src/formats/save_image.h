// The one road from a picture to a file: a table of writers, one row a format, and the step that puts bytes on disk.
#pragma once

#include "formats/picture_writer.h"

#include <span>
#include <string_view>

namespace pelorin {

class UserPrompt;

struct PictureSaver {
    /// File kind of the format's names.
    int kind;
    /// For lists and option values: "PNG", and the extension of a name that has none: "png".
    std::string_view name, extension;
    PictureWriter write;
    /// Depths that the writer takes, as bits of a mask: bit n stands for n bits a pixel.
    std::uint64_t depths;
    /// The file's own depth for a block of `bits`.
    int (*writtenBits)(int bits, const PictureSaveOptions& options);
    /// What a save returns when the file cannot be made or written.
    int cannotWrite;
    /// The person is asked before a save gives up for that reason: Retry tries again, Ignore makes it return 1.
    bool asks = false;
};

/// What a save returns when no writer takes the kind.
inline constexpr int kNoSuchWriter = -1;

[[nodiscard]] std::span<const PictureSaver> PictureSavers();
/// Null when pictures of that kind are not written.
[[nodiscard]] const PictureSaver* PictureSaverOfKind(int kind);

/// The whole file of the kind in `out`; the writer's code, 0 when done.
[[nodiscard]] int EncodePicture(const DibBlock& block, int kind, const PictureSaveOptions& options, Bytes& out);
/// Writes the file; an older one of that name is replaced once the new one is whole. 0 when done; `kNoSuchWriter`, the
/// writer's code, or its row's `cannotWrite`. Without a `prompt` nobody is asked.
[[nodiscard]] int SavePicture(const DibBlock& block, int kind, std::string_view path, PictureSaveOptions options = {},
                              UserPrompt* prompt = nullptr);

/// File kind of the filter at `index`, from 1, of a file dialog's list ("Name|*.ext;*.ext|Name|*.ext||"); 0 when the
/// list has no such filter.
[[nodiscard]] int KindOfFilter(std::string_view filters, int index);

} // namespace pelorin
