#include "app/doc_templates.h"

#include "app/picture_settings.h"
#include "icon/icon_doc.h"

namespace pelorin {

namespace {

std::unique_ptr<CDocument> NewPicture(Services& services) {
    return std::make_unique<CDibDoc>(services, PictureSettings(), nullptr);
}

std::unique_ptr<CDocument> NewIcon(Services& services) {
    return std::make_unique<CIconDoc>(services);
}

struct TemplateRow {
    DocKind kind;
    CDocTemplate::Factory factory; ///< null: no documents of this kind here
    bool macintosh = false;
};

constexpr TemplateRow kTemplates[kDocKindCount] = {
    {DocKind::Icon, NewIcon},     {DocKind::MacIcon, NewIcon, true}, {DocKind::Library, nullptr},
    {DocKind::Explorer, nullptr}, {DocKind::Browser, nullptr},       {DocKind::Search, nullptr},
    {DocKind::Program, nullptr},  {DocKind::Image, NewPicture},      {DocKind::ImageObject, nullptr},
};

} // namespace

void RegisterDocTemplates(CPelorinApp& app) {
    for (const auto& row : kTemplates) {
        app.AddDocTemplate(
            std::make_unique<CDocTemplate>(app.GetServices(), InfoOf(row.kind).stringId, row.factory, row.macintosh));
    }
}

} // namespace pelorin
