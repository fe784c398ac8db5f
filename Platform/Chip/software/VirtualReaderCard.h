#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

namespace kelvara::chip::software {

/// Holds a software card to the virtual reader of pcscd (Debian's vsmartcard-vpcd), so that programs meet it through
/// PC/SC as they would meet a real one. The card lies on the reader as long as this lives.
class KELVARA_EXPORT VirtualReaderCard
{
public:
    struct Card
    {
        std::function<Bytes(ByteView command)> transmit;
        std::function<void()> powerUp; ///< Also for a reset: whatever the session knew is gone.
        Bytes answerToReset;
    };

    static constexpr std::uint16_t usualPort = 35963;

    /// The card's functions are called on a thread of this, one at a time.
    explicit VirtualReaderCard(Card card, std::uint16_t port = usualPort);
    ~VirtualReaderCard();
    VirtualReaderCard(const VirtualReaderCard&) = delete;
    VirtualReaderCard& operator=(const VirtualReaderCard&) = delete;

    /// Empty when the card lies on the reader; else a sentence.
    [[nodiscard]] const std::string& problem() const { return m_problem; }

private:
    void serve();
    [[nodiscard]] bool receive(std::uint8_t* bytes, std::size_t size) const;
    [[nodiscard]] bool send(ByteView message) const;

    Card m_card;
    int m_socket = -1; ///< The same from before the thread begins until it has ended.
    std::string m_problem;
    std::thread m_thread;
};

} // namespace kelvara::chip::software
