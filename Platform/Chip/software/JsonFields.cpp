#include "Platform/Chip/software/JsonFields.h"

#include <QJsonArray>

namespace kelvara::chip::software {

namespace {

constexpr qsizetype kLongestText = 4096;
constexpr qsizetype kLongestList = 64;

} // namespace

JsonFields::JsonFields(QJsonObject object, QString path, QString& problem)
    : m_object(std::move(object)), m_path(std::move(path)), m_problem(&problem)
{ }

QString JsonFields::pathOf(const QString& name) const
{
    return m_path.isEmpty() ? name : m_path + u'.' + name;
}

void JsonFields::fail(const QString& name, const QString& what)
{
    if (m_problem->isEmpty())
        *m_problem = QStringLiteral("The field \"%1\" %2.").arg(pathOf(name), what);
}

QJsonValue JsonFields::take(const QString& name)
{
    m_taken.insert(name);
    return m_object.value(name);
}

bool JsonFields::takeNull(const QString& name)
{
    if (!m_object.value(name).isNull())
        return false;
    m_taken.insert(name);
    return true;
}

bool JsonFields::flag(const QString& name, bool otherwise)
{
    const QJsonValue value = take(name);
    if (!value.isUndefined() && !value.isBool())
        fail(name, QStringLiteral("must be true or false"));
    return value.toBool(otherwise);
}

int JsonFields::number(const QString& name, int otherwise, int least, int greatest)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return otherwise;
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (number >= least && number <= greatest && number == static_cast<int>(number))
        return static_cast<int>(number);
    fail(name, QStringLiteral("must be a whole number from %1 to %2").arg(least).arg(greatest));
    return otherwise;
}

QString JsonFields::text(const QString& name, const QString& otherwise)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return otherwise;
    if (value.isString() && value.toString().size() <= kLongestText)
        return value.toString();
    fail(name, QStringLiteral("must be a text of at most %1 characters").arg(kLongestText));
    return otherwise;
}

QStringList JsonFields::texts(const QString& name)
{
    const QJsonValue value = take(name);
    QStringList result;
    if (value.isUndefined())
        return result;
    const QJsonArray list = value.toArray();
    bool isGood = value.isArray() && list.size() <= kLongestList;
    for (qsizetype i = 0; isGood && i < list.size(); ++i) {
        isGood = list[i].isString() && list[i].toString().size() <= kLongestText;
        result.append(list[i].toString());
    }
    if (!isGood)
        fail(name, QStringLiteral("must be a list of at most %1 texts").arg(kLongestList));
    return isGood ? result : QStringList();
}

JsonFields JsonFields::object(const QString& name)
{
    const QJsonValue value = take(name);
    if (!value.isUndefined() && !value.isObject())
        fail(name, QStringLiteral("must be an object"));
    return { value.toObject(), pathOf(name), *m_problem };
}

std::vector<JsonFields> JsonFields::objects(const QString& name)
{
    const QJsonValue value = take(name);
    std::vector<JsonFields> result;
    if (value.isObject())
        result.emplace_back(value.toObject(), pathOf(name), *m_problem);
    if (value.isObject() || value.isUndefined())
        return result;
    const QJsonArray list = value.toArray();
    bool isGood = value.isArray() && list.size() <= kLongestList;
    for (qsizetype i = 0; isGood && i < list.size(); ++i) {
        isGood = list[i].isObject();
        result.emplace_back(list[i].toObject(), QStringLiteral("%1[%2]").arg(pathOf(name)).arg(i), *m_problem);
    }
    if (!isGood)
        fail(name, QStringLiteral("must be an object or a list of at most %1 objects").arg(kLongestList));
    return isGood ? std::move(result) : std::vector<JsonFields>();
}

void JsonFields::finish()
{
    for (const QString& name : m_object.keys()) {
        if (!m_taken.contains(name) && m_problem->isEmpty())
            *m_problem = QStringLiteral("There is no field \"%1\".").arg(pathOf(name));
    }
}

} // namespace kelvara::chip::software
