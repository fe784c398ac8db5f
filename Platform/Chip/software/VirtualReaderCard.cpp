#include "Platform/Chip/software/VirtualReaderCard.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kelvara::chip::software {

namespace {

using namespace std::chrono_literals;

/// Messages of one byte are the reader's own; commands have four at least.
enum Control : std::uint8_t { PowerOff = 0, PowerOn = 1, Reset = 2, AnswerToReset = 4 };

constexpr int kAttempts = 5;

int connectedSocket(std::uint16_t port)
{
    const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (made >= 0 && ::connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        const int now = 1; // a command and its answer wait for each other: held-back acknowledgements cost 40 ms each
        ::setsockopt(made, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
        ::setsockopt(made, IPPROTO_TCP, TCP_QUICKACK, &now, sizeof now);
        return made;
    }
    if (made >= 0)
        ::close(made);
    return -1;
}

} // namespace

VirtualReaderCard::VirtualReaderCard(Card card, std::uint16_t port) : m_card(std::move(card))
{
    for (int attempt = 0; attempt < kAttempts && m_socket < 0; ++attempt) {
        if (attempt > 0)
            std::this_thread::sleep_for(200ms); // a reader that just started, or still holds the last card
        m_socket = connectedSocket(port);
    }
    if (m_socket < 0) {
        m_problem = "There is no virtual reader at port " + std::to_string(port) + ": " + std::strerror(errno) + '.';
        return;
    }
    m_thread = std::thread([this] { serve(); });
}

VirtualReaderCard::~VirtualReaderCard()
{
    if (m_socket < 0)
        return;
    ::shutdown(m_socket, SHUT_RDWR);
    m_thread.join();
    ::close(m_socket);
}

void VirtualReaderCard::serve()
{
    std::array<std::uint8_t, 2> head {};
    while (receive(head.data(), head.size())) {
        Bytes message(static_cast<std::size_t>(head[0] << 8 | head[1]));
        if (!receive(message.data(), message.size()))
            return;
        bool isSent = true;
        if (message.size() != 1)
            isSent = send(m_card.transmit(message));
        else if (message[0] == AnswerToReset)
            isSent = send(m_card.answerToReset);
        else if (message[0] == PowerOn || message[0] == Reset)
            m_card.powerUp();
        const int now = 1; // the kernel falls back to delayed acknowledgements by itself
        ::setsockopt(m_socket, IPPROTO_TCP, TCP_QUICKACK, &now, sizeof now);
        if (!isSent)
            return;
    }
}

bool VirtualReaderCard::receive(std::uint8_t* bytes, std::size_t size) const
{
    while (size > 0) {
        const ssize_t got = ::recv(m_socket, bytes, size, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        bytes += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool VirtualReaderCard::send(ByteView message) const
{
    const std::array<std::uint8_t, 2> head { static_cast<std::uint8_t>(message.size() >> 8),
        static_cast<std::uint8_t>(message.size()) };
    const Bytes whole = joined({ head, message });
    std::size_t sent = 0;
    while (sent < whole.size()) {
        const ssize_t now = ::send(m_socket, whole.data() + sent, whole.size() - sent, MSG_NOSIGNAL);
        if (now < 0 && errno == EINTR)
            continue;
        if (now <= 0)
            return false;
        sent += static_cast<std::size_t>(now);
    }
    return true;
}

} // namespace kelvara::chip::software
