#include "Demo/ScreenReader.h"

#include "Platform/Chip/sheet/ReaderSheet.h"

#include <QAbstractButton>
#include <QLabel>
#include <QProgressBar>

#include <algorithm>

namespace kelvara::demo {

ScreenReader::ScreenReader(QWidget& view) : m_view(&view) { }

QAbstractButton* ScreenReader::button(const QString& accessibleName) const
{
    if (!m_view)
        return nullptr;
    const auto buttons = m_view->findChildren<QAbstractButton*>();
    const auto wanted = std::find_if(buttons.begin(), buttons.end(), [&](const QAbstractButton* button) {
        return button->isVisible() && button->accessibleName() == accessibleName;
    });
    return wanted == buttons.end() ? nullptr : *wanted;
}

QAbstractButton* ScreenReader::shutter() const
{
    return button(QString::fromUtf8("Fotoğraf çek"));
}

QAbstractButton* ScreenReader::closeButton() const
{
    return button(QStringLiteral("Kapat"));
}

QAbstractButton* ScreenReader::readButton() const
{
    return button(QStringLiteral("Tara"));
}

bool ScreenReader::isReady() const
{
    const QAbstractButton* button = shutter();
    return button && button->isEnabled();
}

bool ScreenReader::asksToTurn() const
{
    if (!m_view)
        return false;
    const auto children = m_view->findChildren<QWidget*>();
    return std::any_of(children.begin(), children.end(), [](const QWidget* child) {
        return child->isVisible() && child->inherits("kelvara::FlipImageView")
            && child->property("alpha").toDouble() > 0;
    });
}

bool ScreenReader::shows(const QString& text) const
{
    if (!m_view)
        return false;
    const auto labels = m_view->findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(),
        [&text](const QLabel* label) { return label->isVisible() && label->text() == text; });
}

chip::ReaderSheet* ScreenReader::sheet() const
{
    if (!m_view)
        return nullptr;
    const auto sheets = m_view->window()->findChildren<chip::ReaderSheet*>();
    const auto wanted = std::find_if(
        sheets.rbegin(), sheets.rend(), [](const chip::ReaderSheet* sheet) { return sheet->isVisible(); });
    return wanted == sheets.rend() ? nullptr : *wanted;
}

std::optional<SheetPhase> ScreenReader::sheetPhase() const
{
    const chip::ReaderSheet* shown = sheet();
    return shown ? std::optional(shown->phase()) : std::nullopt;
}

QString ScreenReader::sheetMessage() const
{
    const chip::ReaderSheet* shown = sheet();
    return shown ? shown->accessibleDescription() : QString();
}

const QProgressBar* ScreenReader::sheetProgress() const
{
    const chip::ReaderSheet* shown = sheet();
    return shown ? shown->findChild<QProgressBar*>() : nullptr;
}

} // namespace kelvara::demo
