// The system's dialogs for choosing files.
#pragma once

#include <string>
#include <vector>

namespace pelorin {

/// `filter` is pairs of a name and its patterns with a bar behind each, and one more bar at the end:
/// "Icons (*.ico)|*.ico|All Files (*.*)|*.*||".
struct FileDialogRequest {
    std::string title; ///< empty: the system's own
    std::string filter;
    int filterIndex = 1; ///< from 1; what the person chose comes back in it
    std::string folder;  ///< where the dialog starts
    std::string name;    ///< preset
    std::string extension;
};

class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    /// One or more files, in the form of the system's buffer: a whole path and a zero byte; or, for several, the folder
    /// and each name with a zero byte behind, and one more at the end. Empty when the person left.
    [[nodiscard]] virtual std::string ChooseToOpen(FileDialogRequest& request) = 0;
    /// A path; empty when the person left.
    [[nodiscard]] virtual std::string ChooseToSave(FileDialogRequest& request) = 0;
};

/// The paths in such a buffer.
[[nodiscard]] std::vector<std::string> SplitChosenFiles(std::string buffer);

} // namespace pelorin
