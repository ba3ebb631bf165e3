#include "ZrKit/ui/ZrFilePanel.h"

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

#include <algorithm>

namespace {

QImage Icon(const char* name)
{
    return QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name)));
}

} // namespace

ZrFilePanel::ZrFilePanel(QWidget* parent, const QString& purpose)
    : ZrOverlay(parent, purpose)
    , m_purpose(purpose)
    , m_folder(QDir::home())
    , m_places(new ZrTouchList(this))
    , m_list(new ZrTouchList(this))
    , m_name(new ZrInput(this))
    , m_up(new ZrBtn(this, ZrBtn::typeTool))
{
    m_name->kind = ZrInput::kindText;
    m_name->caption = tr("File name");
    m_name->setAccessibleName(m_name->caption);
    m_up->img = Icon("up");
    m_up->setObjectName(QStringLiteral("up"));
    m_list->setObjectName(QStringLiteral("files"));
    m_up->setToolTip(tr("Folder above (Alt+Up)"));
    m_up->setAccessibleName(tr("Folder above"));
    m_list->m_empty = tr("Nothing here that could be opened");
    connect(m_up, &ZrBtn::Clicked, this, &ZrFilePanel::GoUp);
    connect(m_list, &ZrTouchList::Chosen, this, &ZrFilePanel::ChooseRow);
    connect(m_places, &ZrTouchList::Chosen, this, [this](int row) { SetFolder(m_placePaths.value(row)); });
    connect(m_name, &QLineEdit::textChanged, this, &ZrFilePanel::ShowState);
    SetMode(openFile);
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
    QVector<ZrListItem> items;
    m_placePaths.clear();
    const auto add = [&](const QString& name, const QString& path, const char* icon) {
        if (path.isEmpty() || m_placePaths.contains(path))
            return;
        m_placePaths.append(path);
        items.append({name, QString(), QString(), Icon(icon), false, QColor(), path});
    };
    add(tr("Home"), QDir::homePath(), "home");
    add(tr("Documents"), QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), "folder");
    const auto volumes = QStorageInfo::mountedVolumes();
    for (const QStorageInfo& volume : volumes) {
        const QString root = volume.rootPath();
        if (volume.isReady()
            && (root.startsWith(QLatin1String("/media")) || root.startsWith(QLatin1String("/mnt"))))
            add(volume.displayName(), root, "save");
    }
    add(tr("Computer"), QDir::rootPath(), "folder");
    m_places->SetItems(items);
    Fill();
}

void ZrFilePanel::AddEntry(const QFileInfo& info)
{
    m_entries.append({info.absoluteFilePath(), info.isDir()});
}

void ZrFilePanel::Fill()
{
    m_entries.clear();
    SetProblem(QString());
    m_folder.refresh();
    const auto folders = m_folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Readable,
        QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
    for (const QFileInfo& info : folders)
        AddEntry(info);
    if (m_mode != chooseFolder) {
        QStringList filters;
        for (const QString& suffix : qAsConst(m_suffixes))
            filters.append(QStringLiteral("*.") + suffix);
        const auto files = m_folder.entryInfoList(filters, QDir::Files | QDir::Readable, QDir::Time);
        for (const QFileInfo& info : files)
            AddEntry(info);
    }
    if (m_entries.size() > MaxEntries) {
        SetProblem(tr("%1 entries are not shown").arg(m_entries.size() - MaxEntries));
        m_entries.resize(MaxEntries);
    }
    QVector<ZrListItem> items;
    const QLocale locale;
    for (const Entry& entry : qAsConst(m_entries)) {
        const QFileInfo info(entry.path);
        ZrListItem item;
        item.title = info.fileName();
        item.image = Icon(entry.isFolder ? "folder" : "file");
        if (!entry.isFolder) {
            item.subtitle = locale.toString(info.lastModified(), QLocale::ShortFormat);
            item.detail = locale.formattedDataSize(info.size(), 1, QLocale::DataSizeSIFormat);
        }
        items.append(item);
    }
    m_list->SetItems(items);
    m_list->SetCurrent(-1);
    m_list->scrollToTop();
    ShowTitle();
    setToolTip(QString());
    ShowState();
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
    const QString from = m_folder.absolutePath();
    if (!m_folder.cdUp())
        return;
    Fill();
    for (int row = 0; row < m_entries.size(); ++row) {
        if (m_entries[row].path == from)
            m_list->SetCurrent(row);
    }
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
    SetAcceptEnabled(m_mode == openFile || !Chosen().isEmpty());
    if (m_mode != saveFile)
        return;
    const QString path = Chosen();
    if (path.isEmpty())
        SetProblem(tr("A file name is wanted"));
    else if (QFileInfo(path).isDir())
        SetProblem(tr("%1 is a folder").arg(FileName()));
    else
        SetProblem(QFileInfo::exists(path) ? tr("%1 will be replaced").arg(FileName()) : QString());
    SetAcceptEnabled(!path.isEmpty() && !QFileInfo(path).isDir());
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
