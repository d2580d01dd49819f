#include "core/file_kinds.h"

#include "base/files.h"
#include "base/text.h"

#include <algorithm>

namespace pelorin {

namespace {

constexpr FileKindInfo kKinds[] = {
    {kKindNone, 55487, 100, kGroupNone},          {kKindAni, 55696, 103, kGroupCursors},
    {kKindBmp, 55701, 109, kGroupImages},         {kKindCur, 55703, 102, kGroupCursors},
    {kKindFli, 55707, 100, kGroupNone},           {kKindFlc, 55708, 100, kGroupNone},
    {kKindGif, 55710, 109, kGroupImages},         {kKindIco, 55714, 101, kGroupIcons},
    {kKindIff, 55715, 109, kGroupImages},         {kKindJpeg, 55716, 109, kGroupImages},
    {kKindLbm, 55717, 109, kGroupImages},         {kKindPcd, 55724, 109, kGroupImages},
    {kKindPcx, 55725, 109, kGroupImages},         {kKindPict, 55726, 109, kGroupImages},
    {kKindPng, 55727, 109, kGroupImages},         {kKindTga, 55741, 109, kGroupImages},
    {kKindTiff, 55742, 109, kGroupImages},        {kKindWmf, 55745, 109, kGroupImages},
    {kKindPsd, 55728, 109, kGroupImages},         {kKindFlashPix, 55709, 109, kGroupImages},
    {kKindQuickTime, 55729, 109, kGroupImages},   {kKindIconLibrary, 55712, 104, kGroupLibraries},
    {kKindCursorLibrary, 55694, 100, kGroupNone}, {kKindHtml, 55711, 112, kGroupWebPages},
    {kKindAsp, 55698, 112, kGroupWebPages},       {kKindExe, 55706, 105, kGroupApplications},
    {kKindDll, 55704, 106, kGroupExtensions},     {kKindOcx, 55723, 107, kGroupComponents},
    {kKindDrv, 55705, 107, kGroupComponents},     {kKindCpl, 55702, 107, kGroupComponents},
    {kKindScr, 55736, 108, kGroupScreenSavers},   {kKindIcns, 55713, 113, kGroupIcons},
    {kKindRsrc, 55713, 113, kGroupIcons},         {kKindIcontainer, 55760, 104, kGroupLibraries},
    {kKindMacBinary, 55713, 113, kGroupIcons},    {kKindJpeg2000, 55771, 109, kGroupImages},
    {kKindImageObject, 55772, 114, kGroupImages}, {kKindDeleted, 0, 100, kGroupNone},
    {kKindTransfer, 0, 100, kGroupNone},
};

struct ExtensionRow {
    std::string_view extension;
    FileKind kind;
};

constexpr ExtensionRow kExtensions[] = {
    {"DEL", kKindDeleted},
    {"BMP", kKindBmp},
    {"ICO", kKindIco},
    {"ICNS", kKindIcns},
    {"ICONTAINER", kKindIcontainer},
    {"BIN", kKindMacBinary},
    {"MACBINARY", kKindMacBinary},
    {"MACBIN", kKindMacBinary},
    {"RSRC", kKindRsrc},
    {"RSC", kKindRsrc},
    {"CUR", kKindCur},
    {"ANI", kKindAni},
    {"JPG", kKindJpeg},
    {"JPE", kKindJpeg},
    {"JPEG", kKindJpeg},
    {"JP2", kKindJpeg2000},
    {"J2K", kKindJpeg2000},
    {"J2C", kKindJpeg2000},
    {"JPC", kKindJpeg2000},
    {"JPX", kKindJpeg2000},
    {"NIL", kKindIconLibrary},
    {"IL", kKindIconLibrary},
    {"ICL", kKindIconLibrary},
    {"DLL", kKindDll},
    {"EXE", kKindExe},
    {"SCR", kKindScr},
    {"OCX", kKindOcx},
    {"DRV", kKindDrv},
    {"CPL", kKindCpl},
    {"DIB", kKindBmp},
    {"RLE", kKindBmp},
    {"HTM", kKindHtml},
    {"HTML", kKindHtml},
    {"HTX", kKindHtml},
    {"ASP", kKindAsp},
    {"ALX", kKindHtml},
    {"STM", kKindHtml},
    {"SHTML", kKindHtml},
    {"SHTM", kKindHtml},
    {"DHTML", kKindHtml},
    {"GIF", kKindGif},
    {"PICT", kKindPict},
    {"FPX", kKindFlashPix},
    {"FPIX", kKindFlashPix},
    {"PIC", kKindPict},
    {"QTI", kKindQuickTime},
    {"QTIF", kKindQuickTime},
    {"PSD", kKindPsd},
    {"VIO", kKindImageObject},
    {"PCT", kKindPict},
    {"PCD", kKindPcd},
    {"WMF", kKindWmf},
    {"PNG", kKindPng},
    {"PCX", kKindPcx},
    {"TGA", kKindTga},
    {"TIF", kKindTiff},
    {"TIFF", kKindTiff},
    {"LBM", kKindLbm},
    {"IFF", kKindIff},
    {"PLP", kKindTransfer},
};

// A pipe would keep us waiting for its first bytes, so only plain files are looked into.
bool StartsLikeIcns(std::string_view path) {
    return FileSize(path) >= 4 && AsText(ReadFileStart(path, 4)) == "icns";
}

} // namespace

const FileKindInfo& KindInfo(int kind) {
    const auto row = std::ranges::find(kKinds, kind, [](const FileKindInfo& info) { return int{info.kind}; });
    return row == std::end(kKinds) ? kKinds[0] : *row;
}

std::span<const FileKindInfo> AllKinds() {
    return kKinds;
}

FileKind GetFileKind(std::string_view path) {
    const auto name = FileNameOf(path);
    if (name.starts_with("._")) return kKindRsrc; // the other half of a Macintosh file on a foreign disk
    if (name.empty()) return kKindNone;
    // What the icon file of a Macintosh folder is called once its return character is gone.
    if (EqualsNoCase(name, "ICON_")) return kKindRsrc;
    if (name.find('.') == std::string_view::npos) return StartsLikeIcns(path) ? kKindIcns : kKindNone;

    const auto extension = ExtensionOf(name);
    const auto row = std::ranges::find_if(
        kExtensions, [&](const ExtensionRow& candidate) { return EqualsNoCase(candidate.extension, extension); });
    return row == std::end(kExtensions) ? kKindNone : row->kind;
}

} // namespace pelorin
