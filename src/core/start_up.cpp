// How the program starts and stops.

#include "base/files.h"
#include "base/text.h"
#include "core/application.h"
#include "core/language.h"
#include "core/settings.h"
#include "core/switches.h"
#include "core/temp_files.h"
#include "core/user_prompt.h"
#include "platform/locale_info.h"
#include "platform/settings_store.h"
#include "platform/standard_folders.h"

#include <algorithm>
#include <charconv>

namespace pelorin {

std::string g_szAppFolder;
std::string g_szDataFolder;
int g_nLanguage = kEnglish;
bool g_bShowProgress = true;
bool g_bNoDialogOnNew = false;

namespace {

constexpr std::string_view kLastResortTempFolder = "/tmp/Vantrel/";

// A new icon without the dialog, for as long as this lives.
class NoDialogOnNew {
public:
    NoDialogOnNew() { g_bNoDialogOnNew = true; }
    ~NoDialogOnNew() { g_bNoDialogOnNew = false; }
    NoDialogOnNew(const NoDialogOnNew&) = delete;
    NoDialogOnNew& operator=(const NoDialogOnNew&) = delete;
};

} // namespace

CPelorinApp::CPelorinApp(Services services, Parts parts) : m_services(services), m_parts(parts) {
    if (m_parts.frame == nullptr) m_parts.frame = &m_noFrame;
    if (m_parts.hooks == nullptr) m_parts.hooks = &m_noHooks;
    m_services.recent = &m_recent;
}

void CPelorinApp::AddDocTemplate(std::unique_ptr<CDocTemplate> docTemplate) {
    m_arrTemplates.push_back(std::move(docTemplate));
}

// Window classes, fonts, themes, the component and drag services of the window system and the drives are the frame's
// own business; what is left of the order is what a later step reads.
bool CPelorinApp::InitInstance(const CommandLine& arguments) {
    g_bNoDialogOnNew = false;
    if (!IsFirstInstance(arguments)) return false;
    FindFolders();
    // Only now: a running instance would have lost the files that it works on.
    ClearTempFiles(g_szTempFolder);
    LoadStoredState();
    if (g_bShowSplashScreen) m_parts.frame->ShowSplash();

    const auto switches = ParseSwitches(arguments);
    if (!m_parts.frame->Create(switches.librarian)) return false;
    m_parts.frame->RefreshRecentMenu();
    if (m_bLanguageMissing) {
        m_parts.frame->CloseSplash();
        m_services.prompt->Tell(PromptIcon::Warning, str::kLanguageModuleUnusable, PELORIN_VERSION);
    }
    OpenAtStart(arguments);
    m_parts.frame->CloseSplash();
    m_bStartingUp = false;
    return true;
}

bool CPelorinApp::IsFirstInstance(const CommandLine& arguments) {
    if (m_parts.instance == nullptr || m_parts.instance->Claim()) return true;
    return !m_parts.instance->HandOver(MakeAbsolute(arguments, CurrentFolder()));
}

void CPelorinApp::FindFolders() {
    g_szTempFolder = FindTempFolder(*m_services.folders);
    if (g_szTempFolder.empty()) {
        g_szTempFolder = kLastResortTempFolder;
        (void)CreateFolders(g_szTempFolder);
    }
    g_szAppFolder = m_services.folders->Program();
    g_szDataFolder = JoinPath(m_services.folders->Data(), "Vantrel/Pelorin/");
}

// The language comes first, for some defaults are texts; the recent files before the options, as the menu shows them.
void CPelorinApp::LoadStoredState() {
    const auto& store = *m_services.settings;
    int language = 0;
    const auto stored = store.Read("prefs", "AppLanguage").value_or("0");
    (void)std::from_chars(stored.data(), stored.data() + stored.size(), language);
    m_bLanguageMissing = !LoadLanguage(language);

    m_mediaTypes.SetPlace(g_szDataFolder, m_services.associations, JoinPath(g_szAppFolder, "pelorin"));
    m_mediaTypes.LoadMediaTypes();
    LoadSettings(store);
    m_recent = RecentFiles(g_arrRecentFileList);
    CompleteSettingsPaths(*m_services.folders, g_szTempFolder);
    CreateSettingsFolders();
}

bool CPelorinApp::LoadLanguage(int index) {
    if (index == 0)
        index = m_services.locale == nullptr ? kEnglish : AutomaticLanguage(m_services.locale->PrimaryLanguage());
    g_nLanguage = kEnglish;
    SetLanguageTexts({});
    if (index == kEnglish) return true;

    const auto module = LanguageModuleName(index);
    for (const auto& folder : {g_szAppFolder, g_szDataFolder}) {
        const auto path = JoinPath(folder, module);
        if (module.empty() || m_parts.languages == nullptr || !FileExists(path)) continue;
        auto texts = m_parts.languages->ReadTexts(path);
        if (texts.empty()) continue;
        SetLanguageTexts(std::move(texts));
        g_nLanguage = index;
        return true;
    }
    return false;
}

void CPelorinApp::OpenAtStart(const CommandLine& arguments) {
    const auto switches = ParseSwitches(arguments);
    if (!switches.patch.empty()) DeletePatch(switches.patch);
    if (switches.patch.empty() && !switches.text.empty()) {
        OpenFromCommandLine(arguments);
        return;
    }
    if (g_bNewExplorerAtStartup) GetTemplate(DocKind::Explorer).OpenDocumentFile({});
    if (g_bNewProjectAtStartup) {
        const NoDialogOnNew automatic;
        GetTemplate(DocKind::Icon).OpenDocumentFile({});
    }
}

// The whole text is one request, unless every argument is something that exists: the system hands several files over
// so.
void CPelorinApp::OpenFromCommandLine(const CommandLine& arguments) {
    const auto switches = ParseSwitches(arguments);
    if (switches.text.empty()) return;
    const bool allExist = std::ranges::all_of(
        switches.files, [](const std::string& file) { return FileExists(file) || FolderExists(file); });
    if (!allExist) {
        OpenDocumentFile(switches.text);
        return;
    }
    for (const auto& file : switches.files) OpenDocumentFile(file);
}

// Only what lies in the folder for temporary files is an update's leftover; anybody can write a command line.
void CPelorinApp::DeletePatch(const std::string& path) {
    const auto folder = FolderOf(path);
    if (g_szTempFolder.empty() || FileNameOf(path).empty() || !SameFile(folder, g_szTempFolder)) return;
    constexpr int kTries = 20;
    for (int tries = 0; tries < kTries && FileExists(path); ++tries) (void)DeleteFile(path);
}

void CPelorinApp::ExitInstance() {
    g_arrRecentFileList = m_recent.Get();
    try {
        SaveSettings(*m_services.settings);
    } catch (const FileException& error) {
        m_services.prompt->Tell(PromptIcon::Stop, str::kErrorSavingSettings, std::string(error.what()));
    }
    m_arrTemplates.clear();
    SetLanguageTexts({});
    ClearTempFiles(g_szTempFolder);
}

} // namespace pelorin
