#pragma once

#include "Platform/Conference/local/LocalConference.h"

#include <deque>
#include <functional>
#include <optional>

namespace kelvara {

/// The calls of a local conference: who asked to come in, who joined, and what is to be told them when they next ask.
/// Knows nothing of HTTP. One thread at a time.
class LocalCalls
{
public:
    using Visit = LocalConference::Visit;

    /// What a page is told of its call.
    enum class State {
        Open,
        HungUp, ///< Ended by the representative.
        Dropped, ///< Lost, or never heard of.
    };
    /// What a page sends of the person at the moment.
    struct Media
    {
        bool video = false;
        bool audio = false;
    };
    using Observer = std::function<void(const QString& room)>;

    /// Told of everyone who joins, and of everyone of them who leaves.
    LocalCalls(Observer joined, Observer left);

    /// Somebody may come in; what they are called from now on. They have not joined yet.
    [[nodiscard]] QString enter(Visit visit);
    /// The call stands. Again for one that has joined: nothing but a sign of life.
    State join(const QString& call, Media media);
    /// A sign of life.
    State contact(const QString& call, Media media);
    void leave(const QString& call);

    /// Every call that is open takes this state.
    void endAll(State state);
    /// To be called at a steady beat: ends the calls that gave no sign of life for that many of them. Beats, not time:
    /// a main thread that was busy for long heard of nobody and shall not blame the others.
    void beat(int patience);

    [[nodiscard]] QList<Visit> visits() const;

private:
    struct Call
    {
        QString name;
        Visit visit;
        std::optional<qsizetype> order; ///< Its place among the visits, once joined.
        State state = State::Open;
        int quietBeats = 0;
    };
    [[nodiscard]] Call* heardOf(const QString& name);
    void end(Call& call, State state);

    Observer m_joined;
    Observer m_left;
    std::deque<Call> m_calls;
    qsizetype m_joinedCount = 0;
};

} // namespace kelvara
