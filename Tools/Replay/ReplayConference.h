#pragma once

#include "Platform/Conference/ConferencePage.h"
#include "Platform/Conference/ConferenceService.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace kelvara::replay {

/// One conference that nobody holds: an empty widget, and what the script makes happen in it. Main thread.
class ReplayPage final : public ConferencePage
{
    Q_OBJECT
public:
    /// `hungUp` is called when the client is told to leave; a deaf one does not answer.
    ReplayPage(bool isDeaf, std::function<void()> hungUp);
    ~ReplayPage() override;

    [[nodiscard]] QWidget* widget() override { return m_widget; }
    void open(const ConferenceInvitation&) override { }
    void hangUp() override;

private:
    QPointer<QWidget> m_widget; ///< Whoever shows it may take it along when it goes.
    const bool m_isDeaf;
    std::function<void()> m_hungUp;
};

/// Conferences of a script. Main thread.
class ReplayConference final : public ConferenceService
{
public:
    [[nodiscard]] std::unique_ptr<ConferencePage> makePage() override;

    /// The one that is held now; null without one.
    [[nodiscard]] ReplayPage* page() const { return m_page; }
    /// How many pages there are, those on their way out included.
    [[nodiscard]] int alive() const;

    bool isDeaf = false; ///< Of the next ones.
    std::function<void()> hungUp;

private:
    QPointer<ReplayPage> m_page;
    QList<QPointer<ReplayPage>> m_pages;
};

} // namespace kelvara::replay
