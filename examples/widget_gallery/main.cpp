// Every touch widget of the library in every state.
//
//     widget_gallery
//     widget_gallery --screenshots DIR
//
// Scale, units and tablet mode are switched by the buttons at the top or by the keys in their tool tips. With
// --screenshots it writes pictures into DIR, without showing a window, and ends: exit code 0, or 3 when one
// cannot be written; 1 for a wrong option.

#include "ZrUtil/ZrInputDlg.h"
#include "examples/widget_gallery/Gallery.h"
#include "examples/widget_gallery/Pictures.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>
#include <cstring>

namespace {

bool WantsPictures(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--screenshots", 13) == 0)
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    // Pictures need no display, and are to be the same on every machine.
    if (WantsPictures(argc, argv))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Every touch widget of the library in every state."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
        QCoreApplication::translate("main", "Show this text."));
    const QCommandLineOption screenshots(QStringLiteral("screenshots"),
        QCoreApplication::translate("main", "Write pictures into the folder DIR and end."),
        QStringLiteral("DIR"));
    parser.addOption(help);
    parser.addOption(screenshots);
    const bool isUnderstood = parser.parse(QCoreApplication::arguments());
    if (isUnderstood && parser.isSet(help)) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    if (!isUnderstood || !parser.positionalArguments().isEmpty()) {
        const QString what = isUnderstood ? QCoreApplication::translate("main", "Unexpected argument %1")
                                                .arg(parser.positionalArguments()[0])
                                          : parser.errorText();
        std::fprintf(stderr, "%s\n%s", qPrintable(what), qPrintable(parser.helpText()));
        return 1;
    }

    ZrInputDlg::s_keepInside = true; // the window may be smaller than the screen
    Gallery gallery;
    gallery.resize(1280, 800);
    if (parser.isSet(screenshots)) {
        QString failed;
        if (WritePictures(gallery, parser.value(screenshots), failed))
            return 0;
        std::fprintf(stderr, "Cannot write %s\n", qPrintable(failed));
        return 3;
    }
    gallery.show();
    return QApplication::exec();
}
