#pragma once

#include <QCoreApplication>
#include <QTranslator>

/// While it lives, every text that goes through the translators stands in brackets: "<text>".
class MarkTranslator : public QTranslator
{
public:
    MarkTranslator() { QCoreApplication::installTranslator(this); }

    MarkTranslator(const MarkTranslator&) = delete;
    MarkTranslator& operator=(const MarkTranslator&) = delete;

    ~MarkTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(
        const char* /*context*/, const char* text, const char* /*disambiguation*/, int /*n*/) const override
    {
        return QLatin1Char('<') + QString::fromUtf8(text) + QLatin1Char('>');
    }
};
