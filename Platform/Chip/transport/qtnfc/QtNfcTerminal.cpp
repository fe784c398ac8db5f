#include "Platform/Chip/transport/qtnfc/QtNfcTerminal.h"

#include "Platform/Chip/transport/qtnfc/QtNfcChannel.h"

#include <QEventLoop>
#include <QNearFieldManager>
#include <QPointer>
#include <QTimer>

namespace kelvara::chip {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Kind = TransportError::Kind;

constexpr std::chrono::milliseconds kNfcGlance = 100ms; ///< Between two looks at the cancel token.
constexpr auto kAccess = QNearFieldTarget::TagTypeSpecificAccess;

/// Identity documents are tags of type 4, which alone take commands of smart cards.
bool isSmartCard(const QNearFieldTarget& target)
{
    switch (target.type()) {
    case QNearFieldTarget::NfcTagType4:
    case QNearFieldTarget::NfcTagType4A:
    case QNearFieldTarget::NfcTagType4B:
        return target.accessMethods().testFlag(kAccess);
    default:
        return false;
    }
}

} // namespace

bool QtNfcTerminal::isSupported() const
{
    return QNearFieldManager().isSupported(kAccess);
}

bool QtNfcTerminal::isAvailable() const
{
    const QNearFieldManager field;
    return field.isSupported(kAccess) && field.isEnabled();
}

std::variant<std::unique_ptr<CardChannel>, TransportError> QtNfcTerminal::waitForCard(
    std::chrono::milliseconds timeout, const CancelToken& cancel)
{
    const auto deadline = Clock::now() + timeout;
    auto field = std::make_unique<QNearFieldManager>();
    if (!field->isSupported(kAccess))
        return TransportError { Kind::NoReader, "the device has no contactless reader of its own" };

    QPointer<QNearFieldTarget> card;
    bool isStopped = false;
    QEventLoop loop;
    QObject::connect(field.get(), &QNearFieldManager::targetDetected, &loop, [&](QNearFieldTarget* target) {
        if (!isSmartCard(*target))
            return; // some other tag: the right one may follow
        card = target;
        loop.quit();
    });
    QObject::connect(field.get(), &QNearFieldManager::targetDetectionStopped, &loop, [&] {
        isStopped = true;
        loop.quit();
    });
    QTimer glance;
    QObject::connect(&glance, &QTimer::timeout, &loop, [&] {
        if (cancel.isCancelled() || Clock::now() >= deadline)
            loop.quit();
    });

    if (!field->startTargetDetection(kAccess))
        return TransportError { Kind::NoReader, "the contactless reader is turned off or taken" };
    glance.start(kNfcGlance);
    while (!card && !isStopped && !cancel.isCancelled() && Clock::now() < deadline)
        loop.exec();

    if (cancel.isCancelled())
        return TransportError { Kind::Cancelled, "cancelled while waiting for a card" };
    if (card)
        return std::unique_ptr<CardChannel>(std::make_unique<QtNfcChannel>(std::move(field), card));
    if (isStopped) // where the system shows a sheet of its own, it has a cancel button too
        return TransportError { Kind::Cancelled, "the system stopped looking for cards" };
    return TransportError { Kind::NoCard, "no card was held to the reader" };
}

} // namespace kelvara::chip
