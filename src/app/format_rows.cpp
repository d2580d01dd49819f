#include "app/format_rows.h"

#include "containers/container_sources.h"
#include "icon/icon_pictures.h"

namespace pelorin {

void RegisterFormatRows() {
    [[maybe_unused]] static const bool once = [] {
        AddPictureFormats(IconPictureFormats());
        AddIconSources(ContainerIconSources());
        return true;
    }();
}

} // namespace pelorin
