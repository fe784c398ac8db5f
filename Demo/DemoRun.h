#pragma once

#include "Demo/CallScene.h"
#include "Demo/ContactSheet.h"
#include "Demo/DemoHost.h"
#include "Demo/DemoOptions.h"
#include "Demo/FrameTap.h"
#include "Demo/PictureAnalysis.h"
#include "Demo/ReplayStage.h"
#include "Demo/ResultFolder.h"
#include "Demo/ScriptedPerson.h"

#include <QEventLoop>
#include <QTimer>

#include <memory>

namespace kelvara::demo {

enum ExitCode { Completed = 0, NotCompleted = 1, BadInput = 2, NoCamera = 3 };

/// One run of the demo, from the options to the out folder. Main thread.
class DemoRun final : public QObject
{
    Q_OBJECT
public:
    /// `hasDisplay`: whether there is somebody who could press the shutter.
    DemoRun(const DemoOptions& options, bool hasDisplay);
    ~DemoRun() override;

    /// Runs until the flow is complete, given up or out of time; the process's exit code.
    [[nodiscard]] int exec();

private:
    [[nodiscard]] bool openCameras();
    [[nodiscard]] bool openReplay();
    [[nodiscard]] bool openReal();
    void openCall();
    void runFlow();
    void giveUp(const QString& failure);
    void watch();
    void warnAboutSmallPrint();
    [[nodiscard]] std::shared_ptr<FrameTap> activeCamera() const;
    [[nodiscard]] int report();
    void keepScreen(const QString& name);
    /// Writes a screen at once, as a dozen are sixty megabytes, and has it on the sheet; the file's name.
    QString keep(const QString& kind, const QString& name, const QImage& screen);
    int fail(ExitCode code, const QString& sentence);

    const DemoOptions m_options;
    const bool m_byHand;
    const QSize m_size;
    ResultFolder m_folder;
    PlatformServices m_services;
    QList<ViewType> m_steps { ViewType::idPhoto, ViewType::selfie };
    PictureAnalysis m_analysis;
    std::unique_ptr<Stage> m_stage;
    std::shared_ptr<FrameTap> m_back;
    std::shared_ptr<FrameTap> m_front;
    std::unique_ptr<DemoHost> m_host;
    std::unique_ptr<ScriptedPerson> m_person;
    std::unique_ptr<CallScene> m_call; ///< Null without video calls.
    QEventLoop m_loop;
    QJsonArray m_screens; ///< Their files.
    QList<SheetEntry> m_sheet;
    bool m_isComplete = false; ///< The view has said so.
    QString m_failure; ///< Why the flow was not completed; empty if it was.
    int m_exitCode = NotCompleted;
    qint64 m_flowMilliseconds = 0;
    qint64 m_peoplesMilliseconds = 0; ///< Of it.
    qint64 m_nextDiagnosis = 0;
    bool m_warned = false;
};

} // namespace kelvara::demo
