#include "containers/copy_ahead.h"

#include <algorithm>

namespace pelorin {

CopyAhead::CopyAhead(std::string_view target, std::string_view source, ByteSpan old) : m_file(target), m_old(old) {
    m_file.TakeModeOf(source);
}

void CopyAhead::Start() {
    m_thread = std::thread(&CopyAhead::Run, this);
}

void CopyAhead::Run() noexcept {
    constexpr std::size_t kPart = std::size_t{1} << 20;
    try {
        while (!m_stop && m_copied < m_old.size()) {
            const auto rest = m_old.subspan(m_copied);
            const auto part = rest.first(std::min(kPart, rest.size()));
            m_file.Write(part);
            m_copied += part.size();
        }
    } catch (const FileException&) {
        return; // what could not be written now will fail again, where it is told
    }
}

void CopyAhead::Stop() {
    m_stop = true;
    if (m_thread.joinable()) m_thread.join();
}

void CopyAhead::Finish(std::span<const ByteSpan> pieces) {
    Stop();
    std::size_t place = 0;
    m_file.Seek(0);
    for (auto piece : pieces) {
        const bool stays = place < m_copied && piece.data() == m_old.data() + place;
        const auto there = stays ? std::min(piece.size(), m_copied - place) : 0;
        if (there != 0) m_file.Seek(place + there);
        m_file.Write(piece.subspan(there));
        place += piece.size();
    }
    m_file.EndHere();
    m_file.Commit();
}

} // namespace pelorin
