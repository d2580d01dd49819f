// The icon side of `convert`: icon files and pictures into icon files, libraries and archives of icons.
#pragma once

#include "cli/run.h"
#include "icon/icon_file_forms.h"

namespace pelorin::cli {

struct IconTarget {
    /// What the files are written as; null for a library or an archive.
    const IconFileForm* form = nullptr;
    bool isLibrary = false, isArchive = false;
    [[nodiscard]] bool IsIcon() const { return form || isLibrary || isArchive; }
};

/// Told by the name of the output.
[[nodiscard]] IconTarget IconTargetOf(const std::string& output);

/// Converts all files; failures of single ones are told.
void ConvertToIcons(Run& run, const std::vector<std::string>& files, const IconTarget& target,
                    const std::vector<IconFormat>& formats);

/// The icon with the formats that a file of the form can hold, missing ones of `formats` made; what is lost is told as
/// a warning on `file`. Throws `FileException` when nothing is left, or when --no forbids the loss.
[[nodiscard]] CIconGroup ConvertToForm(Run& run, const std::string& file, const CIconGroup& source,
                                       const IconFileForm& form, const std::vector<IconFormat>& formats);
/// The whole file as it will stand at `path`. Throws `FileException`.
[[nodiscard]] Bytes BuildIconFile(const CIconGroup& icon, const IconFileForm& form, std::string_view path);

/// The picture of an icon file for which no picture reader is there, or of one of its formats: of the first icon the
/// widest and deepest image. Empty when the file carries no icons or pictures of it are read as such.
[[nodiscard]] DibBlock PictureOfIcons(const std::string& file, const std::vector<IconFormat>& formats);

} // namespace pelorin::cli
