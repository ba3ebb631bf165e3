// The smallest application: a window with one page, the settings forms, and settings that stay.
//     hello_view [--settings FILE] [--screenshot FILE]: the second writes a picture of it and ends
// Exit code 1 for a wrong option, 3 when picture or settings cannot be written.

#include "ZrKit/settings/ZrAppSettings.h"
#include "ZrKit/ui/ZrNotice.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QPainter>

struct HomePage final : ZrPage
{
    explicit HomePage(ZrAppView* view)
        : ZrPage(view)
    {
        m_settings->img = QImage(QStringLiteral(":/settings_application.png"));
        m_settings->text = QStringLiteral("Settings");
        connect(m_settings, &ZrBtn::Clicked, view, &ZrAppView::ToggleSettings);
    }

    void resizeEvent(QResizeEvent* /*event*/) override
    {
        m_settings->setGeometry(ZrTheme::DpI(16), ZrTheme::DpI(16), ZrTheme::DpI(100), ZrTheme::DpI(80));
    }

    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        const QRect panel = rect().adjusted(width() / 4, height() * 2 / 5, -width() / 4, -height() * 2 / 5);
        Blank(painter, panel, 0);
        painter.setFont(ZrTheme::fontHuge);
        painter.setPen(ZrTheme::titleText);
        painter.drawText(panel, Qt::AlignCenter,
            QStringLiteral("Hello, %1 deep").arg(ZrUnits::GetShortLengthString(12.5, 1, true)));
    }

    ZrBtn* m_settings = new ZrBtn(this, ZrBtn::typeTool);
};

struct HelloView final : ZrAppView
{
    explicit HelloView(const QString& path)
        : ZrAppView(nullptr, std::chrono::milliseconds(40), updateTimer, std::chrono::milliseconds(40))
        , m_settings(path)
    {
        AddPage(QStringLiteral("Home"), new HomePage(this), true);
        forms().AddNewForm(new ZrFmApp(&forms()));
        forms().AddNewForm(new ZrFmLogging(&forms()));
        m_settings.Load(*this);
        if (!m_settings.Message().isEmpty())
            new ZrNotice(this, m_settings.Message());
    }

    void OnExit() override
    {
        m_exitCode = m_settings.Save(*this) ? m_exitCode : 3;
        std::fputs(qPrintable(m_settings.Message()), stderr);
    }

    ZrAppSettings m_settings;
    int m_exitCode = 0;
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    const QString file = QStringLiteral("FILE");
    const QCommandLineOption settings(QStringLiteral("settings"),
        QStringLiteral("Keep the settings in FILE."), file, QStringLiteral("hello_view.json"));
    const QCommandLineOption picture(QStringLiteral("screenshot"), QStringLiteral("Write a picture."), file);
    parser.addHelpOption();
    parser.addOptions({settings, picture});
    parser.process(app);
    ZrTheme::SetDesignScale(1440, 900); // the window that the layout is made for
    ZrTheme::SetStdStyle();
    HelloView view(parser.value(settings));
    const auto take = [&] {
        if (!view.grab().save(parser.value(picture)))
            view.m_exitCode = 3;
        view.close();
    };
    if (parser.isSet(picture))
        QObject::connect(&view, &QOpenGLWidget::frameSwapped, &view, take, Qt::QueuedConnection);
    view.resize(1280, 800);
    view.show();
    QApplication::exec();
    return view.m_exitCode;
}
