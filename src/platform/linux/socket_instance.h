// One workbench a person, over a local socket.
//
// The first start holds a lock on "pelorin.lock" and listens at "pelorin.sock" beside it; a lock goes away with its
// process, so a crash leaves nothing behind that would keep the next start out. A message is every argument with a zero
// byte behind it, and the sender closes.
#pragma once

#include "platform/single_instance.h"

#include <string>

namespace pelorin {

class SocketInstance final : public SingleInstance {
public:
    /// `folder` is this person's alone ($XDG_RUNTIME_DIR); it is made when missing.
    explicit SocketInstance(std::string folder);
    ~SocketInstance() override;
    SocketInstance(const SocketInstance&) = delete;
    SocketInstance& operator=(const SocketInstance&) = delete;

    [[nodiscard]] bool Claim() override;
    bool HandOver(const CommandLine& arguments) override;
    [[nodiscard]] std::vector<CommandLine> Receive() override;
    [[nodiscard]] int Descriptor() const override { return m_listener; }

private:
    [[nodiscard]] bool Listen();

    std::string m_folder;
    int m_lock = -1;
    int m_listener = -1;
};

} // namespace pelorin
