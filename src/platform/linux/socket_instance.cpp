#include "platform/linux/socket_instance.h"

#include "base/files.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace pelorin {

namespace {

constexpr std::size_t kMostBytes = 1u << 20;
constexpr timeval kPatience{2, 0};

class Socket {
public:
    explicit Socket(int descriptor) : m_descriptor(descriptor) {}
    ~Socket() {
        if (m_descriptor >= 0) close(m_descriptor);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    [[nodiscard]] int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

// False when the path is too long for a socket's name.
bool Address(const std::string& folder, sockaddr_un& address) {
    const auto path = folder + "pelorin.sock";
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

const sockaddr* AsAddress(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

bool IsSamePerson(int connection) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == getuid();
}

bool SendAll(int connection, const std::string& message) {
    for (std::size_t sent = 0; sent < message.size();) {
        const auto count = send(connection, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

// Up to the sender's end; what does not end with a zero byte is not whole.
CommandLine ReadArguments(int connection) {
    std::string message;
    std::array<char, 4096> part{};
    for (;;) {
        const auto count = recv(connection, part.data(), part.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return {};
        if (count == 0) break;
        message.append(part.data(), static_cast<std::size_t>(count));
        if (message.size() > kMostBytes) return {};
    }
    CommandLine arguments;
    if (message.empty() || message.back() != '\0') return arguments;
    for (std::size_t start = 0; start < message.size();) {
        const auto end = message.find('\0', start);
        arguments.push_back(message.substr(start, end - start));
        start = end + 1;
    }
    return arguments;
}

} // namespace

SocketInstance::SocketInstance(std::string folder) : m_folder(JoinPath(folder, "")) {}

SocketInstance::~SocketInstance() {
    sockaddr_un address{};
    if (m_listener >= 0) {
        close(m_listener);
        if (Address(m_folder, address)) unlink(address.sun_path);
    }
    if (m_lock >= 0) close(m_lock);
}

bool SocketInstance::Claim() {
    if (m_lock >= 0) return true;
    (void)CreateFolders(m_folder);
    const int lock = open((m_folder + "pelorin.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock < 0) return true; // no way to know
    if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
        close(lock);
        return false;
    }
    m_lock = lock;
    (void)Listen();
    return true;
}

// The lock is ours, so a socket that lies here has nobody behind it any more.
bool SocketInstance::Listen() {
    sockaddr_un address{};
    if (!Address(m_folder, address)) return false;
    unlink(address.sun_path);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (listener < 0) return false;
    const mode_t old = umask(0077);
    const bool bound = bind(listener, AsAddress(address), sizeof(address)) == 0;
    umask(old);
    if (!bound || listen(listener, 16) != 0) {
        close(listener);
        return false;
    }
    m_listener = listener;
    return true;
}

bool SocketInstance::HandOver(const CommandLine& arguments) {
    sockaddr_un address{};
    if (!Address(m_folder, address)) return false;
    const Socket connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (connection.Get() < 0) return false;
    (void)setsockopt(connection.Get(), SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof(kPatience));
    if (connect(connection.Get(), AsAddress(address), sizeof(address)) != 0) return false;
    std::string message;
    for (const auto& argument : arguments) message.append(argument).push_back('\0');
    // A start without arguments is a message too: it brings the window to the front.
    if (message.empty()) message.push_back('\0');
    return SendAll(connection.Get(), message);
}

std::vector<CommandLine> SocketInstance::Receive() {
    std::vector<CommandLine> received;
    while (m_listener >= 0) {
        const Socket connection(accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC));
        if (connection.Get() < 0) break;
        (void)setsockopt(connection.Get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
        if (!IsSamePerson(connection.Get())) continue;
        auto arguments = ReadArguments(connection.Get());
        if (!arguments.empty()) received.push_back(std::move(arguments));
    }
    return received;
}

} // namespace pelorin
