#include "icon/icon_file_forms.h"

#include "icon/ico_file.h"

namespace pelorin {

namespace {

bool ReadIco(ByteSpan file, std::vector<CIconGroup>& groups) {
    CIconGroup group;
    if (!ReadIcoGroup(file, group)) return false;
    groups.push_back(std::move(group));
    return true;
}

Bytes WriteIco(const CIconGroup& icon, std::string_view) {
    return BuildIcoFile(icon);
}

std::vector<IconFileForm>& Forms() {
    static std::vector<IconFileForm> forms = {{kKindIco, "ico", false, ReadIco, WriteIco, nullptr}};
    return forms;
}

} // namespace

void AddIconFileForms(std::span<const IconFileForm> rows) {
    Forms().insert(Forms().end(), rows.begin(), rows.end());
}

const IconFileForm* FindIconFileForm(int kind) {
    for (const auto& form : Forms()) {
        if (form.kind == kind) return &form;
    }
    return nullptr;
}

} // namespace pelorin
