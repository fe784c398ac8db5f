#include "Tools/Replay/ReplayConference.h"

#include <algorithm>

namespace kelvara::replay {

ReplayPage::ReplayPage(bool isDeaf, std::function<void()> hungUp)
    : m_widget(new QWidget), m_isDeaf(isDeaf), m_hungUp(std::move(hungUp))
{ }

ReplayPage::~ReplayPage()
{
    delete m_widget.data();
}

void ReplayPage::hangUp()
{
    if (m_hungUp)
        m_hungUp();
    if (!m_isDeaf) // a client answers from the event loop, never inside the call
        QMetaObject::invokeMethod(
            this, [this] { Q_EMIT ended({}); }, Qt::QueuedConnection);
}

std::unique_ptr<ConferencePage> ReplayConference::makePage()
{
    m_pages.removeIf([](const QPointer<ReplayPage>& page) { return page.isNull(); });
    auto page = std::make_unique<ReplayPage>(isDeaf, hungUp);
    m_page = page.get();
    m_pages.append(m_page);
    return page;
}

int ReplayConference::alive() const
{
    return static_cast<int>(
        std::count_if(m_pages.begin(), m_pages.end(), [](const QPointer<ReplayPage>& page) { return !page.isNull(); }));
}

} // namespace kelvara::replay
