#include "Tests/Cli/CliProcess.h"

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace kelvara {
namespace {

/// An invented card. Its name, number and key are what must not be found where nobody asked for them.
const QString kNumber = QStringLiteral("A12B34567");
const QString kKey = QStringLiteral("A12B34567590010113501014");
const QStringList kZone { QStringLiteral("I<TURA12B345675<10000000146<<<"), QStringLiteral("9001011F3501014TUR<<<<<<<<<<<6"),
    QStringLiteral("YILMAZ<<AYSE<GUL<<<<<<<<<<<<<<") };

/// A folder with a small picture and the profiles that a test writes.
class ChipCli : public testing::Test
{
protected:
    ChipCli()
    {
        QImage face(48, 64, QImage::Format_RGB32);
        face.fill(Qt::darkYellow);
        EXPECT_TRUE(face.save(path("face.png")));
    }
    [[nodiscard]] QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QString write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    [[nodiscard]] QString profile(const QJsonObject& more = {}) const
    {
        QJsonObject object { { QStringLiteral("mrz"), QJsonArray::fromStringList(kZone) },
            { QStringLiteral("portrait"),
                QJsonObject { { QStringLiteral("file"), QStringLiteral("face.png") },
                    { QStringLiteral("format"), QStringLiteral("JPEG") } } },
            { QStringLiteral("details"),
                QJsonObject { { QStringLiteral("personalNumber"), QStringLiteral("10000000146") } } } };
        for (auto field = more.begin(); field != more.end(); ++field)
            object.insert(field.key(), field.value());
        return write("chip.json", QJsonDocument(object).toJson());
    }
    static CliProcess chip(const QStringList& arguments, const QByteArray& input = {}, const QStringList& variables = {})
    {
        CliProcess process = CliProcess::run(QStringList(QStringLiteral("chip")) + arguments, input, variables);
        EXPECT_FALSE(process.complained.contains(kNumber) || process.complained.contains(QLatin1String("YILMAZ")))
            << "nothing personal is for the error stream: " << process.complained.toStdString();
        return process;
    }
    static QJsonObject objectOf(const CliProcess& process)
    {
        const auto objects = process.objects();
        EXPECT_EQ(objects.size(), 1U) << process.complained.toStdString();
        return objects.empty() ? QJsonObject() : objects.front();
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(ChipCli, ReadsAWholeChip)
{
    const QString software = profile();
    const QString portrait = path("out.png");
    const CliProcess process
        = chip({ QStringLiteral("--software"), software, QStringLiteral("--portrait"), portrait });
    EXPECT_EQ(process.exitCode, 0);
    EXPECT_EQ(process.complained, QString());
    const QJsonObject object = objectOf(process);
    EXPECT_TRUE(object.value(QStringLiteral("read")).toBool());
    const QJsonObject document = object.value(QStringLiteral("document")).toObject();
    EXPECT_EQ(document.value(QStringLiteral("number")), kNumber);
    EXPECT_EQ(document.value(QStringLiteral("surname")), QStringLiteral("YILMAZ"));
    EXPECT_EQ(document.value(QStringLiteral("givenNames")), QStringLiteral("AYSE GUL"));
    EXPECT_EQ(document.value(QStringLiteral("birthDate")), QStringLiteral("1990-01-01"));
    EXPECT_EQ(document.value(QStringLiteral("personalNumber")), QStringLiteral("10000000146"));
    const QJsonObject verification = object.value(QStringLiteral("verification")).toObject();
    EXPECT_EQ(verification.value(QStringLiteral("pace")), QStringLiteral("succeeded"));
    EXPECT_EQ(verification.value(QStringLiteral("chipAuthentication")), QStringLiteral("succeeded"));
    EXPECT_EQ(verification.value(QStringLiteral("signer")), QStringLiteral("notChecked"));
    EXPECT_EQ(QImage(portrait).size(), QSize(48, 64));
    struct stat status = {};
    ASSERT_EQ(stat(portrait.toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 077U, 0U) << "a face is its owner's alone";
}

TEST_F(ChipCli, TakesTheKeyFromAnywhere)
{
    const QString software = profile();
    const auto isRead = [&](QStringList arguments, const QByteArray& input = {}, const QStringList& variables = {}) {
        return chip(QStringList { QStringLiteral("--software"), software } + std::move(arguments), input, variables)
                   .exitCode
            == 0;
    };
    const QString mrz = QStringLiteral("--mrz"), dash = QStringLiteral("-");
    EXPECT_TRUE(isRead({ QStringLiteral("--key=") + kKey }));
    EXPECT_TRUE(isRead({ mrz, kZone.join(u'\n') }));
    EXPECT_TRUE(isRead({ mrz, kZone.join(QString()) }));
    EXPECT_TRUE(isRead({ mrz, dash }, kZone.join(u'\n').toUtf8()));
    EXPECT_TRUE(isRead({ QStringLiteral("--key"), dash }, kKey.toUtf8() + "\r\n"));
    EXPECT_TRUE(isRead({ mrz, kZone.join(u'\n') }, {}, { QStringLiteral("LC_ALL=ar_EG.UTF-8") }))
        << "a user's digits are not the zone's";
}

TEST_F(ChipCli, TellsWhatIsWrongWithAChip)
{
    struct Row
    {
        QJsonObject profile;
        QString key;
        const char* kind;
    };
    const auto forged = [](const char* name) {
        return QJsonObject { { QStringLiteral("forgeries"), QJsonArray { QLatin1String(name) } } };
    };
    const QJsonObject otherCard { { QStringLiteral("passport"), false } };
    for (const Row& row : { Row { forged("changedDG2"), {}, "NotGenuine" },
             Row { forged("chipAuthenticationClone"), {}, "NotGenuine" },
             Row { {}, QStringLiteral("L898902C<369080619406236"), "WrongKey" },
             Row { otherCard, kKey, "UnsupportedCard" } }) {
        SCOPED_TRACE(row.kind);
        QStringList arguments { QStringLiteral("--software"), profile(row.profile), QStringLiteral("--portrait"),
            path("out.png") };
        if (!row.key.isEmpty())
            arguments += { QStringLiteral("--key"), row.key };
        const CliProcess process = chip(arguments);
        EXPECT_EQ(process.exitCode, 1);
        const QJsonObject object = objectOf(process);
        EXPECT_FALSE(object.value(QStringLiteral("read")).toBool());
        EXPECT_EQ(object.value(QStringLiteral("error")).toObject().value(QStringLiteral("kind")), QLatin1String(row.kind));
        EXPECT_FALSE(object.contains(QStringLiteral("document")));
        EXPECT_FALSE(QFile::exists(path("out.png")));
    }
}

TEST_F(ChipCli, TracesSoftwareOnly)
{
    const QString software = profile();
    const CliProcess traced
        = CliProcess::run({ QStringLiteral("chip"), QStringLiteral("--software"), software, QStringLiteral("--trace") });
    EXPECT_EQ(traced.exitCode, 0);
    EXPECT_TRUE(traced.complained.contains(QLatin1String("(protected)"))) << traced.complained.left(500).toStdString();
    const CliProcess real = chip({ QStringLiteral("--key"), kKey, QStringLiteral("--trace") });
    EXPECT_EQ(real.exitCode, 2);
    EXPECT_EQ(real.said, QString());
}

TEST_F(ChipCli, RefusesWrongUsageInALine)
{
    const QString software = profile();
    const QString option = QStringLiteral("--software"), portrait = QStringLiteral("--portrait");
    const QString key = QStringLiteral("--key"), mrz = QStringLiteral("--mrz");
    const QString fifo = path("fifo");
    ASSERT_EQ(mkfifo(fifo.toUtf8().constData(), 0600), 0);
    QFile large(path("large.json"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(qint64 { 1 } << 30)); // takes no room
    const QString inner = write("inner.json", R"({"portrait":{"file":"fifo"}})");
    const QStringList rows[] = {
        {}, { QStringLiteral("--nonsense") }, { key }, { mrz, QStringLiteral("hello") },
        { mrz, QString(5000, u'<') }, { mrz, QString(90, u'<') }, { mrz, QString::fromUtf8("ÜÇ\nSATIR\n😀") },
        { mrz, QString(kZone.join(QString())).replace(QLatin1String("900101"), QLatin1String("901301")) },
        { key, QStringLiteral("A12B34567") }, { mrz, kZone[0], kZone[1], kZone[2] },
        { key, kKey, mrz, kZone.join(QString()) }, { option, software, key, QStringLiteral("-") },
        { option, software, mrz, QStringLiteral("-") },
        { option, path("nowhere.json") }, { option, path("") }, { option, fifo }, { option, large.fileName() },
        { option, inner }, { option, QStringLiteral("/dev/zero") },
        { option, write("deep.json", QByteArray(100'000, '[')) },
        { option, write("deep2.json", R"({"a":)" + QByteArray(3000, '[') + QByteArray(3000, ']') + "}") },
        { option, write("empty.json", {}) }, { option, write("list.json", "[1]") },
        { option, write("number.json", R"({"access":{"pace":{"parameters":1e400}}})") },
        { option, write("number2.json", R"({"faults":{"delay":99999999999999999999}})") },
        { option, write("number3.json", R"({"activeAuthentication":{"rsaBits":-1}})") },
        { option, write("type.json", R"({"mrz":{"a":1},"portrait":[]})") },
        { option, write("bytes.json", QByteArray("{\"mrz\":[\"\xff\xfe\x00\"]}", 14)) },
        { option, software, portrait, software }, { option, software, portrait, path("./chip.json") },
        { option, software, portrait, path("out.txt") }, { option, software, portrait, path("nowhere/out.png") },
        { option, software, portrait, path("") },
        { option, software, QStringLiteral("--master-list"), fifo },
        { option, software, QStringLiteral("--master-list"), path("") },
        { option, software, QStringLiteral("--wait"), QStringLiteral("0") },
        { option, software, QStringLiteral("--pretty=1") },
    };
    for (const QStringList& arguments : rows) {
        SCOPED_TRACE(arguments.join(u' ').left(200).toStdString());
        const CliProcess process = chip(arguments);
        EXPECT_EQ(process.exitCode, 2);
        // A key or list that cannot be used is told like a chip that cannot be read, in the JSON.
        EXPECT_NE(process.complained.count(u'\n') + process.said.count(u'\n'), 0);
        EXPECT_LE(process.complained.count(u'\n'), 1) << process.complained.toStdString();
    }
    EXPECT_EQ(QJsonDocument::fromJson([&] {
        QFile file(software);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }()).object().value(QStringLiteral("mrz")).toArray().size(), 3) << "the profile was not overwritten";
}

TEST_F(ChipCli, WithoutTheReaderServiceItEndsAtOnce)
{
    const CliProcess process = chip({ QStringLiteral("--key"), kKey }, {},
        { QStringLiteral("PCSCLITE_CSOCK_NAME=") + path("no-service") });
    EXPECT_EQ(process.exitCode, 2);
    EXPECT_EQ(process.said, QString());
    EXPECT_EQ(process.complained, QStringLiteral("kelvara: The reader service (pcscd) does not run.\n"));
}

} // namespace
} // namespace kelvara
