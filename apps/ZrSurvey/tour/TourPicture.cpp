#include "apps/ZrSurvey/tour/TourPicture.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmap>
#include <QSaveFile>

#include <cmath>

namespace {

bool IsControl(const QWidget& widget)
{
    for (const char* name : {"ZrBtn", "ZrInput", "ZrSlider", "ZrRadio", "ZrCheck", "ZrValueTile"}) {
        if (widget.inherits(name))
            return true;
    }
    return false;
}

QString NameOf(const QWidget& widget)
{
    const QString name = widget.objectName();
    return name.isEmpty() ? widget.accessibleName() : name;
}

} // namespace

void TourPicture::Clear()
{
    m_changing.clear();
}

void TourPicture::Changes(const QWidget& widget, const QRect& part)
{
    m_changing.append({&widget, part});
}

QByteArray TourPicture::Notes(double ratio) const
{
    const auto numbers = [ratio](const QRect& rect) {
        const int left = static_cast<int>(std::floor(rect.x() * ratio));
        const int top = static_cast<int>(std::floor(rect.y() * ratio));
        return QJsonArray{left, top, static_cast<int>(std::ceil((rect.x() + rect.width()) * ratio)) - left,
            static_cast<int>(std::ceil((rect.y() + rect.height()) * ratio)) - top};
    };
    const auto place = [this](const QWidget& widget, const QRect& part) {
        return QRect(widget.mapTo(&m_window, part.topLeft()), part.size());
    };
    QJsonArray changing;
    for (const auto& [widget, part] : m_changing) {
        if (widget)
            changing.append(numbers(place(*widget, part.isNull() ? widget->rect() : part)));
    }
    QJsonArray controls;
    const auto widgets = m_window.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible() || !IsControl(*widget))
            continue;
        const QRect rect = place(*widget, widget->rect());
        const QWidget* hit = m_window.childAt(rect.center());
        if (hit && (hit == widget || widget->isAncestorOf(hit)) && m_window.rect().contains(rect))
            controls.append(QJsonObject{{QStringLiteral("name"), NameOf(*widget)},
                {QStringLiteral("rect"), numbers(rect)}, {QStringLiteral("enabled"), widget->isEnabled()}});
    }
    const QJsonObject notes{{QStringLiteral("changing"), changing}, {QStringLiteral("controls"), controls}};
    return QJsonDocument(notes).toJson(QJsonDocument::Compact);
}

QString TourPicture::Save(const QString& path) const
{
    const QPixmap picture = m_window.grab();
    const QString png = path + QStringLiteral(".png");
    if (!picture.save(png))
        return png;
    QSaveFile notes(path + QStringLiteral(".json"));
    const QByteArray text = Notes(picture.devicePixelRatioF());
    const bool isWritten
        = notes.open(QIODevice::WriteOnly) && notes.write(text) == text.size() && notes.commit();
    return isWritten ? QString() : notes.fileName();
}

bool TourPicture::IsNotes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QJsonObject notes = QJsonDocument::fromJson(file.readAll()).object();
    return notes.value(QLatin1String("changing")).isArray()
        && notes.value(QLatin1String("controls")).isArray();
}
