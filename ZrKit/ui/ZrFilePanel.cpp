#include "ZrKit/ui/ZrFilePanel.h"

#include "ZrKit/review/ZrWorker.h"
#include "ZrKit/ui/ZrFolderReader.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLocale>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

QImage Icon(const char* name)
{
    return QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name)));
}

} // namespace

/// Of a folder under way: the worker's, but for `reader.cancel`.
struct ZrFilePanel::Reading
{
    void Run(const QString& folder, const QStringList& suffixes)
    {
        if (!reader.Read(folder, suffixes))
            return;
        const QLocale locale;
        const QImage folderIcon = Icon("folder");
        const QImage fileIcon = Icon("file");
        for (const ZrFolderReader::Entry& entry : reader.Entries()) {
            ZrListItem item;
            item.title = QFileInfo(entry.path).fileName();
            item.image = entry.isFolder ? folderIcon : fileIcon;
            item.data = entry.path;
            if (!entry.isFolder) {
                item.subtitle
                    = locale.toString(QDateTime::fromMSecsSinceEpoch(entry.time), QLocale::ShortFormat);
                item.detail = locale.formattedDataSize(entry.bytes, 1, QLocale::DataSizeSIFormat);
            }
            items.append(item);
        }
    }

    ZrFolderReader reader;
    QVector<ZrListItem> items;
};

ZrFilePanel::ZrFilePanel(QWidget* parent, const QString& purpose)
    : ZrOverlay(parent, purpose)
    , m_purpose(purpose)
    , m_folder(QDir::home())
    , m_places(new ZrTouchList(this))
    , m_list(new ZrTouchList(this))
    , m_name(new ZrInput(this))
    , m_up(new ZrBtn(this, ZrBtn::typeTool))
    , m_slow(new QTimer(this))
{
    m_name->kind = ZrInput::kindText;
    m_name->caption = tr("File name");
    m_name->setAccessibleName(m_name->caption);
    m_up->img = Icon("up");
    m_up->setObjectName(QStringLiteral("up"));
    m_list->setObjectName(QStringLiteral("files"));
    m_up->setToolTip(tr("Folder above (Alt+Up)"));
    m_up->setAccessibleName(tr("Folder above"));
    m_slow->setSingleShot(true);
    m_slow->setInterval(DelayMilliseconds);
    connect(m_slow, &QTimer::timeout, this, [this] {
        m_list->m_empty = tr("Reading…");
        m_list->viewport()->update();
    });
    connect(m_up, &ZrBtn::Clicked, this, &ZrFilePanel::GoUp);
    connect(m_list, &ZrTouchList::Chosen, this, &ZrFilePanel::ChooseRow);
    connect(m_places, &ZrTouchList::Chosen, this, [this](int row) { SetFolder(m_placePaths.value(row)); });
    connect(m_name, &QLineEdit::textChanged, this, &ZrFilePanel::ShowState);
    SetMode(openFile);
}

ZrFilePanel::~ZrFilePanel()
{
    StopReading();
}

/// Those that are plugged in, and drives of a network.
QVector<ZrFilePanel::Volume> ZrFilePanel::Volumes()
{
    QVector<Volume> found;
    const auto volumes = QStorageInfo::mountedVolumes();
    for (const QStorageInfo& volume : volumes) {
        const QString root = volume.rootPath();
        if (volume.isReady()
            && (root.startsWith(QLatin1String("/media")) || root.startsWith(QLatin1String("/mnt"))))
            found.append({volume.displayName(), root});
    }
    return found;
}

void ZrFilePanel::SetMode(eMode mode)
{
    m_mode = mode;
    m_name->setVisible(mode == saveFile);
    SetAcceptText(mode == openFile ? tr("Open") : mode == saveFile ? tr("Save") : tr("Use this folder"));
    Restyle();
}

void ZrFilePanel::SetSuffixes(const QStringList& suffixes)
{
    m_suffixes = suffixes;
}

void ZrFilePanel::SetFolder(const QString& folder)
{
    QDir dir(folder.isEmpty() ? QDir::homePath() : folder);
    while (!dir.exists() && !dir.isRoot()) {
        const QString above = QFileInfo(dir.absolutePath()).path();
        if (above == dir.absolutePath())
            break;
        dir.setPath(above);
    }
    m_folder = QDir(dir.absolutePath());
    if (isVisible())
        Fill();
}

void ZrFilePanel::SetFileName(const QString& name)
{
    m_name->SetText(name);
    ShowState();
}

void ZrFilePanel::showEvent(QShowEvent* event)
{
    ZrOverlay::showEvent(event);
    FillPlaces();
    Fill();
}

void ZrFilePanel::hideEvent(QHideEvent* event)
{
    StopReading();
    ZrOverlay::hideEvent(event);
}

/// Each piece has a worker of its own: one that a drive holds up must not hold up the next.
void ZrFilePanel::Work(
    const std::function<void()>& work, const std::function<void()>& stop, const std::function<void()>& then)
{
    auto* worker = new ZrWorker(this);
    connect(worker, &ZrWorker::Finished, this, [worker, then] {
        worker->deleteLater();
        then();
    });
    worker->Start([work](IZrProgress& /*progress*/) { work(); }, stop);
}

void ZrFilePanel::FillPlaces()
{
    ShowPlaces();
    if (std::exchange(m_isLooking, true))
        return;
    const auto found = std::make_shared<QVector<Volume>>();
    Work([found] { *found = Volumes(); }, {},
        [this, found] {
            m_isLooking = false;
            m_volumes = *found;
            ShowPlaces();
        });
}

void ZrFilePanel::ShowPlaces()
{
    QVector<ZrListItem> items;
    QStringList paths;
    const auto add = [&](const QString& name, const QString& path, const char* icon) {
        if (path.isEmpty() || paths.contains(path))
            return;
        paths.append(path);
        items.append({name, QString(), QString(), Icon(icon), false, QColor(), path});
    };
    add(tr("Home"), QDir::homePath(), "home");
    add(tr("Documents"), QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), "folder");
    for (const Volume& volume : qAsConst(m_volumes))
        add(volume.name, volume.path, "save");
    add(tr("Computer"), QDir::rootPath(), "folder");
    if (paths == m_placePaths)
        return;
    m_placePaths = paths;
    m_places->SetItems(items);
}

void ZrFilePanel::StopReading()
{
    m_slow->stop();
    if (m_reading)
        m_reading->reader.cancel = true;
    m_reading.reset();
}

void ZrFilePanel::Fill()
{
    StopReading();
    m_entries.clear();
    m_error.clear();
    m_leftOut.clear();
    m_list->m_empty.clear();
    m_list->SetItems({});
    ShowTitle();
    setToolTip(QString());
    ShowState();
    m_reading = std::make_shared<Reading>();
    m_reading->reader.m_most = MaxEntries;
    m_reading->reader.m_hasFiles = m_mode != chooseFolder;
    m_slow->start();
    Work([reading = m_reading, folder = Folder(), suffixes = m_suffixes] { reading->Run(folder, suffixes); },
        [reading = m_reading] { reading->reader.cancel = true; },
        [this, reading = m_reading] {
            // Otherwise another folder is read by now, or none is shown.
            if (reading == m_reading)
                Show(*reading);
        });
}

void ZrFilePanel::Show(const Reading& reading)
{
    m_slow->stop();
    for (const ZrFolderReader::Entry& entry : reading.reader.Entries())
        m_entries.append({entry.path, entry.isFolder});
    m_error = reading.reader.Error();
    m_list->m_empty = m_error.isEmpty() ? tr("Nothing here that could be opened") : m_error;
    m_list->SetItems(reading.items);
    m_list->SetCurrent(-1);
    m_list->scrollToTop();
    for (int row = 0; row < m_entries.size(); ++row) {
        if (m_entries[row].path == m_from)
            m_list->SetCurrent(row);
    }
    m_from.clear();
    if (reading.reader.Left() > 0)
        m_leftOut = tr("%1 entries are not shown").arg(reading.reader.Left());
    ShowState();
    m_reading.reset();
    Q_EMIT FolderRead(Folder());
}

void ZrFilePanel::SetPurpose(const QString& purpose)
{
    m_purpose = purpose;
    ShowTitle();
}

void ZrFilePanel::ShowTitle()
{
    const QString folder = m_folder.isRoot() ? m_folder.path() : m_folder.dirName();
    SetTitle(m_purpose.isEmpty() ? folder : tr("%1 – %2").arg(m_purpose, folder));
}

void ZrFilePanel::GoUp()
{
    if (m_folder.isRoot())
        return;
    m_from = m_folder.absolutePath();
    SetFolder(QFileInfo(m_from).path());
}

void ZrFilePanel::ChooseRow(int row)
{
    if (row < 0 || row >= m_entries.size())
        return;
    const Entry entry = m_entries[row];
    if (entry.isFolder) {
        SetFolder(entry.path);
        return;
    }
    if (m_mode == saveFile) {
        SetFileName(QFileInfo(entry.path).fileName());
        return;
    }
    Accept();
}

QString ZrFilePanel::FileName() const
{
    const QString name = m_name->QLineEdit::text().trimmed();
    const bool hasSuffix
        = m_suffixes.isEmpty() || m_suffixes.contains(QFileInfo(name).suffix(), Qt::CaseInsensitive);
    return name.isEmpty() || hasSuffix ? name : name + QLatin1Char('.') + m_suffixes[0];
}

QString ZrFilePanel::Chosen() const
{
    if (m_mode == chooseFolder)
        return m_folder.absolutePath();
    if (m_mode == saveFile) {
        const QString name = FileName();
        const bool isName = !name.isEmpty() && !name.contains(QLatin1Char('/')) && name != QLatin1String(".")
            && name != QLatin1String("..");
        return isName ? m_folder.filePath(name) : QString();
    }
    const int row = m_list->Current();
    return row >= 0 && row < m_entries.size() && !m_entries[row].isFolder ? m_entries[row].path : QString();
}

void ZrFilePanel::ShowState()
{
    const QString path = Chosen();
    const QFileInfo file(path);
    const bool isFolder = m_mode == saveFile && !path.isEmpty() && file.isDir();
    SetAcceptEnabled(m_error.isEmpty() && !isFolder && (m_mode == openFile || !path.isEmpty()));
    if (!m_error.isEmpty())
        SetProblem(m_error);
    else if (m_mode == saveFile && path.isEmpty())
        SetProblem(tr("A file name is wanted"));
    else if (isFolder)
        SetProblem(tr("%1 is a folder").arg(FileName()));
    else if (m_mode == saveFile && file.exists())
        SetProblem(tr("%1 will be replaced").arg(FileName()));
    else
        SetProblem(m_leftOut);
}

bool ZrFilePanel::OnAccept()
{
    const QString path = Chosen();
    if (path.isEmpty()) {
        SetProblem(tr("Choose a file"));
        return false;
    }
    Q_EMIT FileChosen(path);
    return true;
}

QSize ZrFilePanel::Wanted() const
{
    return {920, 680};
}

void ZrFilePanel::Place()
{
    const QRect body = Body();
    const int gap = ZrTheme::DpI(12);
    const int places = std::min(ZrTheme::DpI(240), body.width() / 3);
    const int name = m_mode == saveFile ? std::max(ZrTheme::DpI(56), 44) + gap : 0;
    const int side = std::max(ZrTheme::DpI(48), 44);
    m_up->setGeometry(body.right() - side, body.y() - side - gap / 2, side, side);
    m_up->Changed();
    SetTitleRoom(side + gap);
    m_places->setGeometry(body.x(), body.y(), places, body.height() - name);
    m_list->setGeometry(body.x() + places + gap, body.y(), body.width() - places - gap, body.height() - name);
    m_name->setGeometry(body.x(), body.bottom() - name + gap, body.width(), std::max(name - gap, 0));
    m_places->Restyle();
    m_list->Restyle();
}

void ZrFilePanel::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Up && event->modifiers() == Qt::AltModifier) {
        GoUp();
        event->accept();
        return;
    }
    const bool isForList = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down
        || (event->key() == Qt::Key_Return && m_mode != saveFile && m_list->Current() >= 0);
    if (!isForList) {
        ZrOverlay::keyPressEvent(event);
        return;
    }
    QCoreApplication::sendEvent(m_list, event);
    event->accept();
}
