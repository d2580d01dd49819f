// The application object: starts and stops the program, owns what there is one of, and holds the one place where a
// request to open something enters.
#pragma once

#include "core/dispatch.h"
#include "core/media_types.h"
#include "core/recent_files.h"
#include "core/services.h"
#include "platform/single_instance.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace pelorin {

extern std::string g_szAppFolder;  ///< of the program file; ends with a slash
extern std::string g_szDataFolder; ///< of this person's data; ends with a slash
extern int g_nLanguage;            ///< index of the language in use, from 1
extern bool g_bShowProgress;       ///< readers may show how far they are
extern bool g_bNoDialogOnNew;      ///< a new icon is made without asking for its format

/// Names under which the clipboard's private formats are registered.
inline constexpr std::array<std::string_view, 4> kClipboardFormats = {"Vantrel MB40 File List", "Vantrel IconEdit Data",
                                                                      "Vantrel DIB32 Data", "Vantrel PAL Data"};

/// The texts of a language module for a version of the program; an empty table when there is no such module, or it is
/// of another version.
class LanguageModules {
public:
    virtual ~LanguageModules() = default;
    [[nodiscard]] virtual std::map<int, std::string> ReadTexts(const std::string& path) = 0;
};

/// The filter of the Open command: all supported kinds, all files, and a row a group.
[[nodiscard]] std::string OpenFilter();

class CPelorinApp {
public:
    /// What is not there is done without: no frame shows nothing, no single-instance door starts always.
    struct Parts {
        MainFrame* frame = nullptr;
        OpenHooks* hooks = nullptr;
        SingleInstance* instance = nullptr;
        LanguageModules* languages = nullptr;
    };

    /// `services` must have a prompt, the standard folders and the settings store; its list of recent files becomes
    /// this object's.
    CPelorinApp(Services services, Parts parts);

    /// True to run. False when another instance took the command line, or the program cannot start.
    [[nodiscard]] bool InitInstance(const CommandLine& arguments);
    void ExitInstance();

    /// The nine templates in the order of `DocKind`, made by the composition of the program.
    void AddDocTemplate(std::unique_ptr<CDocTemplate> docTemplate);
    [[nodiscard]] CDocTemplate& GetTemplate(DocKind kind) const {
        return *m_arrTemplates.at(static_cast<std::size_t>(kind));
    }
    [[nodiscard]] int GetTemplateCount() const { return static_cast<int>(m_arrTemplates.size()); }

    /// Opens a file, a folder, a web address or a phrase to be searched for. The document, or null.
    CDocument* OpenDocumentFile(std::string_view text);
    /// The Open command: the dialog, then every file chosen.
    void OnFileOpen();
    /// Hands a file to the program that the table of media types or the system has for it. `edit` asks for its editor.
    bool OpenWithEditor(const std::string& path, bool edit);
    /// The command line of this start or of a later one.
    void OpenFromCommandLine(const CommandLine& arguments);

    /// Puts the texts of a language in place; 0 is the person's own. False when its module could not be used, and
    /// English stays.
    bool LoadLanguage(int index);

    [[nodiscard]] Services& GetServices() { return m_services; }
    [[nodiscard]] CMediaTypeTable& GetMediaTypes() { return m_mediaTypes; }
    [[nodiscard]] RecentFiles& GetRecentFiles() { return m_recent; }

    bool m_bRecentEnabled = true;
    bool m_bAskCreate = true; ///< whether a missing icon or library may be made when somebody opens it

private:
    [[nodiscard]] bool IsFirstInstance(const CommandLine& arguments);
    void FindFolders();
    void LoadStoredState();
    void OpenAtStart(const CommandLine& arguments);
    void DeletePatch(const std::string& path);

    [[nodiscard]] CDocument* FindOpenDocument(const std::string& text) const;
    CDocument* Carry(OpenDecision decision, const std::string& text);
    CDocument* CreateMissing(const OpenDecision& decision, const std::string& path);
    CDocument* Finish(CDocument* document, const std::string& text);

    Services m_services;
    Parts m_parts;
    MainFrame m_noFrame;
    OpenHooks m_noHooks;
    RecentFiles m_recent;
    CMediaTypeTable m_mediaTypes;
    std::vector<std::unique_ptr<CDocTemplate>> m_arrTemplates;
    int m_nOpenFilterIndex = 1;
    bool m_bStartingUp = true;
    bool m_bLanguageMissing = false;
};

} // namespace pelorin
