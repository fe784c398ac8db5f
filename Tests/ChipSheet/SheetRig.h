#pragma once

#include "Platform/Chip/sheet/ReaderSheet.h"

#include <QAbstractButton>
#include <QApplication>
#include <QProxyStyle>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace kelvara::chip {

using Kind = NFCViewDisplayMessage::Kind;
using Failure = NFCPassportReaderError::Kind;

inline NFCViewDisplayMessage message(Kind kind, int progress = 0, bool isCardLost = false)
{
    NFCViewDisplayMessage made;
    made.kind = kind;
    made.progress = progress;
    made.isCardLost = isCardLost;
    return made;
}

inline NFCPassportReaderError failure(Failure kind, std::string detail = {}, std::uint16_t sw = 0)
{
    NFCPassportReaderError made;
    made.kind = kind;
    made.detail = std::move(detail);
    made.sw = sw;
    return made;
}

inline NFCViewDisplayMessage failed(Failure kind)
{
    NFCViewDisplayMessage error = message(Kind::error, 40);
    error.failure = failure(kind);
    return error;
}

/// A system whose owner wants nothing to move, or does.
class Motion final : public QProxyStyle
{
public:
    explicit Motion(bool moves) : m_moves(moves) { }
    int styleHint(
        StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* answer) const override
    {
        return hint == SH_Widget_Animate ? int(m_moves) : QProxyStyle::styleHint(hint, option, widget, answer);
    }

private:
    bool m_moves;
};

/// A host's window with a view in it and two buttons, the second of which has the focus.
class SheetRig : public testing::Test
{
protected:
    SheetRig()
    {
        window = std::make_unique<QWidget>();
        window->resize(390, 700);
        view = new QWidget(window.get());
        view->setGeometry(window->rect());
        other = new QPushButton(QStringLiteral("one"), view);
        focused = new QPushButton(QStringLiteral("two"), view);
        focused->move(0, 660);
        focused->setFocus();
        window->show();
        QApplication::setActiveWindow(window.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    ReaderSheet* newSheet()
    {
        auto* const made = new ReaderSheet(view);
        QObject::connect(made, &ReaderSheet::cancelled, made, [this] { ++cancels; });
        return made;
    }

    static QAbstractButton* button(const QWidget* sheet) { return sheet->findChild<QAbstractButton*>("button"); }

    /// Until the sheet is where it stays.
    static void untilUp(const ReaderSheet* sheet)
    {
        const QWidget* const panel = button(sheet)->parentWidget();
        EXPECT_TRUE(QTest::qWaitFor([&] { return panel->geometry().bottom() == sheet->rect().bottom(); }, 5000));
    }

    static bool untilGone(const QPointer<ReaderSheet>& sheet, int milliseconds = 5000)
    {
        return QTest::qWaitFor([&] { return sheet.isNull(); }, milliseconds);
    }

    std::unique_ptr<QWidget> window;
    QWidget* view = nullptr;
    QPushButton* other = nullptr;
    QPushButton* focused = nullptr;
    int cancels = 0;
};

} // namespace kelvara::chip
