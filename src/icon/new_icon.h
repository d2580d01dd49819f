// The commands that make a new icon out of a picture: from a file, from the clipboard, from a selection.
#pragma once

#include "icon/icon_doc.h"
#include "platform/clipboard.h"

namespace pelorin {

class CDocTemplate;
class UserPrompt;

/// What the dialog before a new icon from a picture decides.
struct NewIconChoice {
    bool macintosh = false;
    FromImageOptions options;
};

/// The dialog with a check box for every standard format. Without one the stored choice is taken.
class FormatChoice {
public:
    virtual ~FormatChoice() = default;
    /// `choice` comes with the stored formats. False when the person left.
    [[nodiscard]] virtual bool Choose(NewIconChoice& choice) = 0;
};

/// The picture in the clipboard: the private 32-bit format, else a packed bitmap, else the system's bitmap. Empty when
/// there is none or it is damaged.
[[nodiscard]] DibBlock PictureFromClipboard(const Clipboard& clipboard);
/// Whether there is a picture to be had; what a command's state follows.
[[nodiscard]] bool ClipboardHasPicture(const Clipboard& clipboard);

/// Makes the chosen formats the defaults for the next icons of that system, and says so.
void StoreFormatChoice(const std::vector<IconFormat>& formats, bool macintosh, UserPrompt& prompt);

class NewIconCommands {
public:
    /// `choice` may be null.
    NewIconCommands(Services& services, CDocTemplate& windows, CDocTemplate& macintosh, FormatChoice* choice)
        : m_services(services), m_windows(windows), m_macintosh(macintosh), m_choice(choice) {}

    /// Asks for a picture file, then for the formats. Null when the person left or the file is no picture (which is
    /// told).
    CIconDoc* OnNewFromImage();
    /// Null when the clipboard has no picture or the person left.
    CIconDoc* OnNewFromClipboard(const Clipboard& clipboard);
    /// The same from a picture at hand: a selection, a drop. Transparency, proportions and the key colour are seen to.
    CIconDoc* OnNewFromPicture(const DibBlock& picture);
    /// A plain new icon with one format; (0, 0, 0): the one of the settings.
    CIconDoc* OnNewIcon(bool macintosh, const IconFormat& format = {});

private:
    Services& m_services;
    CDocTemplate& m_windows;
    CDocTemplate& m_macintosh;
    FormatChoice* m_choice;
};

} // namespace pelorin
