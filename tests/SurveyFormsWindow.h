#pragma once

// The forms of the application in its window, and the hands that their tests have.

#include "SurveyWindow.h"
#include "ZrKit/ui/ZrRowForm.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"

/// Base of test classes, which call `Open` and `Close`.
class SurveyFormsWindow : public SurveyWindow
{
protected:
    ZrBtn* Button(QWidget& form, const QString& text);
    ZrInput* Input(QWidget& form, const QString& caption);
    static void Type(ZrInput* input, const QString& text);
    template <class T> T* Shown();
    QString RowWithProblem(const ZrRowForm& form);
};

template <class T> T* SurveyFormsWindow::Shown()
{
    T* form = Form<T>();
    m_view->ShowSettings(form->m_name);
    Settle();
    return form;
}

inline ZrBtn* SurveyFormsWindow::Button(QWidget& form, const QString& text)
{
    for (ZrBtn* button : form.findChildren<ZrBtn*>()) {
        if (button->text == text && button->isVisible())
            return button;
    }
    qFatal("no such button: %s", qPrintable(text));
}

inline ZrInput* SurveyFormsWindow::Input(QWidget& form, const QString& caption)
{
    for (ZrInput* input : form.findChildren<ZrInput*>()) {
        if (input->caption == caption && input->isVisible())
            return input;
    }
    qFatal("no such input: %s", qPrintable(caption));
}

/// As a person does at a keyboard.
inline void SurveyFormsWindow::Type(ZrInput* input, const QString& text)
{
    input->setFocus();
    QTest::keyClick(input, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(input, Qt::Key_Delete);
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, input, Qt::Key_unknown, QString(c), Qt::NoModifier);
    Settle();
}

inline QString SurveyFormsWindow::RowWithProblem(const ZrRowForm& form)
{
    for (int row = 0; row < form.RowCount(); ++row) {
        if (!form.Problem(row).isEmpty())
            return form.Problem(row);
    }
    return QString();
}
