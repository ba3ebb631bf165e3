// Controls of the kit at work: a list for fingers, large buttons, values, plots over a time bar, panels that
// ask.
//     kit_gallery [--colours NAME] [--screenshot FILE]: the second writes a picture of it and ends
// Hold a dive to remove it. Exit code 1 for wrong arguments, 3 when the picture cannot be written.

#include "Desk.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

namespace {

/// "day", "dusk", "night"; -1 for others.
int SchemeOf(const QString& name)
{
    for (int scheme = 0; scheme < ZrColourScheme::Count; ++scheme) {
        if (ZrColourScheme::Name(scheme).compare(name, Qt::CaseInsensitive) == 0)
            return scheme;
    }
    return -1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption colours(QStringLiteral("colours"), QStringLiteral("day, dusk or night."),
        QStringLiteral("NAME"), QStringLiteral("dusk"));
    const QCommandLineOption picture(
        QStringLiteral("screenshot"), QStringLiteral("Write a picture."), QStringLiteral("FILE"));
    parser.addHelpOption();
    parser.addOptions({colours, picture});
    parser.process(app);
    const int scheme = SchemeOf(parser.value(colours));
    if (scheme < 0 || !parser.positionalArguments().isEmpty()) {
        std::fputs("kit_gallery: colours are day, dusk or night, and there are no other arguments\n", stderr);
        return 1;
    }
    ZrTheme::SetDesignScale(1280, 800); // the window that the layout is made for
    ZrTheme::SetStdStyle();
    Desk desk;
    desk.resize(1280, 800);
    desk.SetColours(scheme);
    desk.show();
    if (!parser.isSet(picture))
        return QApplication::exec();
    return desk.grab().save(parser.value(picture)) ? 0 : 3;
}
