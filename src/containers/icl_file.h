// Icon libraries: files that hold many icons, in the form of a 16-bit (NE) or a 32-bit (PE) program file without code.
//
// Both are read by `FindIcons`. In both, groups count from 1 in the library's order and images from 1 over all icons;
// all resources are in language 0.
//
// NE form: a 232-byte header (MZ stub and NE header), the resource table with an alignment of 1,024 bytes, the names
// behind the module name "ICL" ("@" for none), and from the next multiple of 1,024 on each icon's images and its group
// directory, each padded to 1,024. Places are counted in u16 units, so such a library ends before 64 MB.
//
// PE form: the blank DLL with resources: types 3 and 14, and the table of names as type 301, id 1: the bytes 3 "ICL",
// then one byte of length and the characters for each icon (1, 3 for none).
#pragma once

#include "base/progress.h"
#include "containers/resource_update.h"
#include "icon/icon_group.h"

namespace pelorin {

class UserPrompt;

enum class LibraryForm { Pe, Ne };

/// The icons to write, in order. Writing leaves on each image its number in the library.
using IconList = std::span<CIconGroup* const>;

/// Why a library in PE form was not written; the numbers are those that a person is told.
enum class LibraryError {
    None = 0,
    NoTemporaryName = 1,
    NoTemplate = 2,
    NoUpdate = 3,
    Group = 4,
    NoImageData = 5,
    ImageOrNames = 6, ///< an image, or the table of names
    NotWritten = 10,
    NotCopied = 11,
};

/// Writes the PE form to a temporary file first; the target stays as it was unless all went well. A library without
/// icons is the blank DLL. `reason` tells what the system said of a failure.
[[nodiscard]] LibraryError WriteLibraryPe(const std::string& path, IconList icons, ResourceUpdater& updater,
                                          Progress* progress = nullptr, std::string* reason = nullptr);

/// True when the counts and the sizes fit the NE form: 32,767 icons and images at most, all of it within 65,535 units.
/// Makes the PNG files of compressed images, to know their sizes; they stay on the images for `WriteLibraryNe`.
[[nodiscard]] bool FitsLibraryNe(IconList icons);
/// The NE form. Throws `FileException`; the file stays as it was then.
void WriteLibraryNe(const std::string& path, IconList icons, Progress* progress = nullptr);

/// Writes either form and tells the person about a failure; `reason`, where given, tells more. True when it was
/// written.
[[nodiscard]] bool SaveLibrary(const std::string& path, IconList icons, LibraryForm form, ResourceUpdater& updater,
                               UserPrompt& prompt, Progress* progress = nullptr, std::string* reason = nullptr);

/// The form of a file that is a library already; PE for everything else.
[[nodiscard]] LibraryForm FormOfLibrary(ByteSpan file);

} // namespace pelorin
