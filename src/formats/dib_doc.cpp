#include "formats/dib_doc.h"

#include "core/file_kinds.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "formats/load_file.h"
#include "pixel/depth.h"

namespace pelorin {

PictureRequest RequestOf(const DibDocSettings& settings) {
    PictureRequest request;
    request.box = {settings.metafileWidth, settings.metafileHeight};
    request.photoCdSize = settings.photoCdSize;
    return request;
}

bool CDibDoc::LoadPictureFile(const std::string& path) {
    auto request = RequestOf(m_settings);
    request.progress = GetServices().progress;
    CDIB image;
    PictureFacts facts;
    if (!LoadFromFile(image, path, request, &facts)) return false;
    m_Image = std::move(image);
    m_facts = std::move(facts);
    m_bGifView = m_Image.m_nPaletteBits > 0;
    m_strLayeredPsd = m_facts.kind == kKindPsd && m_facts.layers.size() > 1 ? path : std::string();
    ++m_nVersion;
    return true;
}

bool CDibDoc::OnOpenDocument(const std::string& path) {
    DeleteContents();
    if (!LoadPictureFile(path.empty() ? GetPathName() : path)) {
        GetServices().prompt->Tell(PromptIcon::Stop, str::kErrorReadingSource);
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

void CDibDoc::DeleteContents() {
    m_Image = CDIB();
    m_facts = {};
    m_bGifView = m_bOptionsChosen = false;
    m_strLayeredPsd.clear();
    ++m_nVersion;
}

void CDibDoc::SetImage(CDIB image) {
    DeleteContents();
    m_Image = std::move(image);
    m_bGifView = m_Image.m_nPaletteBits > 0;
    SetModifiedFlag();
}

int CDibDoc::GetViewBitCount() const {
    return m_bGifView ? m_Image.m_nPaletteBits : m_Image.GetBitCount();
}

void CDibDoc::LeaveGifView() {
    m_bGifView = false;
    m_Image.m_nTransparentIndex = -1;
    m_Image.m_nPaletteBits = 0;
    m_Image.m_pSourcePalette.clear();
}

bool CDibDoc::TakeBlock(DibBlock block) {
    if (!block) return false;
    LeaveGifView();
    m_Image.Attach(std::move(block));
    ++m_nVersion;
    SetModifiedFlag();
    return true;
}

bool CDibDoc::ChangeTo32Bits() {
    if (m_Image.Empty()) return false;
    if (m_Image.GetBitCount() == 32) {
        if (!m_bGifView) return false;
        LeaveGifView();
        ++m_nVersion;
        SetModifiedFlag();
        return true;
    }
    if (m_dialogs && !m_dialogs->AskKeyColor(m_Image.Block(), m_settings)) return false;
    return TakeBlock(ConvertTo32(m_Image.Block(), m_settings.useKeyColor, m_settings.keyColor));
}

bool CDibDoc::ChangeTo24Bits() {
    if (m_Image.Empty() || m_Image.GetBitCount() == 24) return false;
    auto& prompt = *GetServices().prompt;
    if (HasGifTransparency() && prompt.Ask(PromptButtons::YesNo, str::kGifTransparencyWarning) != PromptAnswer::Yes)
        return false;
    if (m_Image.GetBitCount() != 32) return TakeBlock(ConvertDIBTo24(m_Image.Block()));
    if (m_dialogs && !m_dialogs->AskBackground(m_Image.Block(), m_settings)) return false;
    return TakeBlock(ComposeTo24(m_Image.Block(), m_settings.background));
}

} // namespace pelorin
