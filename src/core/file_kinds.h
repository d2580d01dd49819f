// What a file is, told by its name: the small number on which the whole program switches.
//
// Only a name without any extension is looked at inside, and there only at its first four bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace pelorin {

/// The numbers are part of the program's files ("MediaFiles.vnd", item information) and never change.
enum FileKind : int {
    kKindNone = 0,
    kKindAni = 2,
    kKindBmp = 3,
    kKindCur = 4,
    kKindFli = 5, ///< 5, 6 and 23 have names and no extension: no file is ever of these kinds
    kKindFlc = 6,
    kKindGif = 7,
    kKindIco = 8,
    kKindIff = 9,
    kKindJpeg = 10,
    kKindLbm = 11,
    kKindPcd = 12,
    kKindPcx = 13,
    kKindPict = 14,
    kKindPng = 15,
    kKindTga = 16,
    kKindTiff = 17,
    kKindWmf = 18,
    kKindPsd = 19,
    kKindFlashPix = 20,
    kKindQuickTime = 21,
    kKindIconLibrary = 22,
    kKindCursorLibrary = 23,
    kKindHtml = 24,
    kKindAsp = 25,
    kKindExe = 26,
    kKindDll = 27,
    kKindOcx = 28,
    kKindDrv = 29,
    kKindCpl = 30,
    kKindScr = 31,
    kKindIcns = 32,
    kKindRsrc = 33,
    kKindIcontainer = 34,
    kKindMacBinary = 35,
    kKindJpeg2000 = 36,
    kKindImageObject = 40,
    kKindDeleted = 100,  ///< something in the trash; no user's file
    kKindTransfer = 101, ///< a picture handed over by a plug-in
};

/// The groups by which the media lists sort files out.
enum FileGroup : int {
    kGroupNone = 0,
    kGroupIcons = 2,
    kGroupCursors = 3,
    kGroupImages = 4,
    kGroupComponents = 5,
    kGroupLibraries = 6,
    kGroupExtensions = 7,
    kGroupApplications = 8,
    kGroupWebPages = 9,
    kGroupScreenSavers = 10,
};

/// One row a kind.
struct FileKindInfo {
    FileKind kind;
    int typeName; ///< string number; 0 when the kind has no name
    int resource; ///< number of the picture shown for such files
    FileGroup group;
};

/// Names, resource and group of a kind; the row of kind 0 for an unknown number.
[[nodiscard]] const FileKindInfo& KindInfo(int kind);
/// All rows, ascending by kind.
[[nodiscard]] std::span<const FileKindInfo> AllKinds();

/// The kind of a file. A file that is not there or cannot be read has the kind of its name.
[[nodiscard]] FileKind GetFileKind(std::string_view path);

/// Program files, whose icons are resources.
[[nodiscard]] constexpr bool IsProgramKind(int kind) {
    return kind >= kKindExe && kind <= kKindScr;
}
/// ICNS, resource files and MacBinary: icons of the Macintosh, in one file.
[[nodiscard]] constexpr bool IsMacintoshIconKind(int kind) {
    return kind == kKindIcns || kind == kKindRsrc || kind == kKindMacBinary;
}

} // namespace pelorin
