#include "apps/ZrSurvey/FormAbout.h"

#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QDir>
#include <QOpenGLFunctions>
#include <QSysInfo>

namespace {

QString GlText()
{
    QString text;
    ZrAppView::with_gl_context([&text](QOpenGLFunctions& gl) {
        const auto part = [&gl](GLenum name) {
            return QString::fromLatin1(reinterpret_cast<const char*>(gl.glGetString(name)));
        };
        text = QStringLiteral("OpenGL %1, %2").arg(part(GL_VERSION), part(GL_RENDERER));
    });
    return text;
}

} // namespace

FormAbout::FormAbout(SurveyView& view)
    : SurveyForm(view)
{
    m_name = tr("About");
    m_icon = QImage(QStringLiteral(":/icons/info.png"));
    const QString version = QStringLiteral(ZR_SURVEY_VERSION);
    AddRow(tr("ZrSurvey %1").arg(version), tr("Plans, records and reviews surveys of underwater vehicles."),
        {}, below);
    const int libraries = AddRow(tr("Libraries"), QString(), {}, below);
    OnShow([this, libraries, version] {
        const QStringList parts({tr("ZrUtil and ZrKit %1").arg(version),
            QStringLiteral("Qt %1").arg(QString::fromLatin1(qVersion())), GlText(),
            QSysInfo::prettyProductName()});
        QStringList lines = parts;
        lines.removeAll(QString());
        SetHelp(libraries, lines.join(QLatin1Char('\n')));
    });
    AddRow(tr("Data folder"),
        View().DataDir().isEmpty() ? tr("Nothing is kept.") : QDir::toNativeSeparators(View().DataDir()), {},
        below);
    ZrBtn* log = Button(tr("Debug log"), QStringLiteral("list"));
    connect(log, &ZrBtn::Clicked, this, [this] { View().forms().SetToForm(m_logForm); });
    AddRow(tr("Diagnosis"), tr("What the application writes about its own work, and where."), {log}, beside);
}
