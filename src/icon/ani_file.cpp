#include "icon/ani_file.h"

#include "icon/ani_chunks.h"
#include "icon/frame_image.h"
#include "icon/icon_picture32.h"

#include <climits>
#include <fmt/format.h>

namespace pelorin {

namespace {

// A frame lies whole in memory, so one whose pixels are not all there is damaged.
bool ReadFirstImage(ByteSpan icoFile, FrameImage& image) {
    IcoDirectory directory;
    return ReadIcoDirectory(icoFile, directory) &&
           ReadFrameImage(icoFile, directory.entries.front(), ShortImage::Refuse, image);
}

std::int64_t PixelsOf(const CIconGroup& group) {
    std::int64_t pixels = 0;
    for (const auto& icon : group.m_arrIcons) pixels += std::int64_t{icon->m_nWidth} * icon->m_nHeight;
    return pixels;
}

// The steps that have a frame, in order.
std::vector<AniStep> ShownSteps(const AniChunks& ani) {
    std::vector<AniStep> shown;
    std::copy_if(ani.steps.begin(), ani.steps.end(), std::back_inserter(shown),
                 [](const AniStep& step) { return step.frame >= 0; });
    return shown;
}

bool AppendStep(const AniChunks& ani, const AniStep& step, std::vector<CAniObject>& list, std::int64_t& pixels) {
    FrameImage image;
    if (!ReadFirstImage(ani.FrameFile(step.frame), image)) return false;
    // A short file can show one large frame as often as it likes.
    pixels += std::int64_t{image.icon.m_nWidth} * image.icon.m_nHeight;
    if (pixels > kMaxPixels) return false;
    CDIB dib(IconPicture32(image.icon));
    if (dib.Empty()) return false;
    dib.m_nFrameRate = static_cast<int>(step.rate);
    list.emplace_back(std::move(dib));
    return true;
}

} // namespace

int ReadAniFile(ByteSpan file, std::vector<CAniObject>& list, AniInfo* info) {
    AniChunks ani;
    if (!ReadAniChunks(file, ani)) return 0;
    std::vector<CAniObject> read;
    std::int64_t pixels = 0;
    for (const auto& step : ShownSteps(ani)) {
        if (!AppendStep(ani, step, read, pixels)) return 0;
    }
    if (info) *info = ani.info;
    std::move(read.begin(), read.end(), std::back_inserter(list));
    return static_cast<int>(read.size());
}

bool ReadAniPreview(ByteSpan file, CIconGroup& group) {
    AniChunks ani;
    return ReadAniChunks(file, ani) && !ani.frames.empty() && ReadIcoGroup(ani.FrameFile(0), group);
}

DibBlock ReadAni(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    AniChunks ani;
    if (request.layer > 0 || request.frame < 0 || !ReadAniChunks(file, ani)) return {};
    const auto steps = ShownSteps(ani);
    if (static_cast<std::size_t>(request.frame) >= steps.size()) {
        facts.frames = static_cast<int>(steps.size());
        return {};
    }
    const auto& step = steps[static_cast<std::size_t>(request.frame)];
    FrameImage image;
    if (!ReadFirstImage(ani.FrameFile(step.frame), image)) return {};
    facts.bits = image.bits;
    facts.frames = static_cast<int>(steps.size());
    facts.delay = static_cast<int>(step.rate);
    for (const auto& shown : steps)
        facts.delaysMs.push_back(
            static_cast<int>(std::min<std::uint64_t>(shown.rate * std::uint64_t{50} / 3, INT_MAX)));
    return IconPicture32(image.icon);
}

bool VisitAniFrames(ByteSpan file, const IconVisitor& visitor) {
    AniChunks ani;
    if (!ReadAniChunks(file, ani) || ani.frames.empty()) return false;
    std::int64_t pixels = 0;
    for (int i = 0; i < static_cast<int>(ani.frames.size()); ++i) {
        CIconGroup group;
        if (!ReadIcoGroup(ani.FrameFile(i), group)) return false;
        pixels += PixelsOf(group);
        if (pixels > kMaxPixels) return false;
        if (!visitor(group)) return true;
    }
    return true;
}

void InspectAni(ByteSpan file, IconFileReport& report) {
    AniChunks ani;
    if (!ReadAniChunks(file, ani)) {
        report.oddities.push_back("the file has no icon frames, or it is damaged");
        return;
    }
    const auto fact = [&](const char* name, const auto& value) { report.facts.emplace_back(name, value); };
    fact("frames", ani.frames.size());
    fact("steps", ani.steps.size());
    fact("default_rate", ani.header.rate);
    if (!ani.info.title.empty()) fact("title", ani.info.title);
    if (!ani.info.artist.empty()) fact("artist", ani.info.artist);
    if (ani.header.frames != ani.frames.size())
        report.oddities.push_back(
            fmt::format("the header says {} frames, the file has {}", ani.header.frames, ani.frames.size()));
    const auto missing = ani.steps.size() - ShownSteps(ani).size();
    if (missing > 0) report.oddities.push_back(fmt::format("{} steps show frames that are not there", missing));
}

} // namespace pelorin
