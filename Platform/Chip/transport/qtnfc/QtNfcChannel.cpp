#include "Platform/Chip/transport/qtnfc/QtNfcChannel.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace kelvara::chip {

namespace {

using namespace std::chrono_literals;
using Kind = TransportError::Kind;

/// Longer than any command of a document takes, signatures on slow chips included.
constexpr std::chrono::milliseconds kLongestWait = 10s;
/// Header, a length byte, 255 bytes of data and the expected length: the longest command of short length.
constexpr int kLongestShortCommand = 4 + 1 + 255 + 1;

TransportError transportError(QNearFieldTarget::Error error)
{
    switch (error) {
    case QNearFieldTarget::UnsupportedError:
        return { Kind::Failed, "the reader cannot send commands to this card" };
    case QNearFieldTarget::InvalidParametersError:
        return { Kind::Failed, "the reader refused the command" };
    default:
        // A card that leaves shows in many ways, by platform: out of range, no response, timeout, command error.
        return { Kind::CardLost, "no answer from the card, error " + std::to_string(int(error)) };
    }
}

} // namespace

QtNfcChannel::QtNfcChannel(std::unique_ptr<QNearFieldManager> field, QNearFieldTarget* card)
    : m_field(std::move(field)), m_card(card), m_passesExtendedLength(card->maxCommandLength() > kLongestShortCommand)
{
    QObject::connect(card, &QNearFieldTarget::disconnected, m_field.get(), [this] { m_isLost = true; });
    QObject::connect(m_field.get(), &QNearFieldManager::targetLost, m_field.get(), [this](QNearFieldTarget* target) {
        if (target == m_card)
            m_isLost = true;
    });
}

QtNfcChannel::~QtNfcChannel()
{
    m_field->disconnect();
    if (m_card) {
        m_card->QObject::disconnect(m_field.get());
        m_card->disconnect(); // ends the card's session
    }
    m_field->stopTargetDetection();
}

std::variant<Bytes, TransportError> QtNfcChannel::transmit(ByteView command)
{
    if (!m_card || m_isLost)
        return TransportError { Kind::CardLost, "the card left the field" };
    const int most = m_card->maxCommandLength();
    if (most > 0 && command.size() > static_cast<std::size_t>(most))
        return TransportError { Kind::Failed, "the command is longer than the reader takes" };

    // What is reported may be about an earlier request, or come while this one is being sent, before its number is
    // known.
    std::vector<QNearFieldTarget::RequestId> completed;
    std::vector<std::pair<QNearFieldTarget::RequestId, QNearFieldTarget::Error>> failed;
    QEventLoop loop; // goes before the lists that its connections fill
    QObject::connect(m_card, &QNearFieldTarget::requestCompleted, &loop, [&](const auto& id) {
        completed.push_back(id); // clazy:exclude=lambda-in-connect (ends with the loop)
        loop.quit();
    });
    QObject::connect(m_card, &QNearFieldTarget::error, &loop, [&](QNearFieldTarget::Error error, const auto& id) {
        failed.emplace_back(id, error); // clazy:exclude=lambda-in-connect (ends with the loop)
        loop.quit();
    });
    QObject::connect(m_card, &QNearFieldTarget::disconnected, &loop, &QEventLoop::quit);
    QObject::connect(m_card, &QObject::destroyed, &loop, &QEventLoop::quit);
    QObject::connect(m_field.get(), &QNearFieldManager::targetLost, &loop, &QEventLoop::quit);
    QTimer patience;
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, &loop, &QEventLoop::quit);

    const QNearFieldTarget::RequestId request = m_card->sendCommand(
        QByteArray(reinterpret_cast<const char*>(command.data()), static_cast<qsizetype>(command.size())));
    if (!request.isValid())
        return TransportError { Kind::Failed, "the reader refused the command" };
    const auto failure = [&] { return std::ranges::find(failed, request, [](const auto& one) { return one.first; }); };
    patience.start(kLongestWait);
    while (m_card && !m_isLost && patience.isActive() && std::ranges::find(completed, request) == completed.end()
        && failure() == failed.end())
        loop.exec();

    if (failure() != failed.end())
        return transportError(failure()->second);
    const QByteArray answer = m_card ? m_card->requestResponse(request).toByteArray() : QByteArray();
    if (answer.isEmpty())
        return transportError(QNearFieldTarget::NoResponseError);
    return bytes(ByteView(reinterpret_cast<const std::uint8_t*>(answer.data()), std::size_t(answer.size())));
}

} // namespace kelvara::chip
