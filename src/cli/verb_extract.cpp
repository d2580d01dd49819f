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
        int count = 0;
        VisitIcons(OpenIconInput(m_input), [&](CIconGroup& group, int number, bool only) {
            count = number;
            if (!only && m_options.index && *m_options.index != number) return number < *m_options.index;
            Take(group, number, only);
            return only || !m_options.index;
        });
        if (m_options.index && m_written == 0 && *m_options.index > count && count > 1) {
            throw FileException(fmt::format("there is no icon {}, the last is {}", *m_options.index, count));
        }
        if (m_written == 0) throw FileException("nothing in it is what was asked for");
    }

private:
    [[nodiscard]] bool Wanted(const CVnIcon& icon) const {
        const IconFormat format{icon.m_nWidth, icon.m_nHeight, icon.ShownBitCount()};
        return m_options.formats.empty() || std::ranges::count(m_options.formats, format) != 0;
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
        const auto path = OutputPath(m_run, m_input, product.suffix,
                                     as == kAsIcon ? "ico" : PictureSaverOfKind(as)->extension, several);
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
