#pragma once

#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrSetModule.h"

/// A form that counts what it is told and persists one number.
class ZrFormPage : public ZrForm
{
public:
    int m_displayed = 0;
    int m_number = 0;

    ZrFormPage(QWidget* parent, const QString& name)
        : ZrForm(parent)
    {
        m_name = name;
    }

    void OnFormDisplay() override { ++m_displayed; }

    void settings(zr::ZrSetModule& module) override { module.item(QStringLiteral("number"), m_number); }
};
