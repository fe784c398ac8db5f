#pragma once

#include "Platform/Chip/sheet/SheetPhase.h"

#include <QWidget>

class QScrollArea;

namespace kelvara::chip::sheet {

class SheetButton;
class SheetIllustration;
class SheetProgress;
class SheetText;

/// The sheet's surface with its contents one above the other. Letters grow with the system's; when room is scarce the
/// picture gives way first, then letters shrink to their ordinary size, and at last the message can be scrolled: no
/// text is ever cut off. Main thread.
class SheetPanel final : public QWidget
{
    Q_OBJECT

public:
    explicit SheetPanel(QWidget* parent);

    /// Whether title or message, as they are read out, differ from what was shown.
    bool show(SheetPhase phase, const QString& title, const QString& message, int percent);
    [[nodiscard]] QString spokenMessage() const;
    /// Has the percentage read out.
    void announceProgress();
    void setMoves(bool moves);
    /// By how much letters are larger than ordinary, at least. Counts from the next arrangement.
    void setTextScale(double scale) { m_textScale = scale; }

    /// Arranges the contents for this width and takes the height that needs, `highest` at most.
    void arrange(int width, int highest);
    /// Moves the message by pages (1, -1) where it can be scrolled.
    void scrollMessage(int pages);

    [[nodiscard]] SheetButton* button() const { return m_button; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Arrangement
    {
        double scale;
        int title, message, button;
        int illustration; ///< 0: none.
        int total;
    };

    [[nodiscard]] Arrangement arrangementFor(int width, int highest) const;
    [[nodiscard]] Arrangement arrangementAt(double scale, int width, int highest) const;
    [[nodiscard]] double wantedScale() const;
    void setLetters(double scale);

    SheetText* m_title;
    SheetIllustration* m_illustration;
    QScrollArea* m_messageArea;
    SheetText* m_message;
    SheetProgress* m_progress;
    SheetButton* m_button;
    bool m_moves = true;
    double m_textScale = 1;
    int m_roomForMessage = 0; ///< The most a message has needed; so that the sheet does not jump with every text.
    int m_roomWidth = 0;
    double m_roomScale = 0;
};

} // namespace kelvara::chip::sheet
