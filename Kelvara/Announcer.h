#pragma once

#include <QBasicTimer>
#include <QWidget>

#include <vector>

namespace kelvara {

/// What a view tells those who do not see it. Unseen itself: a point in the view's corner that assistive technology
/// knows as a notification, with the sentences that were said last as its name.
///
/// Sentences are gathered for a moment and said together, so that "taken" is not cut short by what comes next; while
/// the view is hidden they wait. No sentence is said twice running. Sentences must hold no personal data. Main thread.
class Announcer final : public QWidget
{
    Q_OBJECT

public:
    explicit Announcer(QWidget* view);

    /// Something came to pass.
    void say(const QString& sentence);
    /// What the screen is about from now on; replaces what was still to be said of the one before.
    void showScreen(const QString& sentence);

    static constexpr int kGatherMilliseconds = 100;

protected:
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Sentence
    {
        QString words;
        bool isScreen;
    };
    void gather(Sentence sentence);

    std::vector<Sentence> m_waiting;
    QString m_last; ///< The last sentence that was said.
    QBasicTimer m_gathering;
};

} // namespace kelvara
