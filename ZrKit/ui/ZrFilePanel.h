#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/ui/ZrOverlay.h"

#include <QDir>
#include <QStringList>
#include <QVector>

class ZrInput;
class ZrTouchList;

/// Lets the user choose a file to open, a file to write, or a folder, with a finger.
///
/// \code
/// m_files->SetMode(ZrFilePanel::saveFile);
/// m_files->SetSuffixes({"gpx", "kml"});
/// m_files->SetFolder(view.last_path());
/// m_files->SetFileName(tr("Plan"));
/// connect(m_files, &ZrFilePanel::FileChosen, this, &Page::Export);
/// m_files->Open();
/// \endcode
///
/// Folders come first, then files, the newest first; hidden ones are not shown. The name of a file to write
/// gets the first suffix when it has none of them; that a file is replaced is said before. GUI thread only.
class ZR_KIT_EXPORT ZrFilePanel : public ZrOverlay
{
    Q_OBJECT

public:
    enum eMode : int
    {
        openFile = 0,
        saveFile = 1,
        chooseFolder = 2
    };

    static constexpr int MaxEntries = 2000; ///< of a folder; what is more is told, and not shown

    /// \param purpose begins the title, the folder follows it: "Open a plan – surveys"; empty for that alone
    ZrFilePanel(QWidget* parent, const QString& purpose);

    void SetPurpose(const QString& purpose);
    void SetMode(eMode mode);
    void SetSuffixes(const QStringList& suffixes); ///< without the dot; empty for all files
    void SetFolder(const QString& folder); ///< the nearest one that there is, up from it
    void SetFileName(const QString& name);

    QString Folder() const { return m_folder.absolutePath(); }

Q_SIGNALS:
    void FileChosen(const QString& path);

protected:
    QSize Wanted() const override;
    void Place() override;
    bool OnAccept() override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Entry
    {
        QString path;
        bool isFolder;
    };

    void Fill();
    void ShowTitle();
    void AddEntry(const QFileInfo& info);
    void ChooseRow(int row);
    void ShowState();
    void GoUp();
    QString FileName() const;
    QString Chosen() const;

    QString m_purpose;
    eMode m_mode = openFile;
    QDir m_folder;
    QStringList m_suffixes;
    QVector<Entry> m_entries;
    ZrTouchList* m_places;
    ZrTouchList* m_list;
    ZrInput* m_name;
    ZrBtn* m_up;
    QStringList m_placePaths;
};
