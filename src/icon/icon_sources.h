// Every kind of file that carries icons, one row each: told by content where that is possible, by the file's name else.
//
// Rows whose readers live above this folder (libraries, program files, Macintosh icons) are added at start-up.
#pragma once

#include "core/file_kinds.h"
#include "icon/icon_group.h"

#include <concepts>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace pelorin {

/// Takes one icon after the other; the group may be moved from. False ends the reading.
using IconVisitor = std::function<bool(CIconGroup& group)>;

/// One thing that is known of a file. Names are snake_case words ("image_count").
struct IconFileFact {
    std::string name, text;
    bool isNumber = false;

    IconFileFact(std::string_view what, std::string value) : name(what), text(std::move(value)) {}
    template <std::integral T>
    IconFileFact(std::string_view what, T value) : name(what), text(std::to_string(value)), isNumber(true) {}
};

/// What is known of one file besides its icons.
struct IconFileReport {
    /// In the order in which they are shown.
    std::vector<IconFileFact> facts;
    /// What a strict reader would object to, one sentence each.
    std::vector<std::string> oddities;
};

/// What the headers of an icon tell, without decoding it.
struct IconOutline {
    struct Format {
        IconFormat format;
        int colors = 0;
        bool compressed = false;
        std::uint32_t bytes = 0; ///< in the file
    };
    std::string name;
    bool macintosh = false;
    std::vector<Format> formats; ///< in the order of the file
};

/// An icon that was found and not yet decoded; it lives as long as the visit.
class LazyIcon {
public:
    virtual ~LazyIcon() = default;
    [[nodiscard]] virtual IconOutline Outline() const = 0;
    /// Null when no image of it can be decoded.
    [[nodiscard]] virtual std::unique_ptr<CIconGroup> Load() const = 0;
    /// A Windows icon file with the images as they stand.
    [[nodiscard]] virtual Bytes IcoFile() const = 0;
    /// One image, by its place in the outline. False when it cannot be decoded.
    [[nodiscard]] virtual bool LoadFormat(std::size_t index, CVnIcon& icon) const = 0;
    /// The PNG file that a 32-bit image is stored as; empty for every other image.
    [[nodiscard]] virtual ByteSpan PngFile(std::size_t index) const = 0;
};
using LazyIconVisitor = std::function<bool(const LazyIcon& icon)>;

struct IconSource {
    FileKind kind;
    /// For lists: "ico".
    std::string_view name;
    /// True when the bytes are such a file; null where content tells nothing.
    bool (*matches)(ByteSpan file);
    /// Hands out the icons in the order of the file, one at a time, so that memory does not grow with their number.
    /// False when the file is damaged or is not of this kind; icons before the damage may have been handed out.
    bool (*visit)(ByteSpan file, const IconVisitor& visitor);
    /// The file in depth; null where there is nothing to tell.
    void (*inspect)(ByteSpan file, IconFileReport& report);
    /// As `visit`, with icons that cost nothing until they are asked for more; null where a file's icons are all read
    /// at once.
    bool (*visitLazily)(ByteSpan file, const LazyIconVisitor& visitor) = nullptr;
    /// A file of this kind's name is taken where no content matches; so it is with a row without a test.
    bool byName = false;
};

/// Adds rows; they are asked before those that are built in, whose tests are the weakest. Called at start-up, before
/// the first use.
void AddIconSources(std::span<const IconSource> rows);
[[nodiscard]] std::vector<const IconSource*> AllIconSources();
/// The row for a file, null when no row takes it. A row of the named kind (0: none) is preferred where several match;
/// where none matches by content, the row of the named kind is given if the name is enough for it.
[[nodiscard]] const IconSource* FindIconSource(ByteSpan file, int kind);

} // namespace pelorin
