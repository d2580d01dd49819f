// The document of an image object (.vio): images made of layers.
#pragma once

#include "core/document.h"
#include "formats/vio.h"

namespace pelorin {

class CImageDoc : public CDocument {
public:
    explicit CImageDoc(Services& services, Size newSize = {64, 64}) : CDocument(services), m_NewSize(newSize) {}

    /// One image with one layer, of the size that new documents have.
    [[nodiscard]] bool OnNewDocument() override;
    /// A file that is missing or cannot be read: another one is asked for, until one can be read or the person leaves.
    [[nodiscard]] bool OnOpenDocument(const std::string& path) override;
    /// Makes an empty file where there is none, or an empty one. What has content is never emptied: that save, and one
    /// to any other kind of file, fails and is told to the person.
    [[nodiscard]] bool OnSaveDocument(const std::string& path) override;
    /// Writes the whole object; the document stays with its own file. A failure is told to the person.
    [[nodiscard]] bool SaveACopy(const std::string& path);
    void DeleteContents() override { m_Object = {}; }

    /// Size of images in new documents; the dialog for them sets it.
    void SetNewSize(Size size) { m_NewSize = size; }
    [[nodiscard]] ImageObject& GetImageObject() { return m_Object; }
    /// Puts a layer without pixels on top of an image.
    CVniLayer& AddLayer(CVniImage& image);
    CVniImage& AddImage();

private:
    [[nodiscard]] bool LoadObject(const std::string& path);
    [[nodiscard]] std::string LocateFile(const std::string& path);
    bool TellSaveFailed();

    ImageObject m_Object;
    Size m_NewSize;
};

} // namespace pelorin
