#include "KycItem.h"

#include <QApplication>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QTimer>

int main(int argc, char** argv)
{
    QApplication application(argc, argv); // widgets in QML: no QGuiApplication
    qmlRegisterType<KycItem>("Host", 1, 0, "KycItem");
    QQuickWidget scene;
    scene.quickWindow()->setProperty("sceneWidget", QVariant::fromValue<QWidget*>(&scene));
    scene.setResizeMode(QQuickWidget::SizeRootObjectToView);
    scene.setSource(QUrl(QStringLiteral("qrc:/Main.qml")));
    scene.resize(390, 844);
    scene.show();
    if (application.arguments().contains(QStringLiteral("--quit"))) // for a look whether it starts
        QTimer::singleShot(1500, &application, &QApplication::quit);
    return scene.status() == QQuickWidget::Ready ? application.exec() : 1;
}
