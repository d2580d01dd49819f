#include "cli/picture_chain.h"

#include "app/picture_settings.h"
#include "cli/suggestion.h"
#include "formats/bmp.h"
#include "formats/load_file.h"
#include "pixel/adjust.h"
#include "production/picture_steps.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

template <class T>
T Value(std::string_view text) {
    T value{};
    ParseValue(text, value);
    return value;
}

int Within(int value, int low, int high) {
    if (value < low || value > high) throw UsageError(fmt::format("{} is not between {} and {}", value, low, high));
    return value;
}

int Percent(std::string_view text) {
    return Within(Value<int>(text), -100, 100);
}

template <Surface (*Adjust)(const Surface&, int)>
PictureStep MakeAdjustment(std::string_view text, const StepWords&) {
    return [value = Percent(text)](const DibBlock& block) { return AdjustPicture(block, Adjust, value); };
}

PictureStep MakeHue(std::string_view text, const StepWords&) {
    return [value = Within(Value<int>(text), -360, 360)](const DibBlock& block) {
        return AdjustPicture(block, HueShift, value);
    };
}

PictureStep MakeResize(std::string_view text, const StepWords&) {
    return [size = Value<Size>(text)](const DibBlock& block) { return ResizePicture(block, size); };
}

PictureStep MakeFit(std::string_view text, const StepWords&) {
    return [size = Value<Size>(text)](const DibBlock& block) { return FitPicture(block, size); };
}

PictureStep MakeCrop(std::string_view text, const StepWords&) {
    const auto v = Value<std::vector<int>>(text);
    if (v.size() != 4 || v[2] < 1 || v[3] < 1) throw UsageError("left, top, width and height are wanted: 8,8,32,32");
    return [v](const DibBlock& block) { return CropPicture(block, {v[0], v[1]}, {v[2], v[3]}); };
}

PictureStep MakeSquare(std::string_view, const StepWords&) {
    return SquarePicture;
}

PictureStep MakeRotate(std::string_view text, const StepWords& words) {
    return [degrees = Value<double>(text), smooth = words.smooth](const DibBlock& block) {
        return RotatePicture(block, degrees, smooth);
    };
}

PictureStep MakeFlip(std::string_view text, const StepWords&) {
    if (text != "h" && text != "v") throw UsageError("h (left to right) or v (upside down) is wanted");
    return [vertical = text == "v"](const DibBlock& block) { return FlipPicture(block, vertical); };
}

PictureStep MakeFilter(std::string_view text, const StepWords&) {
    const auto* filter = FindFilter(text);
    if (!filter) {
        std::vector<std::string> names;
        for (const auto& row : Filters()) names.emplace_back(row.name);
        throw UsageError(fmt::format("\"{}\" is none of {}{}", text, fmt::join(names, ", "), DidYouMean(text, names)));
    }
    return [filter](const DibBlock& block) { return FilterPicture(block, *filter); };
}

PictureStep MakeColorize(std::string_view text, const StepWords&) {
    const auto v = Value<std::vector<int>>(text);
    if (v.size() > 2) throw UsageError("a hue and a saturation are wanted: 210,60");
    return [hue = Within(v[0], 0, 360), saturation = v.size() > 1 ? Within(v[1], 0, 100) : 50](const DibBlock& block) {
        return ColorizePicture(block, hue, saturation);
    };
}

PictureStep MakeOpacity(std::string_view text, const StepWords&) {
    return [value = Percent(text)](const DibBlock& block) { return ChangeOpacity(block, value); };
}

PictureStep MakeInvert(std::string_view, const StepWords&) {
    return InvertPicture;
}

constexpr ChoiceRow<PaletteKind> kPalettes[] = {{"adaptive", PaletteKind::Adaptive},
                                                {"web", PaletteKind::WebSafe},
                                                {"windows", PaletteKind::Windows},
                                                {"mac", PaletteKind::MacOs}};

// The table of a picture file. A bitmap file is read as it stands, since as a picture it would lose its table.
std::vector<Rgb> ReadPalette(const std::string& path) {
    PictureFacts facts;
    auto block = ReadDIBFile(path);
    if (!block) block = LoadPicture(path, {}, facts);
    auto colors = CreateDIBPalette(block).colors;
    if (colors.empty()) {
        throw UsageError(
            fmt::format("\"{}\" is neither adaptive, web, windows or mac nor a picture with a palette", path));
    }
    return colors;
}

PictureStep MakeReduce(std::string_view text, const StepWords& words) {
    const int colors = Within(Value<int>(text), 2, 256);
    const bool dither = words.dither;
    const std::string_view wanted = words.palette.empty() ? kPalettes[0].word : std::string_view(words.palette);
    for (const auto& [word, kind] : kPalettes) {
        if (word != wanted) continue;
        return
            [colors, dither, kind = kind](const DibBlock& block) { return ReducePicture(block, colors, kind, dither); };
    }
    return [colors, dither, palette = ReadPalette(words.palette)](const DibBlock& block) {
        return ReducePicture(block, colors, palette, dither);
    };
}

PictureStep MakeMono(std::string_view, const StepWords& words) {
    return [dither = words.dither](const DibBlock& block) { return MonoPicture(block, dither); };
}

PictureStep MakeDepth(std::string_view text, const StepWords&) {
    const auto comma = text.find(',');
    const auto bits = text.substr(0, comma);
    if (text == "32") return WidenPicture;
    if (bits != "24") throw UsageError("32, 24, or 24 and the colour of the background are wanted: 24,FFFFFF");
    const Rgb background = comma == std::string_view::npos ? RgbFromColorRef(PictureSettings().background)
                                                           : Value<Color>(text.substr(comma + 1)).Rgb();
    return [background](const DibBlock& block) { return FlattenPicture(block, background); };
}

PictureStep MakeKey(std::string_view text, const StepWords&) {
    const auto comma = text.find(',');
    const auto key = Value<Color>(text.substr(0, comma)).Rgb();
    if (comma == std::string_view::npos) return [key](const DibBlock& block) { return KeyPicture(block, key); };
    const int tolerance = Within(Value<int>(text.substr(comma + 1)), 0, 1530);
    return [key, tolerance](const DibBlock& block) { return KeyPicture(block, key, tolerance); };
}

PictureStep MakeShadow(std::string_view, const StepWords&) {
    return ShadowPicture;
}

constexpr PictureOperation kOperations[] = {
    {"resize", "WxH", "scale to exactly this size", "", MakeResize},
    {"fit", "WxH", "scale to the largest size of the same proportions inside this one", "", MakeFit},
    {"crop", "X,Y,W,H", "cut out the part of W x H pixels from column X and row Y on", "", MakeCrop},
    {"square", "", "centre on a transparent square", "", MakeSquare},
    {"rotate", "DEG", "turn counterclockwise", "smooth", MakeRotate},
    {"flip", "h|v", "mirror left to right (h) or upside down (v)", "", MakeFlip},
    {"filter", "NAME",
     "smooth, smooth-more, blur, blur-more, sharpen, sharpen-more, details, find-edges, enhance-edges, "
     "enhance-edges-more, contour, emboss",
     "", MakeFilter},
    {"brightness", "N", "-100 to 100", "", MakeAdjustment<Brightness>},
    {"contrast", "N", "-100 to 100", "", MakeAdjustment<Contrast>},
    {"hue", "DEG", "turn all hues, -360 to 360", "", MakeHue},
    {"saturation", "N", "-100 to 100", "", MakeAdjustment<Saturation>},
    {"colorize", "HUE[,SAT]", "one hue (0 to 360) and saturation (0 to 100, default 50) for all pixels", "",
     MakeColorize},
    {"opacity", "N", "-100 to 100", "", MakeOpacity},
    {"invert", "", "the negative", "", MakeInvert},
    {"reduce", "N", "reduce to a palette of N colours (2 to 256)", "palette dither", MakeReduce},
    {"mono", "", "black and white", "dither", MakeMono},
    {"depth", "32|24[,COLOR]", "32 bits, or 24 with transparency composed on a colour", "", MakeDepth},
    {"key", "RRGGBB[,TOL]", "make a colour transparent: softly by hue and lightness, or sharply within a tolerance", "",
     MakeKey},
    {"shadow", "", "add a shadow", "", MakeShadow},
};

struct WordRow {
    std::string_view name, metavar, help;
};
constexpr WordRow kWords[] = {
    {"smooth", "", "behind --rotate: smooth edges"},
    {"palette", "NAME", "behind --reduce: adaptive (default), web, windows, mac, or a picture file with a palette"},
    {"dither", "", "behind --reduce or --mono: diffuse the error"},
};

const PictureOperation* FindOperation(std::string_view name) {
    for (const auto& row : kOperations) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

void TakeWord(const OrderedOption& word, const PictureOperation* operation, StepWords& words) {
    if (!operation || operation->words.find(word.name) == std::string_view::npos) {
        throw UsageError(fmt::format("--{} stands behind the operation that it belongs to; see --help", word.name));
    }
    if (word.name == "smooth") words.smooth = true;
    if (word.name == "dither") words.dither = true;
    if (word.name == "palette") words.palette = word.value;
}

} // namespace

void AddPictureOperations(VerbSetup& setup, std::vector<OrderedOption>& list) {
    for (const auto& row : kOperations) setup.Ordered(fmt::format("--{}", row.name), row.metavar, list, row.help);
    for (const auto& row : kWords) setup.Ordered(fmt::format("--{}", row.name), row.metavar, list, row.help);
}

std::vector<NamedStep> MakePictureChain(const std::vector<OrderedOption>& list) {
    std::vector<NamedStep> chain;
    for (std::size_t i = 0; i < list.size();) {
        const auto& option = list[i++];
        const auto* operation = FindOperation(option.name);
        StepWords words;
        if (!operation) TakeWord(option, nullptr, words);
        for (; i < list.size() && !FindOperation(list[i].name); ++i) TakeWord(list[i], operation, words);
        try {
            chain.push_back({fmt::format("--{}{}{}", option.name, option.value.empty() ? "" : " ", option.value),
                             operation->make(option.value, words)});
        } catch (const UsageError& error) {
            throw UsageError(fmt::format("--{}: {}", option.name, error.what()));
        }
    }
    return chain;
}

} // namespace pelorin::cli
