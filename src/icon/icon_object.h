// One image format of an icon in its working form: two planes, a palette, a selection and an undo list.
//
// While a document is open the planes are the truth and the stored block is stale; `UpdateStored` brings it up to date
// just before writing or copying. Windows and Macintosh icons share this; they differ by a flag, which selects the
// names, the offered formats and the palette at 8 bits.
#pragma once

#include "icon/icon_group.h"
#include "icon/planes.h"
#include "icon/source_picture.h"
#include "icon/undo.h"
#include "pixel/value_filter.h"

namespace pelorin {

/// How a picture is set into a format.
struct SetImageOptions {
    bool dither = true;
    /// Scale the picture to the format; else its top left part is cut out, at most the format's size.
    bool resample = true;
    /// At 8 bits: reduce to the Macintosh system palette.
    bool macPalette = false;
    /// At 8 bits: keep the picture's colours as they are and the format's palette with them.
    bool keepPalette = false;
    /// At 8 bits: reduce to this palette.
    const CPalette* palette = nullptr;
    /// A colour of a picture without alpha that becomes transparent; `kNoColor` for none.
    ColorRef key = kNoColor;
    int tolerance = 0;
    /// What follows a change of size at 32 bits while icons are made from pictures.
    CreationFilter filter{};
};

class CIconObject {
public:
    /// 32 x 32 without planes.
    CIconObject() = default;
    /// A new format, wholly transparent; see `SetFormat`.
    CIconObject(int bits, int width, int height, bool alpha, bool macintosh);
    CIconObject(const CVnIcon& icon, bool macintosh);

    int m_nWidth = 32, m_nHeight = 32;
    int m_nColors = 0, m_nBitCount = 0;
    bool m_bAlpha = false, m_bMacintosh = false;
    Size m_sizeEdit{32, 32};
    Surface m_bmpImage, m_bmpMask;
    int m_nHotSpotX = -1, m_nHotSpotY = -1;
    InclusiveRect m_rcSelection;
    Surface m_selImage, m_selMask; ///< planes of the floating selection, empty for none
    bool m_bFloating = false;
    bool m_bDirty = true;
    CPalette m_Palette;
    bool m_bHasPalette = false;
    UndoList m_undo;
    CVnIcon m_Stored;
    std::string m_strDescription, m_strShortDescription;

    [[nodiscard]] IconFormat Format() const { return {m_nWidth, m_nHeight, m_nBitCount}; }

    /// Sets the fields (32 bits always has alpha), the descriptions, and makes the planes. False for a depth that no
    /// icon has or a size that cannot be made; the object is unchanged then.
    bool SetFormat(int bits, int width, int height, bool alpha, bool macintosh);
    /// Makes wholly transparent planes: black under a set mask, or white under alpha 0. An 8-bit format gets the
    /// Macintosh system palette or the computed one.
    void CreateBitmaps();

    /// The planes into `m_Stored`.
    void UpdateStored();
    /// Takes everything from one image of an icon file (see `CVnIcon::ReadFromMemory`); false, with nothing changed,
    /// when it is none.
    [[nodiscard]] bool ReadFromMemory(ByteSpan data, std::uint32_t bytes, int bits);

    [[nodiscard]] bool HasSelection() const { return !m_rcSelection.None(); }
    [[nodiscard]] bool HasFloatingSelection() const { return m_selImage && m_selMask && HasSelection(); }

    /// Bytes that the format takes on disk, uncompressed. At 32 bits the AND rows are not counted, at 24 no table.
    [[nodiscard]] std::uint32_t ImageBytes() const;

    /// The picture at 32 bpp. A floating selection is merged into the whole image; otherwise, unless `wholeImage` is
    /// set, the result is cut to the selection. Transparent pixels of a format without alpha are (0, 0, 0, 0).
    [[nodiscard]] DibBlock GetDIB32(bool wholeImage = true) const;
    /// The picture at the format's own depth, composed on `background` through the mask; with the format's table at 8
    /// bits and less.
    [[nodiscard]] DibBlock GetDIB(ColorRef background) const;

    /// Fits any picture into the format. False, with the planes as they were, when it cannot be done.
    bool SetImage(const DibBlock& picture, const SetImageOptions& options = {});
    /// The same with a picture that is set into several formats: what they share is made once.
    bool SetImage(SourcePicture& picture, const SetImageOptions& options = {});
    /// The picture of another format; the selection ends cleared.
    bool SetImageOf(const CIconObject& other, const SetImageOptions& options = {});

    /// At 8 bits, for another palette: keeps an undo step and maps the image to it with dither; the mask stays. False
    /// when nothing changed.
    bool ConvertPalette(const CPalette& palette);

    /// Merges a floating selection into the image, as a step that can be undone. Without one nothing happens.
    void DropFloating();

    /// Everything that an undo step holds.
    [[nodiscard]] IconState State() const;
    void Restore(const IconState& state);

private:
    void TakeStored();
    void ForgetSelection();
};

} // namespace pelorin
