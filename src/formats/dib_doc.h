// The document of one picture: opened by any reader, saved by any writer, its depth changed by the person.
//
// A GIF that was opened or saved is in "GIF view": it is shown and counted as a picture of its palette, also when the
// picture behind it has 32 bits because of a transparent colour.
#pragma once

#include "core/document.h"
#include "formats/picture_reader.h"
#include "formats/picture_writer.h"
#include "pixel/cdib.h"
#include "pixel/color.h"

namespace pelorin {

/// The options that picture documents go by, where they are kept: dialogs change them, saving reads them.
struct DibDocSettings {
    int &jpegQuality, &photoCdSize;
    int &metafileWidth, &metafileHeight;
    ColorRef& gifMatte;
    bool &gifTransparency, &gifDither;
    /// Position in the list of sizes: 0 all, then 8, 16, ... 256 colours; position in the list of palettes; slider.
    int &gifColors, &gifPalette, &gifThreshold;
    bool& jp2Lossy;
    int& jp2Compression;
    bool& useKeyColor;
    ColorRef &keyColor, &background;
};

/// How the settings read or save a picture, apart from the JPEG 2000 rate, which a save decides by itself.
[[nodiscard]] PictureRequest RequestOf(const DibDocSettings& settings);
[[nodiscard]] PictureSaveOptions SaveOptionsOf(const DibDocSettings& settings);

/// The questions of a picture document. Each may change the settings it is about; false: cancelled, and nothing
/// changed.
class DibDocDialogs {
public:
    virtual ~DibDocDialogs() = default;
    [[nodiscard]] virtual bool AskKeyColor(const DibBlock& picture, DibDocSettings& settings) = 0;
    [[nodiscard]] virtual bool AskBackground(const DibBlock& picture, DibDocSettings& settings) = 0;
    [[nodiscard]] virtual bool AskGifOptions(const DibBlock& picture, DibDocSettings& settings) = 0;
    [[nodiscard]] virtual bool AskJpeg2000Options(const DibBlock& picture, DibDocSettings& settings) = 0;
};

class CDibDoc : public CDocument {
public:
    /// Without `dialogs` the settings answer as they stand.
    CDibDoc(Services& services, const DibDocSettings& settings, DibDocDialogs* dialogs)
        : CDocument(services), m_settings(settings), m_dialogs(dialogs) {}

    /// An empty path means the document's own. A failure is told to the person and leaves the document empty.
    [[nodiscard]] bool OnOpenDocument(const std::string& path) override;
    /// The type goes by the name; a name without a known extension takes `g_nSaveKind`, and when that is 0 too, BMP.
    /// False, without a word, for a type that is not written, and, told to the person, for the Photoshop file with
    /// several layers that the picture came from: the layers would be lost. A save that fails is told to the person and
    /// counts as done: the modified flag is cleared and the result is true.
    [[nodiscard]] bool OnSaveDocument(const std::string& path) override;
    void DeleteContents() override;

    /// The dialog of GIF or JPEG 2000 options, before a save in that type; the next save goes by what was chosen. True
    /// for types without a dialog.
    [[nodiscard]] bool ChooseSaveOptions(int kind);

    /// Every lower depth, and the GIF view, to 32 bits, with a key colour if wanted. A GIF view with a transparent
    /// colour has its 32 bits already: the view ends, and nothing is asked. False: nothing to do, cancelled, or no
    /// memory.
    [[nodiscard]] bool ChangeTo32Bits();
    /// Every other depth to 24 bits; 32 bits are flattened on a background. Loss of a GIF's transparency is asked for.
    [[nodiscard]] bool ChangeTo24Bits();

    [[nodiscard]] const CDIB& GetImage() const { return m_Image; }
    /// Takes a picture that did not come from a file.
    void SetImage(CDIB image);
    [[nodiscard]] bool IsGifView() const { return m_bGifView; }
    /// The depth that is shown: in GIF view the bits of the palette.
    [[nodiscard]] int GetViewBitCount() const;
    /// Of the file that was opened: frames, layers, delay.
    [[nodiscard]] const PictureFacts& GetFacts() const { return m_facts; }
    /// Grows with every change of the picture; views compare it with what they have painted.
    [[nodiscard]] unsigned GetVersion() const { return m_nVersion; }

private:
    [[nodiscard]] bool LoadPictureFile(const std::string& path);
    [[nodiscard]] int SaveAs(int kind, const std::string& path, bool chosen);
    [[nodiscard]] int SaveAsGif(const std::string& path, bool chosen);
    [[nodiscard]] int SaveAsPsd(const std::string& path);
    [[nodiscard]] bool TakeBlock(DibBlock block);
    void LeaveGifView();
    [[nodiscard]] bool HasGifTransparency() const { return m_bGifView && m_Image.m_nTransparentIndex >= 0; }

    DibDocSettings m_settings;
    DibDocDialogs* m_dialogs;
    CDIB m_Image;
    PictureFacts m_facts;
    bool m_bGifView = false;
    bool m_bOptionsChosen = false; ///< the options dialog has just run; the next save takes and clears it
    std::string m_strLayeredPsd;   ///< the file that was opened, if it is a Photoshop file with several layers
    unsigned m_nVersion = 0;
};

/// Type of a save whose name says nothing: the last one that the person chose in a file dialog; 0 for none.
extern int g_nSaveKind;

} // namespace pelorin
