#include "platform/doors.h"

#include "base/files.h"
#include "platform/linux/ini_settings_store.h"
#include "platform/linux/linux_doors.h"
#include "platform/linux/mime_associations.h"
#include "platform/linux/socket_instance.h"
#include "platform/stored_registry.h"

namespace pelorin {

namespace {

constexpr std::string_view kOwnFolder = "Vantrel/Pelorin/";

// Without a folder of the session, one below the cache is this person's alone as well.
std::string SocketFolder(const StandardFolders& folders) {
    const auto runtime = Environment("XDG_RUNTIME_DIR");
    const auto root = runtime.starts_with('/') ? runtime : folders.LocalData();
    return root.empty() ? std::string{} : JoinPath(root, kOwnFolder);
}

} // namespace

Doors MakeSystemDoors() {
    Doors doors;
    doors.folders = std::make_unique<LinuxStandardFolders>();
    const auto config = JoinPath(doors.folders->Config(), kOwnFolder);
    doors.settings = std::make_unique<IniSettingsStore>(config + "settings.ini");
    doors.registryStore = std::make_unique<IniSettingsStore>(config + "registry.ini");
    doors.registry = std::make_unique<StoredRegistry>(*doors.registryStore);
    doors.associations = std::make_unique<MimeAssociations>(MimePlaces());
    doors.launcher = std::make_unique<LinuxLauncher>();
    doors.locale = std::make_unique<LinuxLocale>();
    doors.instance = std::make_unique<SocketInstance>(SocketFolder(*doors.folders));
    return doors;
}

} // namespace pelorin
