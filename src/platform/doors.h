// All doors to the system that this program runs on, made at once.
#pragma once

#include "platform/file_associations.h"
#include "platform/launcher.h"
#include "platform/locale_info.h"
#include "platform/registry.h"
#include "platform/settings_store.h"
#include "platform/single_instance.h"
#include "platform/standard_folders.h"

#include <memory>

namespace pelorin {

struct Doors {
    std::unique_ptr<StandardFolders> folders;
    std::unique_ptr<SettingsStore> settings;
    std::unique_ptr<SettingsStore> registryStore; ///< what `registry` keeps its values in, where the system has none
    std::unique_ptr<Registry> registry;
    std::unique_ptr<FileAssociations> associations;
    std::unique_ptr<Launcher> launcher;
    std::unique_ptr<LocaleInfo> locale;
    std::unique_ptr<SingleInstance> instance; ///< nothing is claimed yet
};

/// Reads the settings; writes nothing.
[[nodiscard]] Doors MakeSystemDoors();

} // namespace pelorin
