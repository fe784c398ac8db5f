#include "KycSignals.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

using namespace kelvara;

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.setPalette(QPalette(QColor(0x10, 0x20, 0x2a)));
    window.resize(390, 844);
    auto* layout = new QVBoxLayout(&window);
    auto* view = new QorvelKycView;
    auto* told = new QLabel(QStringLiteral("Nothing captured yet"));
    layout->addWidget(view, 1);
    layout->addWidget(told);

    KycSignals events;
    view->setDelegate(&events);
    QObject::connect(&events, &KycSignals::frontCaptured, told, [told](const QImage&, const QImage& card) {
        told->setText(QStringLiteral("Front, %1 pixels wide").arg(card.width()));
    });
    QObject::connect(&events, &KycSignals::backCaptured, told, [told] { told->setText(QStringLiteral("Back")); });
    QObject::connect(&events, &KycSignals::selfieCaptured, told, [told] { told->setText(QStringLiteral("Selfie")); });
    QObject::connect(&events, &KycSignals::closed, &application, &QApplication::quit);
    view->setViewTypes({ ViewType::idPhoto, ViewType::selfie });
    window.show();
    return application.exec();
}
