#include "app/format_rows.h"

#include "icon/icon_pictures.h"

namespace pelorin {

void RegisterFormatRows() {
    [[maybe_unused]] static const bool once = [] {
        AddPictureFormats(IconPictureFormats());
        return true;
    }();
}

} // namespace pelorin
