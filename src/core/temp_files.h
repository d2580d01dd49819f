// Temporary files: one folder, one prefix, cleared as a whole.
#pragma once

#include <string>
#include <string_view>

namespace pelorin {

class StandardFolders;

/// The folder for temporary files, with a slash at its end; set once at start.
extern std::string g_szTempFolder;

inline constexpr std::string_view kTempPrefix = "vnpl";

/// A path "%s%s%04d.%s" (folder, prefix, number, extension) in `g_szTempFolder` that nothing has yet; empty when there
/// is no such folder. The file is not made. No two calls of one run give the same path. An empty prefix means
/// `kTempPrefix`.
[[nodiscard]] std::string MakeTempName(std::string_view prefix, std::string_view extension);

/// Deletes the files (not the folders) in `folder` whose names begin with `kTempPrefix`, letters compared without case.
void ClearTempFiles(std::string_view folder);

/// Makes the folder and proves that a file can be made in it.
[[nodiscard]] bool IsUsableTempFolder(const std::string& folder);

/// The first of these in which a file can be made, each made when missing: "Vantrel" below the local application data,
/// the system's temporary folder, "Vantrel" below the application data. Ends with a slash; empty when none will do.
[[nodiscard]] std::string FindTempFolder(const StandardFolders& folders);

} // namespace pelorin
