#include "Kelvara/Announcer.h"

#include "Platform/Foundation/Announcement.h"

#include <QAccessible>
#include <QPointer>
#include <QTimerEvent>

#include <utility>

namespace kelvara {

Announcer::Announcer(QWidget* view) : QWidget(view)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(0, 0, 1, 1); // of no size at all, it would count as not there
}

void Announcer::say(const QString& sentence)
{
    gather({ sentence, false });
}

void Announcer::showScreen(const QString& sentence)
{
    std::erase_if(m_waiting, [](const Sentence& waiting) { return waiting.isScreen; });
    gather({ sentence, true });
}

void Announcer::gather(Sentence sentence)
{
    const QString& before = m_waiting.empty() ? m_last : m_waiting.back().words;
    if (sentence.words.isEmpty() || sentence.words == before)
        return;
    m_waiting.push_back(std::move(sentence));
    if (isVisible() && !m_gathering.isActive())
        m_gathering.start(kGatherMilliseconds, this);
}

void Announcer::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_waiting.empty())
        m_gathering.start(kGatherMilliseconds, this);
}

void Announcer::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_gathering.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_gathering.stop();
    if (!isVisible() || m_waiting.empty())
        return;
    QStringList words;
    m_last = m_waiting.back().words;
    for (const Sentence& sentence : std::exchange(m_waiting, {}))
        words << sentence.words.simplified();
    const QString said = words.join(QLatin1Char(' '));
    const QPointer<Announcer> life(this); // who hears of it may have the view deleted
    setAccessibleName(said); // which by itself tells that the name has changed
    if (life)
        announce(*this, said);
    if (!life)
        return;
    // Where alerts pass unheard, as on Linux, a notification is read when it appears.
    QAccessibleEvent appears(this, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&appears);
}

} // namespace kelvara
