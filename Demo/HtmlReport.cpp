#include "Demo/HtmlReport.h"

#include <QFile>
#include <QJsonArray>
#include <QStringList>

static void initReportResources()
{
    Q_INIT_RESOURCE(report);
}

namespace kelvara::demo {

namespace {

QString member(const QJsonValue& object, const char* name)
{
    return object[QLatin1String(name)].toVariant().toString();
}

QString escaped(const QString& text)
{
    return text.toHtmlEscaped();
}

/// "dateOfBirth" → "Date of birth"; names that begin with capitals stay.
QString label(const QString& name)
{
    QString words;
    for (const QChar letter : name) {
        if (letter.isUpper() && !words.isEmpty() && words.back().isLower())
            words += QLatin1Char(' ') + letter.toLower();
        else
            words += letter;
    }
    if (!words.isEmpty())
        words[0] = words[0].toUpper();
    return words;
}

QString seconds(const QJsonValue& milliseconds)
{
    return QStringLiteral("%1 s").arg(milliseconds.toDouble() / 1000, 0, 'f', 1);
}

/// Rows of names and values; what is empty or has parts of its own is left out.
QString table(const QJsonObject& object)
{
    QString rows;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const QString value = entry->isBool() ? (entry->toBool() ? QStringLiteral("yes") : QStringLiteral("no"))
                                              : entry->toVariant().toString();
        if (value.isEmpty() || entry->isObject() || entry->isArray())
            continue;
        rows += QStringLiteral("<tr><th>%1</th><td>%2</td></tr>").arg(escaped(label(entry.key())), escaped(value));
    }
    return rows.isEmpty() ? QString() : QStringLiteral("<table>%1</table>").arg(rows);
}

QString section(const QString& title, const QString& content)
{
    return content.isEmpty() ? QString()
                             : QStringLiteral("<section><h2>%1</h2>%2</section>").arg(escaped(title), content);
}

QString figure(const QString& file, const QString& caption)
{
    return QStringLiteral("<figure><a href=\"%1\"><img src=\"%1\" alt=\"%2\" loading=\"lazy\"></a>"
                          "<figcaption>%2</figcaption></figure>")
        .arg(escaped(file), escaped(caption));
}

QString deliveries(const QJsonArray& calls)
{
    QString items;
    for (const QJsonValue& call : calls) {
        QString pictures;
        const QJsonArray delivered = call[QLatin1String("pictures")].toArray();
        for (const QJsonValue& picture : delivered)
            pictures += figure(member(picture, "file"), member(picture, "argument"));
        items += QStringLiteral("<li><time>%1</time><div><code>%2</code>%3</div></li>")
                     .arg(seconds(call[QLatin1String("atMilliseconds")]), escaped(member(call, "method")),
                         pictures.isEmpty() ? QString() : QStringLiteral("<div class=\"row\">%1</div>").arg(pictures));
    }
    return items.isEmpty() ? QString() : QStringLiteral("<ol class=\"timeline\">%1</ol>").arg(items);
}

QString screens(const QJsonArray& files)
{
    QString row;
    for (const QJsonValue& file : files) {
        QString caption = file.toString().section(QLatin1Char('-'), 2).chopped(4);
        caption.replace(QLatin1Char('-'), QLatin1Char(' '));
        row += figure(file.toString(), caption);
    }
    return row.isEmpty() ? QString() : QStringLiteral("<div class=\"row screens\">%1</div>").arg(row);
}

QString chip(const QJsonObject& result)
{
    const QJsonValue chip = result[QLatin1String("chip")];
    if (!chip.isObject())
        return {};
    return QStringLiteral("<div class=\"columns\"><div>%1</div><div>%2</div><div>%3</div></div>")
        .arg(table(chip[QLatin1String("document")].toObject()), table(chip[QLatin1String("details")].toObject()),
            table(chip[QLatin1String("verification")].toObject()));
}

} // namespace

QByteArray htmlReport(const QJsonObject& result)
{
    initReportResources();
    QFile file(QStringLiteral(":/kelvara/demo/report.html"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const bool isComplete = result[QLatin1String("completed")].toBool();
    const QStringList steps = result[QLatin1String("steps")].toVariant().toStringList();
    const QString summary = isComplete
        ? QStringLiteral("Complete after %1: %2.")
              .arg(seconds(result[QLatin1String("flowMilliseconds")]), steps.join(QStringLiteral(", ")))
        : member(result, "failure");
    const QString body = section(QStringLiteral("What the host was told"),
                             deliveries(result[QLatin1String("delegateCalls")].toArray()))
        + section(QStringLiteral("Machine-readable zone"), table(result[QLatin1String("mrz")].toObject()))
        + section(QStringLiteral("Chip"), chip(result))
        + section(QStringLiteral("Video call"), table(result[QLatin1String("call")].toObject()))
        + section(QStringLiteral("Screens"), screens(result[QLatin1String("screens")].toArray()))
        + section(QStringLiteral("Other devices and steps"), screens(result[QLatin1String("gallery")].toArray()));
    QString page = QString::fromUtf8(file.readAll());
    page.replace(QLatin1String("{{state}}"), isComplete ? QLatin1String("complete") : QLatin1String("failed"));
    page.replace(QLatin1String("{{summary}}"), escaped(summary));
    page.replace(QLatin1String("{{seed}}"), member(result, "seed"));
    page.replace(QLatin1String("{{body}}"), body); // last: what was read of a card is no place for others
    return page.toUtf8();
}

} // namespace kelvara::demo
