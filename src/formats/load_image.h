// The one road from a file's bytes to a picture: which reader gets them.
//
// Every reader is a row of one table. A format is told by the file's content where that is possible and by the file
// kind of its name else. Rows for kinds whose decoders live above this folder (icons, cursors) are added at start-up.
#pragma once

#include "formats/picture_reader.h"

#include <span>

namespace pelorin {

struct PictureFormat {
    /// File kind of the format's names; 0 for a format that is told by its content alone.
    int kind;
    /// For lists: "PNG".
    std::string_view name;
    /// True when the bytes are a file of the format, by signature; null where content tells nothing.
    bool (*matches)(ByteSpan file);
    PictureReader read;
    /// The picture is drawn at any size with equal sharpness: `PictureRequest::drawnFor` says at which.
    bool scalable = false;
};

/// Adds rows; they are asked after those that are built in. Called at start-up, before the first read.
void AddPictureFormats(std::span<const PictureFormat> rows);
/// The row of a file kind, null when no reader is known.
[[nodiscard]] const PictureFormat* PictureFormatOfKind(int kind);
/// False for a kind whose files are no pictures, whatever their bytes look like (a program, a page). True for kind 0.
[[nodiscard]] bool MayBePicture(int kind);
/// The row that reads such a file, null when there is none. A row of the named kind is preferred where several match.
[[nodiscard]] const PictureFormat* FindPictureFormat(ByteSpan file, int kind);

/// The picture of a file that is in memory; `kind` is the one of its name, 0 when it has none. Empty on failure, with
/// `facts` cleared. A picture with a transparent index comes as 32 bits unless the request keeps indices. Safe on any
/// thread.
[[nodiscard]] DibBlock ReadPicture(ByteSpan file, int kind, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
