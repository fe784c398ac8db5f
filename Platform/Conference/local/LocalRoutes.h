#pragma once

#include "Platform/Conference/local/LocalCalls.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>

namespace kelvara {

/// Which request of a local conference gets which answer: the files of the client, and the few words that pages
/// exchange with the server. Knows nothing of sockets. One thread at a time.
class LocalRoutes
{
public:
    struct Reply
    {
        int status = 200;
        QByteArray type;
        QByteArray body;
    };

    explicit LocalRoutes(LocalCalls& calls) : m_calls(calls) { } ///< Borrowed.

    std::function<bool(const QString& token)> acceptsToken; ///< Null: every token.
    bool hasEmbeddingScript = true;
    LocalConference::Answers answers = LocalConference::Answers::Everything;

    /// The answer; none at all when this request is to wait for ever. The path is percent-decoded.
    [[nodiscard]] std::optional<Reply> reply(bool isPost, const QString& path, const QByteArray& body);

private:
    [[nodiscard]] QJsonObject spoken(const QString& word, const QJsonObject& said);
    [[nodiscard]] QJsonObject enter(const QJsonObject& said);

    LocalCalls& m_calls;
};

} // namespace kelvara
