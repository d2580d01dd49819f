#include "app/doc_templates.h"

#include "app/picture_settings.h"
#include "containers/exe_doc.h"
#include "containers/icl_doc.h"
#include "core/settings.h"
#include "formats/image_doc.h"
#include "icon/icon_doc.h"

namespace pelorin {

namespace {

std::unique_ptr<CDocument> NewPicture(Services& services) {
    return std::make_unique<CDibDoc>(services, PictureSettings(), nullptr);
}

std::unique_ptr<CDocument> NewProgram(Services& services) {
    auto program = std::make_unique<CFileExeDoc>(services);
    program->m_pWarnOverwrite = &g_bWarnOverwriteProgram;
    return program;
}

template <class Document>
std::unique_ptr<CDocument> New(Services& services) {
    return std::make_unique<Document>(services);
}

struct TemplateRow {
    DocKind kind;
    CDocTemplate::Factory factory; ///< null: no documents of this kind here
    bool macintosh = false;
};

constexpr TemplateRow kTemplates[kDocKindCount] = {
    {DocKind::Icon, New<CIconDoc>},
    {DocKind::MacIcon, New<CIconDoc>, true},
    {DocKind::Library, New<CFileIclDoc>},
    {DocKind::Explorer, nullptr},
    {DocKind::Browser, nullptr},
    {DocKind::Search, nullptr},
    {DocKind::Program, NewProgram},
    {DocKind::Image, NewPicture},
    {DocKind::ImageObject, New<CImageDoc>},
};

} // namespace

void RegisterDocTemplates(CPelorinApp& app) {
    for (const auto& row : kTemplates) {
        app.AddDocTemplate(
            std::make_unique<CDocTemplate>(app.GetServices(), InfoOf(row.kind).stringId, row.factory, row.macintosh));
    }
}

} // namespace pelorin
