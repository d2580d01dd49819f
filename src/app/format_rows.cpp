#include "app/format_rows.h"

#include "containers/container_sources.h"
#include "containers/mac_icon_rows.h"
#include "icon/icon_pictures.h"

namespace pelorin {

void RegisterFormatRows() {
    [[maybe_unused]] static const bool once = [] {
        AddPictureFormats(IconPictureFormats());
        AddIconSources(ContainerIconSources());
        AddIconSources(MacintoshIconSources());
        AddIconFileForms(MacintoshFileForms());
        return true;
    }();
}

} // namespace pelorin
