// Plans, records and reviews surveys of underwater vehicles.

#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QSurfaceFormat>

#include <cstdio>

namespace {

void SetSurfaceFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 0);
    format.setProfile(QSurfaceFormat::NoProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(1);
    QSurfaceFormat::setDefaultFormat(format);
}

} // namespace

int main(int argc, char** argv)
{
    SetSurfaceFormat();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    QCoreApplication::setApplicationName(QStringLiteral("ZrSurvey"));
    QCoreApplication::setOrganizationName(QStringLiteral("ZrSurvey"));

    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    SurveyView view((QString()));
    view.resize(1280, 800);
    view.show();
    return QApplication::exec();
}
