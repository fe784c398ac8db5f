#include "Tools/Replay/ScreenWatch.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QLabel>

#include <array>

namespace kelvara::replay {

namespace {

using chip::sheet::SheetPhase;

/// What tells a screen from the others: the words of a button or label of it.
struct Sign
{
    const char* words;
    const char* screen;
};
constexpr std::array kSigns { Sign { "Tara", "nfcRead" }, Sign { "İptal Et", "jitsi" },
    Sign { "Cihazınızda Nfc desteği bulunmamaktadır. Devam", "nfcRead" }, Sign { "Süreç tamamlanmıştır.", "finished" },
    Sign { "Sdk içerisine işlem listesi boş", "noSteps" }, Sign { "Cihazınızda ön kamera", "noFrontCamera" },
    Sign { "Cihazınızda arka kamera", "noBackCamera" },
    Sign { "Cihazınızda NFC desteği bulunmamaktadır. Bu kontrol zorunlu", "nfcRequired" } };

QString screenOf(const QWidget& control)
{
    if (control.inherits("kelvara::QKCutoutView"))
        return QStringLiteral("idPhoto");
    if (control.inherits("kelvara::OvalOverlayView"))
        return QStringLiteral("selfie");
    QString words;
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control))
        words = button->accessibleName();
    else if (const auto* label = qobject_cast<const QLabel*>(&control))
        words = label->text();
    for (const Sign& sign : kSigns) {
        if (words.startsWith(QString::fromUtf8(sign.words)))
            return QString::fromLatin1(sign.screen);
    }
    return {};
}

QString nameOf(SheetPhase phase)
{
    switch (phase) {
    case SheetPhase::Present:
        return QStringLiteral("sheet:present");
    case SheetPhase::Reading:
        return QStringLiteral("sheet:reading");
    case SheetPhase::PresentAgain:
        return QStringLiteral("sheet:presentAgain");
    case SheetPhase::Done:
        return QStringLiteral("sheet:done");
    case SheetPhase::Failed:
        return QStringLiteral("sheet:failed");
    }
    return {};
}

} // namespace

ScreenWatch::ScreenWatch(QWidget& view, FlowLog& log) : m_view(&view), m_log(log)
{
    qApp->installEventFilter(this);
}

void ScreenWatch::end()
{
    qApp->removeEventFilter(this);
    m_view = nullptr;
}

bool ScreenWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (!m_view)
        return false;
    look();
    // Events to other objects may be other threads', handed over by Qt where the thread sanitizer cannot follow.
    if (!watched->isWidgetType())
        return false;
    if (event->type() == QEvent::Show)
        shown(*static_cast<QWidget*>(watched));
    else if (event->type() == QEvent::Hide && m_sheet && watched == m_sheet)
        sheetGone();
    return false;
}

void ScreenWatch::look()
{
    if (!m_hasSheet)
        return;
    if (!m_sheet) {
        sheetGone();
    } else if (m_sheet->phase() != m_phase) {
        m_phase = m_sheet->phase();
        m_log.add(nameOf(m_phase));
    }
}

void ScreenWatch::sheetGone()
{
    m_hasSheet = false;
    m_sheet = nullptr;
    m_log.add(QStringLiteral("sheet:gone"));
}

void ScreenWatch::shown(QWidget& control)
{
    if (auto* const sheet = qobject_cast<chip::ReaderSheet*>(&control); sheet && sheet->window() == m_view->window()) {
        if (m_hasSheet) // the next read begins while the sheet of the one before still slides away
            sheetGone();
        m_sheet = sheet;
        m_hasSheet = true;
        m_phase = sheet->phase();
        m_log.add(nameOf(m_phase));
        return;
    }
    if (control.parentWidget() != m_view)
        return;
    const QString screen = screenOf(control);
    if (screen.isEmpty() || screen == m_screen)
        return;
    m_screen = screen;
    m_log.add(QStringLiteral("step:") + screen);
}

} // namespace kelvara::replay
