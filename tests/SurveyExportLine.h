#pragma once

// A short recording with both sides of a sonar, events and targets, for the tests of its exports.

#include "FileBytes.h"
#include "ZrKit/survey/ZrSurveyExport.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrSonarTestLog.h"
#include "ZrUtil/IZrProgress.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

namespace survey_export {

using sonar_test::startTime;

inline QString S(const char* text)
{
    return QString::fromUtf8(text);
}

class Percents final : public IZrProgress
{
public:
    QVector<int> told;
    std::function<void(int)> then;

    void UpdateProgress(int percent) override
    {
        told.append(percent);
        if (then)
            then(percent);
    }

    int GetProgress() override { return told.isEmpty() ? -1 : told.last(); }
};

/// What each test function begins with: a folder with a log in it, opened.
class LineFolder
{
protected:
    void MakeOriginal()
    {
        sonar_test::SonarLine line;
        line.pings = 300;
        QVERIFY(WriteLine(m_originals.filePath(S("line.log")), line));
    }

    void Begin();

    QString File(const QString& name) const { return m_folder->filePath(name); }

    QString OutOf(int kind) const
    {
        return File(S("Außen 沈 ") + ZrSurveyExport::Name(kind) + QLatin1Char('.')
            + ZrSurveyExport::Suffixes(kind).first());
    }

    static std::shared_ptr<ZrSurveyRecording> Opened(const QString& log)
    {
        auto recording = std::make_shared<ZrSurveyRecording>();
        return recording->Load(log) ? recording : nullptr;
    }

    QTemporaryDir m_originals; ///< stays for all functions
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_log;
    std::shared_ptr<ZrSurveyRecording> m_recording;
    double m_begin = 0.0; ///< steady time of the first record
};

inline void LineFolder::Begin()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_log = File(S("Linie ß.log"));
    QVERIFY(QFile::copy(m_originals.filePath(S("line.log")), m_log));
    m_recording = Opened(m_log);
    QVERIFY(m_recording);
    m_begin = m_recording->Times()->Begin();
    for (const double at : {1.0, 12.0, 25.0}) {
        ZrLogEvt evt(startTime + at, esUser, S("event at %1").arg(at));
        evt.uid = QUuid::createUuid();
        QVERIFY(m_recording->Events().Add(evt));
    }
    for (const double at : {2.0, 15.0}) {
        ZrSonarTarget target;
        target.time = startTime + at;
        target.spot = {static_cast<std::size_t>(at * 10.0), sidePort, 200.0};
        QVERIFY(m_recording->Events().Add(ZrTargetEvent::ToEvent(target, S("target at %1").arg(at))));
    }
    QString error;
    QVERIFY2(m_recording->Events().Save(&error), qPrintable(error));
    QCOMPARE(m_recording->Targets().size(), std::size_t(2));
}

} // namespace survey_export
