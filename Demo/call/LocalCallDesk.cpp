#include "Demo/CallDesk.h"

#include "Demo/call/PretendedCamera.h"
#include "Platform/Conference/local/LocalConference.h"

#include <QUuid>

namespace kelvara::demo {

namespace {

/// A conference server in this very process.
class LocalCallDesk final : public CallDesk
{
public:
    [[nodiscard]] Conference arrange(const QImage& ownPicture) override
    {
        m_camera.show(ownPicture);
        if (m_server.url().isEmpty() && !m_server.listen())
            return {};
        // The token is what the representative's side expects of this person, and of nobody else.
        m_token = QUuid::createUuid().toString(QUuid::WithoutBraces);
        m_server.setAcceptsToken([expected = m_token](const QString& token) { return token == expected; });
        return { m_server.url().toString(), QString::fromUtf8("görüşme-%1").arg(m_token.left(8)), m_token };
    }

    void hangUp() override { m_server.hangUp(); }

    [[nodiscard]] QJsonObject report() const override
    {
        const auto visits = m_server.visits();
        if (visits.isEmpty())
            return {};
        const LocalConference::Visit& visit = visits.back();
        return { { QStringLiteral("room"), visit.room }, { QStringLiteral("hasVideo"), visit.hasVideo },
            { QStringLiteral("hasAudio"), visit.hasAudio } };
    }

private:
    LocalConference m_server;
    PretendedCamera m_camera;
    QString m_token;
};

} // namespace

std::unique_ptr<CallDesk> CallDesk::make()
{
    return std::make_unique<LocalCallDesk>();
}

} // namespace kelvara::demo
