// The old file on its way to the new one's place, on a thread of its own, while what changes in it is still being made.
#pragma once

#include "base/files.h"

#include <atomic>
#include <thread>

namespace pelorin {

class CopyAhead {
public:
    /// `old`, the bytes of the file `source`, must live as long as this object. The new file gets the old one's mode
    /// bits. Throws `FileException` when there is no way to the target, of which nothing is touched.
    CopyAhead(std::string_view target, std::string_view source, ByteSpan old);
    ~CopyAhead() { Stop(); }
    CopyAhead(const CopyAhead&) = delete;
    CopyAhead& operator=(const CopyAhead&) = delete;

    void Start();
    /// Ends the copying, if it was begun, and makes the file one of these pieces: those of the old file that have been
    /// copied to their places already are not written again. Throws `FileException`.
    void Finish(std::span<const ByteSpan> pieces);

private:
    void Run() noexcept;
    void Stop();

    SafeFile m_file;
    ByteSpan m_old;
    std::size_t m_copied = 0;
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};

} // namespace pelorin
