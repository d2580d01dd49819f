#include "app/picture_settings.h"
#include "base/parallel.h"
#include "cli/icon_conversion.h"
#include "cli/icon_input.h"
#include "cli/output.h"
#include "cli/picture_io.h"
#include "cli/verb.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <new>

namespace pelorin::cli {

namespace {

/// Pictures up to this size compress well without filters.
constexpr int kSmallSide = 64;
constexpr const char* kNoMemory = "not enough memory";
constexpr const char* kNothing = "nothing in it is what was asked for";

struct ExtractOptions {
    std::vector<std::string> files;
    std::optional<int> index;
    bool all = false;
    std::vector<IconFormat> formats;
    std::optional<int> as; ///< a file kind
};

// What the files are written as: whole icons, or single images.
struct ExtractTarget {
    const IconFileForm* form = nullptr;
    const PictureSaver* saver = nullptr;

    explicit ExtractTarget(int kind) : form(FindIconFileForm(kind)), saver(form ? nullptr : PictureSaverOfKind(kind)) {}
    [[nodiscard]] bool IsIco() const { return form && form->kind == kKindIco; }
};

// By --as, else by the name of the output; 0 when neither tells.
int TargetKind(const Run& run, const ExtractOptions& options) {
    if (options.as) return *options.as;
    const auto& name = run.Options().output;
    if (name.empty() || name == "-" || name.ends_with('/') || FolderExists(name)) return kKindNone;
    const int kind = GetFileKind(name);
    return FindIconFileForm(kind) || PictureSaverOfKind(kind) ? kind : int{kKindNone};
}

bool EncodeImage(const CVnIcon& icon, const PictureSaver& saver, Bytes& file) {
    const auto settings = PictureSettings();
    const auto picture = IconBlockPicture(icon.m_hImage);
    if (!picture) return false;
    const auto converted = AtDepthFor(saver, picture, settings.background);
    auto options = SaveOptionsOf(settings);
    if (icon.m_nWidth <= kSmallSide && icon.m_nHeight <= kSmallSide) options.png = PngEffort::Small;
    return EncodePicture(converted ? converted : picture, saver.kind, options, file) == 0 && !file.empty();
}

class Extraction {
public:
    Extraction(Run& run, const ExtractOptions& options, const std::string& input)
        : m_run(run), m_options(options), m_input(input), m_kind(TargetKind(run, options)) {}

    void Go() {
        const auto input = OpenIconInput(m_input);
        const int lazy = input.source->visitLazily ? CountLazily(input) : 0;
        if (lazy > 1) {
            TakeLazily(input, lazy);
            if (m_written == 0) throw FileException(kNothing);
            return;
        }
        int count = 0;
        VisitIcons(input, [&](CIconGroup& group, int number, bool only) {
            count = number;
            if (!only && m_options.index && *m_options.index != number) return number < *m_options.index;
            Take(group, number, only);
            return only || !m_options.index;
        });
        if (m_options.index && m_written == 0 && *m_options.index > count && count > 1) {
            throw FileException(fmt::format("there is no icon {}, the last is {}", *m_options.index, count));
        }
        if (m_written == 0) throw FileException(kNothing);
    }

private:
    static int CountLazily(const IconInput& input) {
        int count = 0;
        (void)input.source->visitLazily(input.view.Data(), [&](const LazyIcon&) { return ++count != 0; });
        return count;
    }

    // Out of files with several icons: what can be taken as it stands is not decoded.
    void TakeLazily(const IconInput& input, int count) {
        if (m_options.index && *m_options.index > count) {
            throw FileException(fmt::format("there is no icon {}, the last is {}", *m_options.index, count));
        }
        const ExtractTarget target(m_kind != kKindNone ? m_kind : int{kKindIco});
        if (target.saver) return TakeImages(input, *target.saver);
        VisitChosen(input, [&](const LazyIcon& icon, int number) {
            if (target.IsIco() && m_options.formats.empty()) {
                WriteFile(fmt::format("_{}", number), "ico", icon.IcoFile(),
                          m_options.files.size() > 1 || !m_options.index);
            } else if (const auto group = icon.Load()) {
                Take(*group, number, false);
            }
        });
    }

    template <class Visitor>
    void VisitChosen(const IconInput& input, const Visitor& visitor) const {
        int number = 0;
        (void)input.source->visitLazily(input.view.Data(), [&](const LazyIcon& icon) {
            ++number;
            if (!m_options.index || *m_options.index == number) visitor(icon, number);
            return !m_options.index || number < *m_options.index;
        });
    }

    struct Image {
        int icon;
        std::size_t index;
        std::string name, path, failure;
    };

    // Every image in its own file, on all cores. The names are settled first, in the order of the file.
    void TakeImages(const IconInput& input, const PictureSaver& saver) {
        auto images = ImagesToTake(input, saver);
        const auto jobs = m_run.Options().jobs == 0 ? CoreCount() : m_run.Options().jobs;
        std::atomic<std::size_t> next{0};
        // Each worker goes through the file by itself, since an icon is only there while it is visited.
        ParallelFor(std::min<std::size_t>(jobs, images.size()), jobs, [&](std::size_t) {
            auto mine = next++;
            try {
                VisitChosen(input, [&](const LazyIcon& icon, int number) {
                    for (; mine < images.size() && images[mine].icon == number; mine = next++) {
                        TakeImage(icon, saver, images[mine]);
                    }
                });
            } catch (const std::bad_alloc&) {
                return; // the images that are left say so
            }
        });
        for (const auto& image : images) {
            if (!image.failure.empty()) throw FileException("image " + image.name + ": " + image.failure);
            Written(image.path);
        }
    }

    [[nodiscard]] std::vector<Image> ImagesToTake(const IconInput& input, const PictureSaver& saver) const {
        std::vector<Image> images;
        VisitChosen(input, [&](const LazyIcon& icon, int number) {
            const auto formats = icon.Outline().formats;
            for (std::size_t i = 0; i < formats.size(); ++i) {
                const auto& format = formats[i].format;
                if (!Wanted(format)) continue;
                const auto name = fmt::format("{}_{}x{}x{}", number, format.width, format.height, format.bits);
                images.push_back({number, i, name, {}, kNoMemory});
            }
        });
        const bool several = m_options.files.size() > 1 || images.size() > 1 || !m_options.index;
        for (auto& image : images) {
            image.path = OutputPath(m_run, m_input, "_" + image.name, saver.extension, several);
        }
        return images;
    }

    void TakeImage(const LazyIcon& icon, const PictureSaver& saver, Image& image) const {
        try {
            WriteImage(icon, image.index, saver, image.path);
            image.failure.clear();
        } catch (const FileException& error) {
            image.failure = error.what();
        } catch (const std::bad_alloc&) {
            image.failure = kNoMemory;
        }
    }

    void WriteImage(const LazyIcon& icon, std::size_t index, const PictureSaver& saver, const std::string& path) const {
        const auto png = saver.kind == kKindPng ? icon.PngFile(index) : ByteSpan{};
        if (!png.empty()) return WriteOutput(m_run, path, png);
        CVnIcon loaded;
        Bytes file;
        if (!icon.LoadFormat(index, loaded) || !EncodeImage(loaded, saver, file)) {
            throw FileException("it cannot be made");
        }
        WriteOutput(m_run, path, file);
    }

    [[nodiscard]] bool Wanted(const IconFormat& format) const {
        return m_options.formats.empty() || std::ranges::count(m_options.formats, format) != 0;
    }
    [[nodiscard]] bool Wanted(const CVnIcon& icon) const {
        return Wanted(IconFormat{icon.m_nWidth, icon.m_nHeight, icon.ShownBitCount()});
    }

    // Where a file holds one icon, the index counts its images, as `list` does.
    [[nodiscard]] std::vector<CVnIcon*> Chosen(CIconGroup& group, bool only) const {
        auto icons = IconsForDisplay(group);
        if (only && m_options.index) {
            const auto last = static_cast<int>(icons.size());
            if (*m_options.index > last) {
                throw FileException(fmt::format("there is no image {}, the last is {}", *m_options.index, last));
            }
            icons = {icons[static_cast<std::size_t>(*m_options.index - 1)]};
        }
        std::erase_if(icons, [&](const CVnIcon* icon) { return !Wanted(*icon); });
        return icons;
    }

    void Take(CIconGroup& group, int number, bool only) {
        const ExtractTarget target(m_kind != kKindNone ? m_kind : only ? int{kKindPng} : int{kKindIco});
        const auto prefix = only ? std::string() : fmt::format("_{}", number);
        const auto chosen = Chosen(group, only);
        if (chosen.empty()) return;
        const bool severalIcons = m_options.files.size() > 1 || (!only && !m_options.index);
        if (target.form) {
            WriteIcon(Part(group, chosen), *target.form, prefix, severalIcons);
            return;
        }
        for (const auto* icon : chosen) {
            const auto suffix =
                fmt::format("{}_{}x{}x{}", prefix, icon->m_nWidth, icon->m_nHeight, icon->ShownBitCount());
            Bytes file;
            if (!EncodeImage(*icon, *target.saver, file))
                throw FileException("the image " + suffix.substr(1) + " cannot be made");
            WriteFile(suffix, target.saver->extension, file, severalIcons || chosen.size() > 1);
        }
    }

    // The icon with the chosen formats alone, in saving order.
    static CIconGroup Part(CIconGroup& group, const std::vector<CVnIcon*>& chosen) {
        std::erase_if(group.m_arrIcons, [&](const auto& icon) { return std::ranges::count(chosen, icon.get()) == 0; });
        return std::move(group);
    }

    void WriteIcon(const CIconGroup& icon, const IconFileForm& form, const std::string& suffix, bool several) {
        const auto converted = ConvertToForm(m_run, m_input, icon, form, {});
        const auto path = OutputPath(m_run, m_input, suffix, form.extension, several);
        WriteTo(path, BuildIconFile(converted, form, path));
    }

    void WriteFile(const std::string& suffix, std::string_view extension, ByteSpan file, bool several) {
        WriteTo(OutputPath(m_run, m_input, suffix, extension, several), file);
    }

    void WriteTo(const std::string& path, ByteSpan file) {
        WriteOutput(m_run, path, file);
        Written(path);
    }

    void Written(const std::string& path) {
        ++m_written;
        if (!m_run.Options().dryRun && path != "-") m_run.Note(Printable(path));
    }

    Run& m_run;
    const ExtractOptions& m_options;
    const std::string& m_input;
    const int m_kind; ///< what to write; `kKindNone`: whole icons of files with several, else PNG
    int m_written = 0;
};

} // namespace

VerbAction SetUpExtract(VerbSetup& setup) {
    auto options = std::make_shared<ExtractOptions>();
    setup.Inputs("FILE", options->files, "files that carry icons");
    setup.MakesFiles();
    setup.Number("--index", options->index, 1, 1 << 30,
                 "only this icon, or, of a file with one icon, this image; numbers as list shows them");
    setup.Flag("--all", options->all, "everything (the default)");
    setup.Option("--format", options->formats, "WxHxBITS,...", "only images of these formats");
    auto kinds = PictureFormatChoices();
    kinds.insert(kinds.end(), {{"ico", kKindIco}, {"icns", kKindIcns}, {"rsrc", kKindRsrc}, {"bin", kKindMacBinary}});
    setup.Choice("--as", options->as, std::move(kinds),
                 "what to write: images, or whole icons (default: by the name of the output; else ico from files with "
                 "several icons, png from others)");
    return [options](Run& run) {
        if (options->all && options->index) throw UsageError("--index and --all exclude each other");
        run.ForEach(options->files, [&](const std::string& file) { Extraction(run, *options, file).Go(); });
    };
}

} // namespace pelorin::cli
