#pragma once

#include "ZrUtil/ZrAppView.h"

#include <functional>
#include <memory>

class QTimer;
class SurveyClosing;
class SurveyImport;
class SurveyPage;
class ZrFmLogging;
class ZrFormFrame;
class ZrFormMgr;
class ZrRowForm;
class ZrToast;
struct SurveyModel;

/// The window of the application: its pages, the forms of its settings, its shortcuts, and what all of them
/// share, the model.
///
/// The first frame shows the page "Home". The other pages are built when they are asked for, the page "Plan"
/// also when a draft is to be restored; the forms after the first frame. One part is built in each turn of
/// the event loop, so that what is touched meanwhile answers.
class SurveyView : public ZrAppView
{
    Q_OBJECT

public:
    /// \param dataDir folder of the settings and of the plan's draft; empty to keep neither
    explicit SurveyView(const QString& dataDir);
    ~SurveyView() override;

    SurveyModel& Model() { return *m_model; }

    SurveyPage* Page() const; ///< the one that is shown

    /// In place of the library's: builds the page where it is not yet there. Null when there is none.
    ZrPage* GetPage(const QString& name);

    bool IsComplete() const { return m_isComplete; } ///< all that is built without being asked for is there

    void Show(const QString& page); ///< by name: "Home", "Plan", "Record", "Review", "Scene"

    /// Opens a log, a recording in a foreign form, which is imported first, or a plan, by its content: begins
    /// to. False, after a message, when it is no file.
    bool Open(const QString& path);

    void OpenLog(const QString& path); ///< shows the page "Review" with it
    void OpenPlan(const QString& path); ///< shows the page "Plan" with it

    bool SaveSettings(); ///< false, after a message, when they cannot be written
    void SaveSoon(); ///< after a change of `SurveySettings` that concerns no other page
    void SettingsEdited(); ///< tells of `SurveySettings` that were changed, and saves them soon
    void ShowSettings(const QString& form); ///< by name; the form shown last when there is none

    QString DataDir() const { return m_dataDir; } ///< empty when nothing is kept

    void SetColours(int scheme); ///< a `ZrColourScheme::eScheme`

    /// Shows a message for some seconds; with \p action a button that calls \p run.
    void Tell(const QString& text, const QString& action = QString(), const std::function<void()>& run = {});
    void Warn(const QString& text); ///< shows an error, longer
    void PlaceToast(); ///< after a change of what the page keeps free of messages

    /// Gives the keys to what is in front, a panel, the settings or the page, unless a control in it has them
    /// already. A key that nothing was chosen for with Tab is then a shortcut, and presses no button.
    void GiveFocus();

    void settings(zr::ZrSetModule& module) override;

Q_SIGNALS:
    void ColoursChanged(); ///< colours, fonts or the scale
    void SettingsChanged(); ///< some of the model's
    void FramePainted(); ///< for those who wait for the screen

protected:
    void OnExit() override;
    bool MayClose() override;
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintGL() override;
    void resizeGL(int w, int h) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// What is built when it is needed, or after the first frame.
    struct Part
    {
        QString name; ///< of the page
        std::function<void(SurveyView&)> build;
    };

    template <class T> void AddLater(const QString& name);
    void AddForms();
    bool TakesShortcut(int key) const;
    QWidget* Front() const;
    void AddRowForms();
    bool Need(const QString& part);
    void BuildNext();
    void LoadSettings();
    void ApplyColours();
    void PlaceForms();

    std::unique_ptr<SurveyModel> m_model;
    ZrToast* m_toast;
    SurveyImport* m_import;
    SurveyClosing* m_closing;
    QString m_dataDir;
    QTimer* m_save;
    ZrFormMgr* m_forms = nullptr; ///< the settings
    QVector<ZrRowForm*> m_rowForms;
    ZrFmLogging* m_logging = nullptr;
    ZrFormFrame* m_formFrame = nullptr;
    QVector<Part> m_unbuilt;
    bool m_isFramed = false; ///< the first frame was on the screen
    bool m_isComplete = false;
};
