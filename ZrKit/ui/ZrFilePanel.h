#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/ui/ZrOverlay.h"

#include <QDir>
#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>

class QTimer;
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
/// gets the first suffix when it has none of them; that a file is replaced is said before.
///
/// What is in a folder is read by a worker, so that a slow or large one holds up nothing: the list is empty
/// meanwhile, and says so when it takes longer than `DelayMilliseconds`. Another folder ends the reading of
/// the one before. The drives at the left are looked for by a worker too. Whether a folder or the file of a
/// typed name exists is asked at once. The destructor waits for what does not answer. GUI thread only.
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

    /// Of a folder; that there are more is told where nothing more urgent is, and they are not shown.
    static constexpr int MaxEntries = 2000;
    static constexpr int DelayMilliseconds = 200;

    /// \param purpose begins the title, the folder follows it: "Open a plan – surveys"; empty for that alone
    ZrFilePanel(QWidget* parent, const QString& purpose);
    ~ZrFilePanel() override;

    void SetPurpose(const QString& purpose);
    void SetMode(eMode mode);
    void SetSuffixes(const QStringList& suffixes); ///< without the dot; empty for all files
    void SetFolder(const QString& folder); ///< the nearest one that there is, up from it
    void SetFileName(const QString& name);

    QString Folder() const { return m_folder.absolutePath(); }

    bool IsReading() const { return m_reading != nullptr; } ///< the list is not complete yet

Q_SIGNALS:
    void FolderRead(const QString& folder); ///< the list shows it, or why it cannot be read
    void FileChosen(const QString& path);

protected:
    QSize Wanted() const override;
    void Place() override;
    bool OnAccept() override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Entry
    {
        QString path;
        bool isFolder;
    };

    struct Volume
    {
        QString name;
        QString path;
    };

    struct Reading;

    void Work(const std::function<void()>& work, const std::function<void()>& stop,
        const std::function<void()>& then);
    static QVector<Volume> Volumes();
    void Fill();
    void Show(const Reading& reading);
    void StopReading();
    void FillPlaces();
    void ShowPlaces();
    void ShowTitle();
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
    QVector<Volume> m_volumes;
    bool m_isLooking = false; ///< for volumes
    QStringList m_placePaths;
    std::shared_ptr<Reading> m_reading; ///< null unless it is under way
    QString m_error; ///< why the folder cannot be read
    QString m_leftOut; ///< that not all of it is shown; empty when it is
    QString m_from; ///< the folder that one has come up from, made the current row
    QTimer* m_slow; ///< until it is said that it is read
};
