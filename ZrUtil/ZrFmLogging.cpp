#include "ZrUtil/ZrFmLogging.h"

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"
#include "ui_ZrFmLogging.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QPainter>
#include <QProcess>
#include <QSignalBlocker>
#include <QUrl>

#include <algorithm>

namespace {

/// Binds a variable of the debug log, which other threads read, to a key.
template <class T> void Bind(zr::ZrSetModule& module, const QString& key, int& variable)
{
    T value = static_cast<T>(zr_debug_log_read_switch(&variable));
    module.item(key, value);
    if (module.is_loading())
        zr_debug_log_write_switch(&variable, static_cast<int>(value));
}

QString CurrentFile()
{
    char path[ZR_DEBUG_LOG_PATH_SIZE] = {};
    zr_debug_log_get_cur_path(path);
    return QFile::decodeName(path);
}

QString LevelName(int level)
{
    return QString::fromUtf8(zr_debug_log_level_to_string(level));
}

/// A round handle at every scale: a radius beyond half of the rounded side would make it a square.
QString HandleSheet()
{
    const int line = std::max(1, ZrTheme::DpI(2));
    const int beside = ZrTheme::DpI(15); // of the groove
    const int side = ZrTheme::DpI(6) + 2 * beside;
    return QStringLiteral(
        "QSlider::handle:horizontal { width: %1px; margin: -%2px 0px; border-radius: %3px; }")
        .arg(std::max(1, side - 2 * line))
        .arg(beside)
        .arg(side / 2);
}

} // namespace

ZrFmLogging::ZrFmLogging(QWidget* parent)
    : ZrForm(parent)
    , m_ui(std::make_unique<Ui::ZrFmLogging>())
{
    m_ui->setupUi(this);
    m_name = tr("Logging Settings");
    m_icon = QImage(QStringLiteral(":/settings_logging.png"));
    setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css")));
    ConnectControls();
    update_bindings();
}

ZrFmLogging::~ZrFmLogging()
{
    // Nobody waits for the answer of the desktop any more.
    const auto requests = findChildren<QProcess*>();
    for (QProcess* request : requests) {
        request->disconnect(this);
        request->kill();
        request->waitForFinished();
    }
}

void ZrFmLogging::ConnectControls()
{
    connect(m_ui->toFile, &QCheckBox::toggled, this,
        [](bool on) { zr_debug_log_write_switch(&zr_debug_log_to_file, on); });
    connect(m_ui->toDbg, &QCheckBox::toggled, this,
        [](bool on) { zr_debug_log_write_switch(&zr_debug_log_to_dbg, on); });
    connect(m_ui->level, &QSlider::valueChanged, this, [this](int level) {
        zr_debug_log_write_switch(&zr_debug_log_level, level);
        update_bindings();
    });
    connect(m_ui->flush, &QSlider::valueChanged, this, [this](int level) {
        zr_debug_log_write_switch(&zr_debug_log_flush_level, level);
        update_bindings();
    });
    connect(m_ui->logFileBtn, &QAbstractButton::pressed, this, &ZrFmLogging::change_log_path);
    connect(m_ui->openLogPath, &QAbstractButton::pressed, this, &ZrFmLogging::browse_log_path);
}

void ZrFmLogging::settings(zr::ZrSetModule& module)
{
    Bind<int>(module, QStringLiteral("level"), zr_debug_log_level);
    Bind<bool>(module, QStringLiteral("terminate on critical"), zr_debug_terminate_on_critical);
    Bind<bool>(module, QStringLiteral("log to file"), zr_debug_log_to_file);
    Bind<bool>(module, QStringLiteral("log to debug"), zr_debug_log_to_dbg);
    Bind<int>(module, QStringLiteral("flush if above"), zr_debug_log_flush_level);
    update_bindings();
}

void ZrFmLogging::update_bindings()
{
    // A control clamps what it is shown and would write that back.
    const QSignalBlocker blocked[] = {QSignalBlocker(m_ui->toFile), QSignalBlocker(m_ui->toDbg),
        QSignalBlocker(m_ui->level), QSignalBlocker(m_ui->flush)};
    const int level = zr_debug_log_read_switch(&zr_debug_log_level);
    const int flush = zr_debug_log_read_switch(&zr_debug_log_flush_level);
    m_ui->levelLbl->setText(LevelName(level));
    m_ui->flushLbl->setText(LevelName(flush));
    m_ui->logFilePath->setText(cur_log_path());
    m_ui->logFilePath->setToolTip(cur_log_path()); // one that is longer than the field
    m_ui->level->setValue(level);
    m_ui->flush->setValue(flush);
    m_ui->toFile->setChecked(zr_debug_log_read_switch(&zr_debug_log_to_file) != 0);
    m_ui->toDbg->setChecked(zr_debug_log_read_switch(&zr_debug_log_to_dbg) != 0);
}

QString ZrFmLogging::cur_log_path()
{
    char path[ZR_DEBUG_LOG_PATH_SIZE] = {};
    zr_debug_log_get_base_path(path);
    return QFile::decodeName(path);
}

void ZrFmLogging::OnFormDisplay()
{
    update_bindings();
}

void ZrFmLogging::change_log_path()
{
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Select base debug log file path"), cur_log_path(), tr("All Files (*.*)"));
    m_ui->logFileBtn->setDown(false);
    if (path.isEmpty())
        return;
    zr_debug_log_set_base_path(QFile::encodeName(path).constData());
    update_bindings();
}

void ZrFmLogging::browse_log_path()
{
    const QString path = CurrentFile();
#ifdef Q_OS_WIN
    QProcess::startDetached(QStringLiteral("explorer.exe /select,\"") + path + QLatin1Char('"'));
#else
    if (path.isEmpty())
        return;
    // The desktop's file manager selects the file; without one, the folder is opened. No shell sees the path,
    // and nobody waits for the answer. A comma would part the path in two.
    const QFileInfo file(path);
    QString url = QUrl::fromLocalFile(file.absoluteFilePath()).toString(QUrl::FullyEncoded);
    url.replace(QLatin1Char(','), QLatin1String("%2C"));
    auto* request = new QProcess(this);
    const auto end = [request, folder = file.absolutePath()](bool isShown) {
        if (!isShown)
            QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
        request->deleteLater();
    };
    connect(request, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [end](int code, QProcess::ExitStatus status) { end(status == QProcess::NormalExit && code == 0); });
    connect(request, &QProcess::errorOccurred, this, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(false);
    });
    request->setStandardOutputFile(QProcess::nullDevice());
    request->setStandardErrorFile(QProcess::nullDevice());
    request->start(QStringLiteral("dbus-send"),
        {QStringLiteral("--session"), QStringLiteral("--print-reply"), QStringLiteral("--reply-timeout=2000"),
            QStringLiteral("--dest=org.freedesktop.FileManager1"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1.ShowItems"), QStringLiteral("array:string:") + url,
            QStringLiteral("string:")});
#endif
}

void ZrFmLogging::paintEvent(QPaintEvent* /*event*/)
{
    // Lines as below the controls of the other forms: outputs, levels, path.
    QPainter p(this);
    p.setPen(ZrTheme::ctrlOutlineCol);
    const int half = m_ui->gridLayout->verticalSpacing() / 2;
    for (const QWidget* last : {static_cast<QWidget*>(m_ui->toDbg), static_cast<QWidget*>(m_ui->label_3),
             static_cast<QWidget*>(m_ui->logFilePath)}) {
        const int y = last->geometry().bottom() + half;
        p.drawLine(0, y, width(), y);
    }
}

void ZrFmLogging::resizeEvent(QResizeEvent* event)
{
    // Sizes in the style sheet follow the scale.
    const QString sheet = ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css"));
    if (styleSheet() != sheet)
        setStyleSheet(sheet);
    // A style sheet that sets the size alone does not hand the family down.
    const auto controls = findChildren<QWidget*>();
    for (QWidget* control : controls)
        control->setFont(ZrTheme::font);
    const QString handle = HandleSheet();
    for (QSlider* slider : {m_ui->level, m_ui->flush}) {
        if (slider->styleSheet() != handle)
            slider->setStyleSheet(handle);
    }
    // On the grid of the other forms.
    m_ui->gridLayout->setContentsMargins(0, ZrTheme::DpI(12), 0, 0);
    m_ui->gridLayout->setHorizontalSpacing(ZrTheme::DpI(16));
    m_ui->gridLayout->setVerticalSpacing(ZrTheme::DpI(16));
    m_ui->horizontalLayout->setSpacing(ZrTheme::DpI(8));
    // The widest name of a level; the slider beside it keeps its length.
    int widest = 0;
    m_ui->levelLbl->ensurePolished();
    const QFontMetrics metrics = m_ui->levelLbl->fontMetrics();
    for (int level = -1; level <= ZR_DEBUG_LOG_TRACE; ++level)
        widest = std::max(widest, metrics.horizontalAdvance(LevelName(level)));
    m_ui->levelLbl->setMinimumWidth(widest + ZrTheme::DpI(8));
    m_ui->flushLbl->setMinimumWidth(widest + ZrTheme::DpI(8));
    // A finger hits them at any scale.
    QWidget* const targets[] = {m_ui->toFile, m_ui->toDbg, m_ui->level, m_ui->flush, m_ui->logFilePath,
        m_ui->logFileBtn, m_ui->openLogPath};
    for (QWidget* target : targets)
        target->setMinimumHeight(std::max(44, ZrTheme::DpI(44)));
    m_ui->logFileBtn->setMinimumWidth(std::max(44, ZrTheme::DpI(64)));
    m_ui->openLogPath->setMinimumWidth(std::max(
        44, QFontMetrics(ZrTheme::font).horizontalAdvance(m_ui->openLogPath->text()) + ZrTheme::DpI(32)));
    ZrForm::resizeEvent(event);
}
