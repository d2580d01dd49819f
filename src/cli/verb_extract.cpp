#include "base/parallel.h"
#include "cli/icon_input.h"
#include "cli/output.h"
#include "cli/verb.h"
#include "formats/save_image.h"
#include "icon/ico_file.h"

#include <fmt/format.h>

#include <algorithm>

namespace pelorin::cli {

namespace {

constexpr int kAsIcon = kKindIco;
constexpr const char* kNothing = "nothing in it is what was asked for";

struct ExtractOptions {
    std::vector<std::string> files;
    std::optional<int> index;
    bool all = false;
    std::vector<IconFormat> formats;
    std::optional<int> as; ///< a file kind
};

// One file to write: whole icons hold several images.
struct Product {
    std::string suffix;
    std::vector<CVnIcon*> icons;
};

class Extraction {
public:
    Extraction(Run& run, const ExtractOptions& options, const std::string& input)
        : m_run(run), m_options(options), m_input(input) {}

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
        int number = 0;
        (void)input.source->visitLazily(input.view.Data(), [&](const LazyIcon& icon) {
            ++number;
            if (!m_options.index || *m_options.index == number) TakeOneLazily(icon, number);
            return !m_options.index || number < *m_options.index;
        });
    }

    void TakeOneLazily(const LazyIcon& icon, int number) {
        const int as = m_options.as.value_or(kAsIcon);
        if (as != kAsIcon) {
            TakeImages(icon, as, number);
        } else if (m_options.formats.empty()) {
            WriteFile(fmt::format("_{}", number), "ico", icon.IcoFile(),
                      m_options.files.size() > 1 || !m_options.index);
        } else if (const auto group = icon.Load()) {
            Take(*group, number, false);
        }
    }

    // The images of one icon, each in its own file, on all cores.
    void TakeImages(const LazyIcon& icon, int as, int number) {
        struct Image {
            std::size_t index;
            IconFormat format;
            Bytes file;
        };
        std::vector<Image> images;
        const auto formats = icon.Outline().formats;
        for (std::size_t i = 0; i < formats.size(); ++i) {
            if (Wanted(formats[i].format)) images.push_back({i, formats[i].format, {}});
        }
        ParallelFor(images.size(), m_run.Options().jobs, [&](std::size_t i) {
            auto& image = images[i];
            const auto png = as == kKindPng ? icon.PngFile(image.index) : ByteSpan{};
            image.file.assign(png.begin(), png.end());
            CVnIcon loaded;
            if (!image.file.empty() || !icon.LoadFormat(image.index, loaded)) return;
            if (EncodePicture(IconBlockPicture(loaded.m_hImage), as, {}, image.file) != 0) image.file.clear();
        });
        const bool several = m_options.files.size() > 1 || images.size() > 1 || !m_options.index;
        for (const auto& image : images) {
            const auto suffix =
                fmt::format("_{}_{}x{}x{}", number, image.format.width, image.format.height, image.format.bits);
            if (image.file.empty()) throw FileException("the image " + suffix.substr(1) + " cannot be made");
            WriteFile(suffix, PictureSaverOfKind(as)->extension, image.file, several);
        }
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
        const int as = m_options.as.value_or(only ? int{kKindPng} : kAsIcon);
        const auto prefix = only ? std::string() : fmt::format("_{}", number);
        const auto chosen = Chosen(group, only);
        std::vector<Product> products;
        if (as == kAsIcon && !chosen.empty()) {
            products.push_back({prefix, InSavingOrder(group, chosen)});
        } else {
            for (auto* icon : chosen) {
                products.push_back(
                    {fmt::format("{}_{}x{}x{}", prefix, icon->m_nWidth, icon->m_nHeight, icon->ShownBitCount()),
                     {icon}});
            }
        }
        const bool several = m_options.files.size() > 1 || products.size() > 1 || (!only && !m_options.index);
        for (const auto& product : products) Write(product, as, several);
    }

    static std::vector<CVnIcon*> InSavingOrder(const CIconGroup& group, const std::vector<CVnIcon*>& chosen) {
        std::vector<CVnIcon*> ordered;
        for (const auto& icon : group.m_arrIcons) {
            if (std::ranges::count(chosen, icon.get()) != 0) ordered.push_back(icon.get());
        }
        return ordered;
    }

    void Write(const Product& product, int as, bool several) {
        Bytes file;
        if (as == kAsIcon) {
            file = BuildIcoFile(product.icons);
        } else if (EncodePicture(IconBlockPicture(product.icons.front()->m_hImage), as, {}, file) != 0) {
            file.clear();
        }
        if (file.empty()) throw FileException("the image " + product.suffix.substr(1) + " cannot be made");
        WriteFile(product.suffix, as == kAsIcon ? "ico" : PictureSaverOfKind(as)->extension, file, several);
    }

    void WriteFile(const std::string& suffix, std::string_view extension, ByteSpan file, bool several) {
        const auto path = OutputPath(m_run, m_input, suffix, extension, several);
        WriteOutput(m_run, path, file);
        ++m_written;
        if (!m_run.Options().dryRun && path != "-") m_run.Note(Printable(path));
    }

    Run& m_run;
    const ExtractOptions& m_options;
    const std::string& m_input;
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
    setup.Choice<std::optional<int>>(
        "--as", options->as, {{"png", kKindPng}, {"bmp", kKindBmp}, {"ico", kAsIcon}},
        "what to write: images, or whole icons (default: ico from files with several icons, else png)");
    return [options](Run& run) {
        if (options->all && options->index) throw UsageError("--index and --all exclude each other");
        run.ForEach(options->files, [&](const std::string& file) { Extraction(run, *options, file).Go(); });
    };
}

} // namespace pelorin::cli
