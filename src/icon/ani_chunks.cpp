#include "icon/ani_chunks.h"

#include "base/text.h"
#include "icon/riff.h"

namespace pelorin {

namespace {

constexpr std::size_t kHeaderBytes = 36, kMostInfoBytes = 80, kChunkHead = 8;
constexpr std::uint32_t kIconFrames = 1;
// Of a frame in memory.
constexpr std::size_t kNotes = 32, kFrameSlack = 36, kSumAt = 12, kIdAt = 24, kLengthAt = 28;

bool ReadHeader(ByteSpan chunk, std::size_t fileSize, AniChunks& ani) {
    ByteReader in(chunk);
    auto& h = ani.header;
    for (auto* field : {&h.headerSize, &h.frames, &h.steps, &h.width, &h.height, &h.bits, &h.planes, &h.rate, &h.flags})
        *field = in.U32LE();
    if (chunk.size() < kHeaderBytes || (h.flags & kIconFrames) == 0 || h.frames == 0) return false;
    // A step without bytes of its own needs a frame, and a frame has at least a chunk's head.
    if (h.steps > fileSize / 4) return false;
    ani.steps.assign(h.steps, {});
    for (std::uint32_t i = 0; i < h.steps; ++i) ani.steps[i] = {h.rate, i, -1};
    ani.info.defaultRate = static_cast<int>(h.rate);
    return true;
}

void ReadTable(ByteSpan chunk, std::vector<AniStep>& steps, std::uint32_t AniStep::*field) {
    ByteReader in(chunk);
    for (auto& step : steps) {
        if (in.Left() < 4) return;
        step.*field = in.U32LE();
    }
}

// Steps take the frames that their numbers mean at this time: a sequence behind the frames comes too late.
bool ReadFrames(ByteReader& in, AniChunks& ani) {
    for (RiffChunk chunk; ChunkReadHeader(in, chunk);) {
        if (chunk.id != "icon") {
            ChunkSkip(in, chunk);
            continue;
        }
        ani.frames.push_back(ReadIconFrame(in, chunk.size));
        if (ani.frames.back().empty()) return false;
        (void)in.TakeUpTo(chunk.size & 1);
    }
    for (auto& step : ani.steps) {
        if (step.sequence < ani.frames.size()) step.frame = static_cast<int>(step.sequence);
    }
    return true;
}

std::string InfoText(ByteSpan bytes) {
    const auto text = AsText(bytes);
    return DecodeText(text.substr(0, text.find('\0')));
}

void ReadInfo(ByteReader& in, AniInfo& info) {
    for (RiffChunk chunk; ChunkReadHeader(in, chunk);) {
        auto* text = chunk.id == "INAM" ? &info.title : chunk.id == "IART" ? &info.artist : nullptr;
        if (text) {
            *text = InfoText(ChunkReadLimited(in, chunk, kMostInfoBytes));
        } else {
            ChunkSkip(in, chunk);
        }
    }
}

// False when a frame is cut off. A file has one list of frames.
bool ReadList(ByteReader& in, AniChunks& ani) {
    const auto kind = AsText(in.Take(4));
    if (kind == "fram" && ani.frames.empty()) return ReadFrames(in, ani);
    if (kind == "INFO") ReadInfo(in, ani.info);
    return true;
}

// Some writers count more bytes for a list than it has: what is left of it is then too short for a chunk, and the next
// chunk of the file begins there.
void ReturnToNextChunk(ByteReader& in, std::size_t listEnd, const ByteReader& list) {
    if (list.AtEnd() || list.Left() >= kChunkHead) return;
    const auto behind = in.Pos();
    in.Seek(listEnd - list.Left());
    for (const std::string_view id : {"anih", "rate", "seq ", "LIST"}) {
        if (in.StartsWith(id)) return;
    }
    in.Seek(behind);
}

// False for a chunk that ends the reading.
bool ReadChunk(ByteReader& in, const RiffChunk& chunk, AniChunks& ani) {
    const auto data = in.TakeUpTo(chunk.size);
    const auto end = in.Pos();
    (void)in.TakeUpTo(chunk.size & 1);
    if (chunk.id == "anih" && ani.header.frames == 0) return ReadHeader(data, in.Size(), ani);
    if (chunk.id == "rate") ReadTable(data, ani.steps, &AniStep::rate);
    if (chunk.id == "seq ") ReadTable(data, ani.steps, &AniStep::sequence);
    if (chunk.id != "LIST") return true;
    ByteReader list(data);
    if (data.size() != chunk.size || !ReadList(list, ani)) return false;
    ReturnToNextChunk(in, end, list);
    return true;
}

} // namespace

Bytes ReadIconFrame(ByteReader& in, std::uint32_t bytes) {
    if (!in.Ok() || in.Left() < bytes) return {};
    Bytes frame(bytes + kFrameSlack);
    const auto file = in.Take(bytes);
    std::copy(file.begin(), file.end(), frame.begin() + kNotes);
    StoreU32LE(&frame[kSumAt], Checksum(file));
    std::memcpy(&frame[kIdAt], "icon", 4);
    StoreU32LE(&frame[kLengthAt], bytes);
    return frame;
}

ByteSpan AniChunks::FrameFile(int frame) const {
    const ByteSpan bytes = frames[static_cast<std::size_t>(frame)];
    return bytes.subspan(kNotes, LoadU32LE(&bytes[kLengthAt]));
}

bool IsAni(ByteSpan file) {
    ByteReader in(file);
    RiffChunk riff;
    return ChunkReadHeader(in, riff) && riff.id == "RIFF" && in.StartsWith("ACON");
}

bool ReadAniChunks(ByteSpan file, AniChunks& ani) {
    ani = {};
    if (!IsAni(file)) return false;
    ByteReader in(file);
    in.Seek(12);
    for (RiffChunk chunk; ChunkReadHeader(in, chunk);) {
        if (!ReadChunk(in, chunk, ani)) return false;
    }
    return true;
}

} // namespace pelorin
