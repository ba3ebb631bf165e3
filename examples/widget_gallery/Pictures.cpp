#include "examples/widget_gallery/Pictures.h"

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"
#include "examples/widget_gallery/Gallery.h"

#include <QApplication>
#include <QDir>
#include <QMouseEvent>

#include <functional>

namespace {

/// Opens the keyboard of \p input as a finger does, and takes its picture after \p act.
QImage KeyboardPicture(ZrInput& input, const std::function<void(ZrInputDlg&)>& act)
{
    const QPointF at = QRectF(input.rect()).center();
    QMouseEvent press(QEvent::MouseButtonPress, at, input.mapToGlobal(at.toPoint()), Qt::LeftButton,
        Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&input, &press);
    auto* keyboard = input.window()->findChild<ZrInputDlg*>();
    act(*keyboard);
    // As over a page: its corners are round.
    QImage picture(keyboard->size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    keyboard->render(&picture, QPoint(), QRegion(), QWidget::DrawChildren);
    delete keyboard;
    return picture;
}

void Press(ZrInputDlg& keyboard, eZriAction action)
{
    for (const ZrInputItem& item : keyboard.Items()) {
        if (item.action != action)
            continue;
        const QPointF at = QRectF(item.rect).center();
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, keyboard.mapToGlobal(at.toPoint()), Qt::LeftButton,
                type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(&keyboard, &event);
        }
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(&keyboard, &leave);
        return;
    }
}

} // namespace

bool WritePictures(Gallery& gallery, const QString& dir, QString& failed)
{
    const auto write = [&](const QString& name, const QImage& picture) {
        const QString path = QDir(dir).filePath(QStringLiteral("gallery-%1.png").arg(name));
        if (!failed.isEmpty() || picture.save(path))
            return;
        failed = path;
    };
    QApplication::setCursorFlashTime(0);
    gallery.resize(1280, 800);
    gallery.show();
    QApplication::setActiveWindow(&gallery);
    for (int i = 0; i < int(Gallery::Scales().size()); ++i) {
        gallery.SetScale(i);
        for (const bool imperial : {false, true}) {
            gallery.SetImperial(imperial);
            QApplication::processEvents();
            write(QStringLiteral("%1-%2").arg(QString::fromLatin1(Gallery::Scales()[std::size_t(i)].file),
                      imperial ? QStringLiteral("imperial") : QStringLiteral("metric")),
                gallery.Picture());
        }
    }

    gallery.SetScale(2);
    gallery.SetImperial(false);
    gallery.SetTabletMode(true);

    const struct
    {
        const char* name;
        int kind;
        std::function<void(ZrInputDlg&)> act;
    } keyboards[] = {
        {"int", ZrInput::kindInt, [](ZrInputDlg&) {}},
        {"float", ZrInput::kindShortLength, [](ZrInputDlg& keyboard) { keyboard.OnEnd(); }},
        {"range", ZrInput::kindShortLength,
            [](ZrInputDlg& keyboard) {
                for (int i = 0; i < 5; ++i)
                    keyboard.OnKey(QLatin1Char('9'));
            }},
        {"geo", ZrInput::kindLat, [](ZrInputDlg&) {}},
        {"qwerty", ZrInput::kindText, [](ZrInputDlg&) {}},
        {"capitals", ZrInput::kindText, [](ZrInputDlg& keyboard) { Press(keyboard, zriCaps); }},
        {"symbols", ZrInput::kindText, [](ZrInputDlg& keyboard) { Press(keyboard, zriSymbols); }},
    };

    for (const auto& keyboard : keyboards)
        write(QStringLiteral("keyboard-%1").arg(QString::fromLatin1(keyboard.name)),
            KeyboardPicture(*gallery.Input(keyboard.kind), keyboard.act));
    gallery.SetTabletMode(false);
    return failed.isEmpty();
}
