#include "Platform/Conference/local/LocalCalls.h"

#include <QUuid>

namespace kelvara {

LocalCalls::LocalCalls(Observer joined, Observer left) : m_joined(std::move(joined)), m_left(std::move(left)) { }

QString LocalCalls::enter(Visit visit)
{
    Call& call = m_calls.emplace_back();
    call.name = QUuid::createUuid().toString(QUuid::Id128).left(16);
    call.visit = std::move(visit);
    return call.name;
}

LocalCalls::Call* LocalCalls::heardOf(const QString& name)
{
    const auto found
        = std::find_if(m_calls.begin(), m_calls.end(), [&](const Call& call) { return call.name == name; });
    if (found == m_calls.end())
        return nullptr;
    found->quietBeats = 0;
    return &*found;
}

LocalCalls::State LocalCalls::contact(const QString& name, Media media)
{
    Call* call = heardOf(name);
    if (!call)
        return State::Dropped;
    if (call->state == State::Open) {
        call->visit.hasVideo = media.video;
        call->visit.hasAudio = media.audio;
    }
    return call->state;
}

LocalCalls::State LocalCalls::join(const QString& name, Media media)
{
    const State state = contact(name, media);
    Call* call = heardOf(name);
    if (!call || state != State::Open || call->order)
        return state;
    call->order = m_joinedCount++;
    call->visit.isOpen = true;
    m_joined(call->visit.room);
    return state;
}

void LocalCalls::leave(const QString& name)
{
    if (Call* call = heardOf(name))
        end(*call, State::HungUp);
}

void LocalCalls::end(Call& call, State state)
{
    if (call.state != State::Open)
        return;
    call.state = state;
    if (!call.visit.isOpen)
        return;
    call.visit.isOpen = call.visit.hasVideo = call.visit.hasAudio = false;
    m_left(call.visit.room);
}

void LocalCalls::endAll(State state)
{
    for (Call& call : m_calls)
        end(call, state);
}

void LocalCalls::beat(int patience)
{
    for (Call& call : m_calls) {
        if (call.state == State::Open && ++call.quietBeats > patience)
            end(call, State::Dropped);
    }
}

QList<LocalCalls::Visit> LocalCalls::visits() const
{
    QList<Visit> visits(m_joinedCount);
    for (const Call& call : m_calls) {
        if (call.order)
            visits[*call.order] = call.visit;
    }
    return visits;
}

} // namespace kelvara
