#include "Platform/Chip/PassportReader.h"

#include "Platform/Chip/ChipLog.h"
#include "Platform/Chip/reading/PassportReading.h"
#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Platform/Foundation/MainQueue.h"
#include "Platform/Foundation/SerialQueue.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <atomic>
#include <openssl/crypto.h>

namespace kelvara {

namespace {

using Kind = NFCPassportReaderError::Kind;
using Event = NFCViewDisplayMessage::Kind;

/// Absent when the file cannot be used. All states' master list has some megabytes.
std::optional<chip::MasterList> loadMasterList(const QUrl& url)
{
    constexpr qint64 kMostBytes = qint64 { 64 } << 20;
    QFile file(url.toLocalFile());
    // A pipe would be waited for without end.
    const bool isFile = url.isLocalFile() && QFileInfo(file).isFile();
    if (!isFile || !file.open(QIODevice::ReadOnly) || file.size() > kMostBytes)
        return std::nullopt;
    const QByteArray content = file.readAll();
    return chip::MasterList::parse(
        { reinterpret_cast<const std::uint8_t*>(content.constData()), static_cast<std::size_t>(content.size()) });
}

/// Leaves no copy of the text behind.
std::optional<chip::MrzKey> keyOf(const QString& text)
{
    QByteArray characters = text.toUtf8();
    auto key = chip::MrzKey::fromText({ characters.constData(), static_cast<std::size_t>(characters.size()) });
    chip::wipe(characters.data(), static_cast<std::size_t>(characters.size()));
    return key;
}

} // namespace

struct PassportReader::State
{
    /// What one read is about, handed to the reader's thread.
    struct Job
    {
        std::optional<chip::MrzKey> key; ///< Absent for a text that is none.
        chip::ReadWish wish;
        DisplayMessage displayMessage;
        Completed completed;
        std::shared_ptr<chip::CancelToken> cancel;
        std::shared_ptr<chip::CardTerminal> terminal;
        quint64 number = 0;
    };

    void read(Job job);
    chip::PassportReading::Outcome outcomeOf(Job& job);
    void display(const Job& job, const NFCViewDisplayMessage& message);
    void openSheet(const std::shared_ptr<chip::CancelToken>& token);

    // Main thread.
    ReaderLogLevel logLevel = ReaderLogLevel::Info;
    QUrl masterListURL;
    std::shared_ptr<chip::CardTerminal> terminal;
    chip::Patience patience;
    QPointer<QWidget> sheetParent;
    double sheetTextScale = 1;
    QPointer<chip::ReaderSheet> sheet;
    std::shared_ptr<chip::CancelToken> cancel;
    quint64 readNumber = 0;

    // Reader's thread.
    std::optional<chip::MasterList> authorities;

    std::atomic<bool> isReading { false };
    LifeToken life;
    SerialQueue refusals { QStringLiteral("chipReader.refusals") }; ///< Its thread starts with the first refusal.
    SerialQueue queue { QStringLiteral("chipReader") };
};

PassportReader::PassportReader(ReaderLogLevel logLevel, const QUrl& masterListURL) : d(std::make_unique<State>())
{
    d->logLevel = logLevel;
    d->masterListURL = masterListURL;
}

PassportReader::~PassportReader()
{
    cancel();
    d->queue.drain();
    d->refusals.drain();
    if (d->sheet)
        d->sheet->dismiss();
}

void PassportReader::setTerminal(std::shared_ptr<chip::CardTerminal> terminal)
{
    d->terminal = std::move(terminal);
}

void PassportReader::setSheetParent(QWidget* widget)
{
    d->sheetParent = widget;
}

void PassportReader::setSheetTextScale(double scale)
{
    d->sheetTextScale = scale;
    if (d->sheet)
        d->sheet->setTextScale(scale);
}

void PassportReader::setPatience(std::chrono::milliseconds forCard, std::chrono::milliseconds forLostCard)
{
    d->patience = { forCard, forLostCard };
}

void PassportReader::cancel()
{
    if (d->cancel)
        d->cancel->cancel();
}

bool PassportReader::isReading() const
{
    return d->isReading;
}

void PassportReader::readPassport(const QString& mrzKey, const QList<chip::DataGroupId>& tags, bool skipSecureElements,
    DisplayMessage customDisplayMessage, Completed completed)
{
    if (d->isReading.exchange(true)) {
        d->refusals.async([completed = std::move(completed)] {
            if (completed)
                completed(nullptr, NFCPassportReaderError { Kind::AlreadyReading, "a read is under way", 0, {}, {} });
        });
        return;
    }
    d->cancel = std::make_shared<chip::CancelToken>();
    State::Job job { keyOf(mrzKey), { { tags.begin(), tags.end() }, skipSecureElements, {} },
        std::move(customDisplayMessage), std::move(completed), d->cancel, d->terminal, ++d->readNumber };
    d->queue.async([state = d.get(), job = std::move(job)]() mutable { state->read(std::move(job)); });
    d->openSheet(d->cancel); // last: who hears of it may delete the reader
}

void PassportReader::State::openSheet(const std::shared_ptr<chip::CancelToken>& token)
{
    if (sheet)
        sheet->dismiss();
    if (!sheetParent)
        return;
    sheet = new chip::ReaderSheet(sheetParent);
    sheet->setTextScale(sheetTextScale);
    QObject::connect(sheet, &chip::ReaderSheet::cancelled, sheet, [token] { token->cancel(); });
    sheet->present();
}

void PassportReader::State::read(Job job)
{
    auto outcome = outcomeOf(job);
    OPENSSL_thread_stop(); // what the cryptography keeps by thread ends with the read, its random state included
    auto* const error = std::get_if<NFCPassportReaderError>(&outcome);
    NFCViewDisplayMessage last { .kind = error ? Event::error : Event::successfulRead, .progress = error ? 0 : 100 };
    if (error)
        last.failure = *error;
    display(job, last);
    isReading = false;
    if (!job.completed)
        return;
    if (error)
        job.completed(nullptr, std::move(*error));
    else
        job.completed(std::get<std::shared_ptr<NFCPassportModel>>(std::move(outcome)), std::nullopt);
}

chip::PassportReading::Outcome PassportReader::State::outcomeOf(Job& job)
{
    const auto failed = [](Kind kind, const char* detail) {
        return NFCPassportReaderError { kind, detail, 0, {}, {} };
    };
    if (!job.terminal)
        return failed(Kind::NoReader, "there is no contactless reader");
    if (!job.key)
        return failed(Kind::InvalidKey, "the text is no document's key");
    if (!masterListURL.isEmpty()) {
        if (!authorities)
            authorities = loadMasterList(masterListURL);
        if (!authorities)
            return failed(Kind::MasterListUnusable, "the list of trusted authorities cannot be loaded");
        job.wish.authorities = authorities;
    }
    QElapsedTimer clock;
    clock.start();
    chip::PassportReading reading(std::move(*job.key), std::move(job.wish), *job.terminal, *job.cancel, patience,
        [this, &job](const NFCViewDisplayMessage& message) { display(job, message); });
    auto outcome = reading.run();
    if (logLevel <= ReaderLogLevel::Debug) {
        qCDebug(chipLog).nospace() << "read ended after " << clock.elapsed() << " ms, " << reading.commands()
                                   << " commands and " << reading.presentations() << " presentations of the card";
    }
    return outcome;
}

void PassportReader::State::display(const Job& job, const NFCViewDisplayMessage& message)
{
    std::optional<QString> text;
    if (job.displayMessage)
        text = job.displayMessage(message);
    MainQueue::async(life.token(), [this, number = job.number, message, text = text.value_or(message.text())] {
        if (sheet && number == readNumber)
            sheet->display(message, text);
    });
}

} // namespace kelvara
