#pragma once

#include "Platform/Chip/NFCViewDisplayMessage.h"
#include "Platform/Chip/sheet/SheetPhase.h"
#include "Platform/Foundation/Export.h"

#include <QPointer>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <chrono>
#include <memory>

namespace kelvara::chip {

namespace sheet {
class SheetFocus;
class SheetPanel;
} // namespace sheet

/// What a phone's system shows while it reads a card: a sheet that slides up from the lower edge of a widget's window,
/// over a backdrop that takes all touches and keys, with a title, a moving picture, a message, the progress and a
/// button that cancels.
///
/// It ends once: with success (stays a moment), with an error (stays until closed, or some seconds), with the person's
/// cancelling or with `dismiss`. Then it slides down, gives the focus back, and deletes itself; what is told to it
/// after its end is ignored. Hold it by `QPointer`. It also goes, without a word, with the widget or its window. Main
/// thread.
class KELVARA_EXPORT ReaderSheet final : public QWidget
{
    Q_OBJECT

public:
    /// `over`: borrowed, may go at any time. The sheet belongs to its window.
    explicit ReaderSheet(QWidget* over);
    ~ReaderSheet() override;

    /// By how much letters are larger than ordinary, at least, 1 to 3: they grow with the system's font as well,
    /// whichever is larger. Initially 1. Where room is scarce they are smaller than asked for, but not smaller than
    /// ordinary.
    void setTextScale(double scale);
    /// Slides up. Only once.
    void present();
    /// What the read has come to, with the text that the reader decided to show; presents the sheet in need. After
    /// `successfulRead` and `error` it has ended; an error of having been cancelled just takes it away.
    void display(const NFCViewDisplayMessage& message, const QString& text);
    /// Slides down at once.
    void dismiss();

    [[nodiscard]] sheet::SheetPhase phase() const { return m_phase; }

    /// How long success stays, and how long an error that nobody closes.
    static constexpr std::chrono::milliseconds kSuccessStays { 1200 };
    static constexpr std::chrono::milliseconds kErrorStays { 6000 };

Q_SIGNALS:
    /// The person pressed "İptal" or Escape. Once at most, and never after the end. The sheet slides down by itself and
    /// may be deleted in here.
    void cancelled();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    friend class sheet::SheetFocus; // asks an earlier sheet where its focus goes

    void cancelOrClose();
    void slide(bool up);
    void leave();
    void arrange();
    void placePanel();
    void announceMessage();
    void announceProgress(int percent);
    [[nodiscard]] bool moves() const;

    QPointer<QWidget> m_window;
    sheet::SheetPanel* m_panel;
    std::unique_ptr<sheet::SheetFocus> m_focus;
    QVariantAnimation m_slide;
    QTimer m_stay;
    sheet::SheetPhase m_phase = sheet::SheetPhase::Present;
    double m_shown = 0; ///< How far it has come up, 0 to 1.
    int m_fifthsSaid = 0; ///< Of the progress.
    bool m_isPresented = false;
    bool m_hasEnded = false; ///< Nothing more is shown or emitted.
    bool m_isLeaving = false;
};

} // namespace kelvara::chip
