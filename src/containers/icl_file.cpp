#include "containers/icl_file.h"

#include "core/user_prompt.h"

namespace pelorin {

namespace {

void TellUnableToSave(UserPrompt& prompt, const std::string& path, const std::string& suffix) {
    (void)prompt.ShowText(str::kErrorSavingChanges, FormatText(str::kErrorSavingChanges, path) + suffix,
                          PromptIcon::Stop, PromptButtons::Ok);
}

} // namespace

bool SaveLibrary(const std::string& path, IconList icons, LibraryForm form, ResourceUpdater& updater,
                 UserPrompt& prompt, Progress* progress, std::string* reason) {
    const auto because = [&](std::string_view text) {
        if (reason) *reason = text;
    };
    if (form == LibraryForm::Pe) {
        const auto error = WriteLibraryPe(path, icons, updater, progress, reason);
        if (error == LibraryError::None) return true;
        TellUnableToSave(prompt, path, FormatText(str::kErrorCode, static_cast<int>(error)));
        return false;
    }
    bool opened = false;
    try {
        if (!FitsLibraryNe(icons)) {
            because("the 16-bit form holds 32,767 icons, as many images, and 64 MB");
            TellUnableToSave(prompt, path, {});
            return false;
        }
        { const SafeFile probe(path); }
        opened = true;
        WriteLibraryNe(path, icons, progress);
        return true;
    } catch (const FileException& e) {
        if (opened) {
            (void)prompt.ShowText(str::kErrorSavingChanges, e.what(), PromptIcon::Stop, PromptButtons::Ok);
        } else {
            because(e.what());
            TellUnableToSave(prompt, path, {});
        }
        return false;
    }
}

LibraryForm FormOfLibrary(ByteSpan file) {
    return FindExecutableSignature(file).kind == ExecutableKind::Ne ? LibraryForm::Ne : LibraryForm::Pe;
}

} // namespace pelorin
