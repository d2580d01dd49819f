#include "pixel/convolve.h"

namespace pelorin {

namespace {

constexpr std::int32_t kSmoothWeights[] = {1, 1, 1, 1, 8, 1, 1, 1, 1};
constexpr std::int32_t kSmoothMoreWeights[] = {1, 1, 1, 1, 1, 1, 5, 5, 5, 1, 1, 5, 20,
                                               5, 1, 1, 5, 5, 5, 1, 1, 1, 1, 1, 1};
constexpr std::int32_t kBlurWeights[] = {1, 1, 1, 1, 0, 1, 1, 1, 1};
constexpr std::int32_t kBlurMoreWeights[] = {2, 2, 2, 2, 2, 2, 1, 1, 1, 2, 2, 1, 0, 1, 2, 2, 1, 1, 1, 2, 2, 2, 2, 2, 2};
constexpr std::int32_t kSharpenWeights[] = {-2, -2, -2, -2, 32, -2, -2, -2, -2};
constexpr std::int32_t kSharpenMoreWeights[] = {-4, -4, -4, -4, 64, -4, -4, -4, -4};
constexpr std::int32_t kDetailsWeights[] = {0, -1, 0, -1, 10, -1, 0, -1, 0};
constexpr std::int32_t kEdgeWeights[] = {-1, -1, -1, -1, 8, -1, -1, -1, -1};
constexpr std::int32_t kEnhanceWeights[] = {-1, -1, -1, -1, 10, -1, -1, -1, -1};
constexpr std::int32_t kEnhanceMoreWeights[] = {-1, -1, -1, -1, 9, -1, -1, -1, -1};
constexpr std::int32_t kEmbossWeights[] = {-1, 0, 0, 0, 1, 0, 0, 0, 0};
constexpr std::int32_t kFineDetailsWeights[] = {0, -1, 0, -1, 14, -1, 0, -1, 0};

} // namespace

constexpr ConvolutionKernel kSmooth{3, 3, 16, 0, kSmoothWeights};
constexpr ConvolutionKernel kSmoothMore{5, 5, 76, 0, kSmoothMoreWeights};
constexpr ConvolutionKernel kBlur{3, 3, 8, 0, kBlurWeights};
constexpr ConvolutionKernel kDetails{3, 3, 6, 0, kDetailsWeights};

namespace {

constexpr Filter kFilters[] = {
    {"Smooth", 1, kSmooth},
    {"Smooth More", 2, kSmoothMore},
    {"Blur", 3, kBlur},
    {"Blur More", 4, {5, 5, 40, 0, kBlurMoreWeights}},
    {"Sharpen", 5, {3, 3, 16, 0, kSharpenWeights}},
    {"Sharpen More", 6, {3, 3, 32, 0, kSharpenMoreWeights}},
    {"Details", 7, kDetails},
    {"Find Edges", 8, {3, 3, 1, 0, kEdgeWeights}},
    {"Enhance Edges", 9, {3, 3, 2, 0, kEnhanceWeights}},
    {"Enhance Edges More", 10, {3, 3, 1, 0, kEnhanceMoreWeights}},
    {"Contour", 11, {3, 3, 1, 255, kEdgeWeights}},
    {"Emboss", 12, {3, 3, 1, 128, kEmbossWeights}},
    {"Fine Details", 0, {3, 3, 10, 0, kFineDetailsWeights}},
};

char Plain(char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
    return c == '_' || c == '-' ? ' ' : c;
}

} // namespace

std::span<const Filter> Filters() {
    return kFilters;
}

const Filter* FindFilter(int number) {
    for (const auto& filter : kFilters) {
        if (number != 0 && filter.number == number) return &filter;
    }
    return nullptr;
}

const Filter* FindFilter(std::string_view name) {
    const auto same = [](char a, char b) { return Plain(a) == Plain(b); };
    for (const auto& filter : kFilters) {
        if (std::equal(filter.name.begin(), filter.name.end(), name.begin(), name.end(), same)) return &filter;
    }
    return nullptr;
}

} // namespace pelorin
