#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <initializer_list>
#include <limits>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace kelvara::chip::software {

/// The fields of a JSON object, each taken at most once by its name and checked. The first thing that is wrong is kept
/// as a sentence that names the field; what is taken after it has its default. `finish` finds the fields that nobody
/// took. One thread.
class JsonFields
{
public:
    /// `problem` is where the sentence goes: borrowed, and shared by all objects of a document.
    JsonFields(QJsonObject object, QString path, QString& problem);

    [[nodiscard]] bool has(const QString& name) const { return m_object.contains(name); }
    /// Takes the field when it is null.
    [[nodiscard]] bool takeNull(const QString& name);
    [[nodiscard]] QStringList names() const { return m_object.keys(); }

    [[nodiscard]] bool flag(const QString& name, bool otherwise);
    [[nodiscard]] int number(const QString& name, int otherwise, int least, int greatest);
    /// At most 4,096 characters.
    [[nodiscard]] QString text(const QString& name, const QString& otherwise = {});
    /// A list of texts, at most 64.
    [[nodiscard]] QStringList texts(const QString& name);
    [[nodiscard]] bool isText(const QString& name) const { return m_object.value(name).isString(); }

    /// An object; one without fields where there is none.
    [[nodiscard]] JsonFields object(const QString& name);
    /// A list of objects, at most 64, or a single one.
    [[nodiscard]] std::vector<JsonFields> objects(const QString& name);

    /// One of several texts, as the value that stands for it.
    template<typename Value>
    [[nodiscard]] Value choice(
        const QString& name, Value otherwise, std::initializer_list<std::pair<const char*, Value>> choices)
    {
        if (!has(name))
            return otherwise;
        const QString given = text(name);
        QStringList known;
        for (const auto& [written, value] : choices) {
            known.append(QLatin1String(written));
            if (given == known.back())
                return value;
        }
        fail(name, QStringLiteral("must be one of ") + known.join(QStringLiteral(", ")));
        return otherwise;
    }

    /// "The field "access.pace[0].cipher" <what>."
    void fail(const QString& name, const QString& what);
    void finish();

private:
    [[nodiscard]] QString pathOf(const QString& name) const;
    [[nodiscard]] QJsonValue take(const QString& name);

    QJsonObject m_object;
    QString m_path;
    QString* m_problem;
    std::set<QString> m_taken;
};

} // namespace kelvara::chip::software
