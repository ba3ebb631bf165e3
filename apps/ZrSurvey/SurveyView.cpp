#include "apps/ZrSurvey/SurveyView.h"

#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/settings/ZrAppSettings.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrFormFrame.h"
#include "ZrKit/ui/ZrInputColours.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrNotice.h"
#include "ZrKit/ui/ZrOverlay.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/FormAbout.h"
#include "apps/ZrSurvey/FormDisplay.h"
#include "apps/ZrSurvey/FormRecording.h"
#include "apps/ZrSurvey/FormSonar.h"
#include "apps/ZrSurvey/FormSources.h"
#include "apps/ZrSurvey/HomePage.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ScenePage.h"
#include "apps/ZrSurvey/SurveyClosing.h"
#include "apps/ZrSurvey/SurveyImport.h"
#include "apps/ZrSurvey/SurveyModel.h"

#include <QApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>

#include <chrono>
#include <utility>

namespace {

/// Of the part that is no page.
const auto formsName = QLatin1String(" forms");

/// Pages ask for their frames themselves: the view's own timer need not paint a screen that stands still.
constexpr std::chrono::milliseconds idle = std::chrono::hours(24);

/// From a change to its being saved: a slider that is dragged is saved once.
constexpr std::chrono::milliseconds saveDelay(800);

} // namespace

SurveyView::SurveyView(const QString& dataDir)
    : ZrAppView(nullptr, idle, updateTimer, idle)
    , m_model(std::make_unique<SurveyModel>(dataDir))
    , m_toast(new ZrToast(this))
    , m_import(new SurveyImport(*this))
    , m_closing(new SurveyClosing(*this, *m_toast))
    , m_dataDir(dataDir)
    , m_save(new QTimer(this))
{
    setWindowTitle(QStringLiteral("ZrSurvey"));
    new ZrInputColours(this);
    ZrInputDlg::s_keepInside = true; // the window may be smaller than the screen
    m_save->setSingleShot(true);
    m_save->setInterval(saveDelay);
    connect(m_save, &QTimer::timeout, this, &SurveyView::SaveSettings);
    m_forms = &forms();
    m_forms->m_hasTabNames = true;
    m_forms->installEventFilter(this);
    m_formFrame = new ZrFormFrame(*this, *m_forms);
    m_formFrame->m_isLive = [](const ZrForm& form) {
        const auto* own = qobject_cast<const SurveyForm*>(&form);
        return own && own->IsLive();
    };
    AddForms();
    AddPage(QStringLiteral("Home"), new HomePage(*this), true);
    AddLater<PlanPage>(QStringLiteral("Plan"));
    AddLater<RecordPage>(QStringLiteral("Record"));
    AddLater<ReviewPage>(QStringLiteral("Review"));
    AddLater<ScenePage>(QStringLiteral("Scene"));
    m_unbuilt.append({formsName, [](SurveyView& view) { view.AddRowForms(); }});
    LoadSettings();
    ApplyColours();
    m_current->OnPageOpen();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*before*/, QWidget* now) {
        // Panels give the keys back to what had them, which may be on a page that was left meanwhile.
        if (now && isAncestorOf(now) && !now->isVisibleTo(this))
            GiveFocus();
    });
    connect(this, &QOpenGLWidget::frameSwapped, this, [this] {
        if (std::exchange(m_isFramed, true))
            return;
        QTimer::singleShot(0, this, &SurveyView::BuildNext);
    });
}

SurveyView::~SurveyView()
{
    // Pages use the model until their end.
    qDeleteAll(m_pages);
}

template <class T> void SurveyView::AddLater(const QString& name)
{
    m_unbuilt.append({name, [name](SurveyView& view) {
                          auto* page = new T(view);
                          view.AddPage(name, page, false);
                          page->OnColours();
                      }});
}

/// Builds a part; false when it is there already, or unknown.
bool SurveyView::Need(const QString& part)
{
    for (int i = 0; i < m_unbuilt.size(); ++i) {
        if (m_unbuilt[i].name != part)
            continue;
        // Its own building may ask for others.
        const Part taken = m_unbuilt.takeAt(i);
        taken.build(*this);
        return true;
    }
    return false;
}

void SurveyView::BuildNext()
{
    const bool hasBuilt = Need(formsName) || (m_model->plan.HasDraft() && Need(QStringLiteral("Plan")));
    if (hasBuilt)
        QTimer::singleShot(0, this, &SurveyView::BuildNext);
    else
        m_isComplete = true;
}

ZrPage* SurveyView::GetPage(const QString& name)
{
    Need(name);
    return ZrAppView::GetPage(name);
}

SurveyPage* SurveyView::Page() const
{
    return static_cast<SurveyPage*>(m_current);
}

void SurveyView::Show(const QString& page)
{
    if (m_current != GetPage(page))
        SetPageTo(page, true);
}

bool SurveyView::Open(const QString& path)
{
    if (!QFileInfo(path).isFile()) {
        Warn(tr("%1 is no file").arg(path));
        return false;
    }
    const QString suffix = QFileInfo(path).suffix().toLower();
    static const QStringList plans{QStringLiteral("json"), QStringLiteral("gpx"), QStringLiteral("kml"),
        QStringLiteral("geojson"), QStringLiteral("xml")};
    if (!plans.contains(suffix) && ZrImportTask::IsForeign(path)) {
        Show(QStringLiteral("Review"));
        m_import->Start(path);
        return true;
    }
    ZrLogScan scan;
    if (suffix != QLatin1String("log") && !scan.Open(path))
        OpenPlan(path);
    else
        OpenLog(path);
    return true;
}

void SurveyView::OpenLog(const QString& path)
{
    static_cast<ReviewPage*>(GetPage(QStringLiteral("Review")))->OpenLog(path);
    Show(QStringLiteral("Review"));
}

void SurveyView::OpenPlan(const QString& path)
{
    Show(QStringLiteral("Plan"));
    static_cast<PlanPage*>(GetPage(QStringLiteral("Plan")))->OpenPlan(path);
}

void SurveyView::PlaceToast()
{
    if (Page())
        m_toast->SetFree(Page()->FreeBelow(), Page()->FreeRight());
}

void SurveyView::Tell(const QString& text, const QString& action, const std::function<void()>& run)
{
    PlaceToast();
    m_toast->Show(text, action, run);
}

void SurveyView::Warn(const QString& text)
{
    PlaceToast();
    m_toast->Show(ZrToast::error, text);
}

/// At the left: forms whose effect the page shows leave it the rest of the window.
void SurveyView::PlaceForms()
{
    const int margin = ZrTheme::DpI(24);
    const int top = m_forms->y(); // below the band of the title
    const int wide = std::min(ZrTheme::DpI(960), width() - 2 * margin);
    m_forms->setGeometry(margin, top, wide, height() - top - margin);
}

/// The log of the library has no tab: with one more the tabs would not fit into the smallest window.
void SurveyView::AddForms()
{
    m_logging = new ZrFmLogging(&forms());
    m_logging->m_isTiered = true;
    forms().AddNewForm(new ZrFmApp(&forms()));
    forms().AddNewForm(m_logging);
}

/// Those that keep nothing themselves: the settings can be read without them.
void SurveyView::AddRowForms()
{
    auto* about = new FormAbout(*this);
    m_rowForms = {new FormDisplay(*this), new FormRecording(*this), new FormSources(*this),
        new FormSonar(*this), about};
    m_logging->m_parentForm = about;
    about->m_logForm = m_logging->m_name;
    for (ZrRowForm* form : qAsConst(m_rowForms)) {
        forms().AddNewForm(form);
        form->Restyle();
    }
    forms().update();
}

void SurveyView::ShowSettings(const QString& form)
{
    Need(formsName);
    if (!form.isEmpty())
        forms().SetToForm(form);
    if (forms().isHidden())
        ToggleSettings();
}

void SurveyView::LoadSettings()
{
    if (m_dataDir.isEmpty())
        return;
    ZrAppSettings file(m_dataDir + QStringLiteral("/settings.json"));
    file.Load(*this);
    if (!file.Message().isEmpty())
        new ZrNotice(this, file.Message());
}

bool SurveyView::SaveSettings()
{
    m_save->stop();
    if (m_dataDir.isEmpty())
        return true;
    ZrAppSettings file(m_dataDir + QStringLiteral("/settings.json"));
    const bool isSaved = file.Save(*this);
    if (!file.Message().isEmpty())
        Warn(file.Message());
    return isSaved;
}

void SurveyView::SaveSoon()
{
    m_save->start();
}

void SurveyView::SettingsEdited()
{
    SaveSoon();
    Q_EMIT SettingsChanged();
}

void SurveyView::settings(zr::ZrSetModule& module)
{
    ZrAppView::settings(module);
    module.sub_item(QStringLiteral("survey"), m_model->settings);
}

void SurveyView::OnExit()
{
    SaveSettings();
}

bool SurveyView::MayClose()
{
    return m_closing->MayClose();
}

/// The panel opened last, the settings, or the page.
QWidget* SurveyView::Front() const
{
    const QObjectList& all = children(); // what was raised last is at the end
    for (auto child = all.crbegin(); child != all.crend(); ++child) {
        if (!qobject_cast<ZrOverlay*>(*child) && !qobject_cast<ZrInputDlg*>(*child) && *child != m_forms)
            continue;
        auto* panel = static_cast<QWidget*>(*child);
        if (!panel->isHidden())
            return panel;
    }
    return m_current && !m_current->isHidden() ? m_current : nullptr;
}

void SurveyView::GiveFocus()
{
    const QWidget* focus = focusWidget();
    const bool isWindow = !focus || focus == this || focus->parentWidget() == this;
    QWidget* front = Front();
    if (!front)
        setFocus(Qt::OtherFocusReason);
    else if (isWindow || !focus->isVisibleTo(this) || !focus->isEnabled())
        front->setFocus(Qt::OtherFocusReason);
}

bool SurveyView::focusNextPrevChild(bool next)
{
    // Also asked when what has the keys is hidden or switched off. The next one in order would be the button
    // that closes the window: nobody chose it.
    const QWidget* focus = focusWidget();
    if (focus && focus != this && (!focus->isVisibleTo(this) || !focus->isEnabled())) {
        GiveFocus();
        return true;
    }
    return (next && m_closing->TakeFocus()) || ZrAppView::focusNextPrevChild(next);
}

bool SurveyView::event(QEvent* event)
{
    // Else the first button in order would have the keys.
    if (event->type() == QEvent::WindowActivate)
        GiveFocus();
    return ZrAppView::event(event);
}

void SurveyView::SetColours(int scheme)
{
    m_model->settings.colours = scheme;
    ApplyColours();
    SettingsEdited();
}

void SurveyView::ApplyColours()
{
    ZrColourScheme::Apply(m_model->settings.colours);
    const QString sheet = ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css"));
    if (qApp->styleSheet() != sheet)
        qApp->setStyleSheet(sheet);
    for (ZrPage* page : qAsConst(m_pages))
        static_cast<SurveyPage*>(page)->OnColours();
    PlaceToast();
    m_toast->Place();
    for (ZrRowForm* form : qAsConst(m_rowForms))
        form->Restyle();
    m_logging->setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css")));
    forms().update();
    Q_EMIT ColoursChanged();
    update();
}

void SurveyView::resizeGL(int w, int h)
{
    {
        const ZrLegible::Scale scale(w, h);
        ZrAppView::resizeGL(w, h);
    }
    PlaceForms();
    // The library has set its standard style anew.
    ApplyColours();
}

void SurveyView::paintGL()
{
    ZrAppView::paintGL();
    Q_EMIT FramePainted();
}

/// Shortcuts of the page are not meant by who types, nor by who is at the settings in front of it.
bool SurveyView::TakesShortcut(int key) const
{
    const QWidget* focus = QApplication::focusWidget();
    if (qobject_cast<const QLineEdit*>(focus) && key != Qt::Key_Escape)
        return false;
    return !m_forms->isVisible() || !(m_forms == focus || m_forms->isAncestorOf(focus));
}

bool SurveyView::eventFilter(QObject* watched, QEvent* event)
{
    // The forms of the library do not tell of what they change.
    if (watched == m_forms && event->type() == QEvent::Hide && m_isComplete)
        SaveSoon();
    return ZrAppView::eventFilter(watched, event);
}

void SurveyView::keyPressEvent(QKeyEvent* event)
{
    const bool isAlt = event->modifiers() == Qt::AltModifier;
    if (Page() && TakesShortcut(event->key()) && Page()->OnKey(event->key(), event->modifiers()))
        return;
    switch (event->key()) {
    case Qt::Key_F1:
        Show(QStringLiteral("Home"));
        return;
    case Qt::Key_F2:
        Show(QStringLiteral("Plan"));
        return;
    case Qt::Key_F3:
        Show(QStringLiteral("Record"));
        return;
    case Qt::Key_F4:
        Show(QStringLiteral("Review"));
        return;
    case Qt::Key_F5:
        Show(QStringLiteral("Scene"));
        return;
    case Qt::Key_F10:
        ToggleSettings();
        return;
    case Qt::Key_F11:
        ScreenMode();
        return;
    case Qt::Key_Left:
        if (isAlt) {
            Back();
            return;
        }
        break;
    default:
        break;
    }
    ZrAppView::keyPressEvent(event);
}
