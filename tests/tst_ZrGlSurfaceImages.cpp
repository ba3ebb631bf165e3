// Images that become textures: palettes, markers, backgrounds, and those of applications.

#include "GlSurfaceTest.h"
#include "WithoutResource.h"

class tst_ZrGlSurfaceImages : public GlSurfaceTest
{
    Q_OBJECT

public:
    tst_ZrGlSurfaceImages()
        : GlSurfaceTest(false)
    {
    }

private Q_SLOTS:
    void markersInOrder();
    void withoutImages();
    void markersThatAreGone();
    void createdInOrder();
    void paletteFallback();
    void paletteCount_data();
    void paletteCount();
    void missingBackground();
    void noBackground();
    void backgroundIsReplaced();
    void imageToTexture();
    void damagedImage();
    void tooLargeImage();
    void largestImage();
    void imageWithUnicodeName();
};

void tst_ZrGlSurfaceImages::markersInOrder()
{
    Create();
    const char* names[] = {":/marker_alpha.png", ":/marker_arrow.png", ":/marker_square.png",
        ":/marker_circle.png", ":/marker_crosshair.png", ":/marker_waypoint.png", ":/marker_vector.png",
        ":/marker_pin.png", ":/handle_rotate.png", ":/handle_stretch.png", ":/handle_tick.png",
        ":/handle_trash.png", ":/handle_pan.png", ":/handle_a.png", ":/handle_b.png"};
    QCOMPARE(m_view->m_markers.size(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i) {
        const QImage image = QImage(QString::fromLatin1(names[i])).convertToFormat(QImage::Format_RGBA8888);
        const QString difference
            = gl::Difference(m_context->ReadTexture(m_view->m_markers[i], image.size()), image);
        QVERIFY2(difference.isEmpty(), qPrintable(QLatin1String(names[i]) + difference));
    }
}

void tst_ZrGlSurfaceImages::withoutImages()
{
    const resource::Without without(QStringLiteral(":/marker_pin.png"));
    QVERIFY(without.IsDone());
    {
        const gl::Messages quiet;
        m_view->m_background = QStringLiteral(":/back_light.png");
        m_view->OnCreate();
    }
    for (const GLuint tex : m_view->m_markers)
        QCOMPARE(tex, 0U);
    QCOMPARE(m_view->m_bgTex, 0U);
    // Each marker, and the background.
    QCOMPARE(gl::s_lines.size(), std::size_t(16));
    QCOMPARE(gl::s_lines[0].text, QStringLiteral("Marker image load failed: :/marker_alpha.png"));
    QCOMPARE(gl::s_lines[15].text, QStringLiteral("Background image load failed: :/back_light.png"));
    m_view->ZrglRenderBackground();
    m_view->ZrglRenderMarker(30, 30, 0, 20, m_view->m_markers[0], Qt::red, 0, ZrGlSurface::alpha);
    m_view->ZrglRenderOverlay();
    QVERIFY(IsBlack());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceImages::markersThatAreGone()
{
    // What was loaded before is not kept.
    Create();
    QVERIFY(m_view->m_markers[0] != 0 && m_view->m_markers[14] != 0);
    const resource::Without without(QStringLiteral(":/marker_pin.png"));
    QVERIFY(without.IsDone());
    m_view->ZrglInitMarkers();
    for (const GLuint tex : m_view->m_markers)
        QCOMPARE(tex, 0U);
    QCOMPARE(gl::s_lines.size(), std::size_t(15));
}

void tst_ZrGlSurfaceImages::createdInOrder()
{
    // Programs, palettes, markers, background: told by what each says where nothing is to be had.
    const resource::Without shaders(QStringLiteral(":/map.vsh"));
    const resource::Without images(QStringLiteral(":/marker_pin.png"));
    for (const char* name : {":/map.vsh", ":/palettes.png", ":/marker_pin.png", ":/back_light.png"})
        QVERIFY2(!QFile::exists(QString::fromLatin1(name)), name);
    m_view->m_background = QStringLiteral(":/back_light.png");
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text) {
            gl::s_lines.push_back({0, QString(), text});
        });
    m_view->OnCreate();
    qInstallMessageHandler(before);
    QStringList texts;
    for (const gl::LogLine& line : gl::s_lines) {
        const QString text = line.text.section(QLatin1Char(' '), 0, 1);
        if (texts.isEmpty() || texts.last() != text)
            texts << text;
    }
    QCOMPARE(texts,
        QStringList({QStringLiteral("Cannot read"), QStringLiteral("zrglInitPalette, Cannot"),
            QStringLiteral("Marker image"), QStringLiteral("Background image")}));
    QCOMPARE(gl::s_lines.size(), std::size_t(14 + 1 + 15 + 1));
}

void tst_ZrGlSurfaceImages::paletteFallback()
{
    const resource::Without without(QStringLiteral(":/palettes.png"));
    QVERIFY(without.IsDone());
    m_view->OnCreate();
    {
        const gl::Messages messages;
        m_view->m_palCount = 5;
        m_view->ZrglInitPalette();
        QCOMPARE(gl::s_messages,
            QStringList(QStringLiteral(
                "zrglInitPalette, Cannot load palettes bitmap from resource, using default greyscale")));
    }
    QCOMPARE(m_view->m_palCount, 1);
    QOpenGLFunctions* f = m_context->Functions();
    f->glBindTexture(GL_TEXTURE_2D, m_view->m_palTex);
    const QMap<GLenum, GLint> sampled{{GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
        {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE}, {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
        {GL_TEXTURE_MIN_FILTER, GL_NEAREST}};
    for (auto it = sampled.cbegin(); it != sampled.cend(); ++it) {
        GLint value = 0;
        f->glGetTexParameteriv(GL_TEXTURE_2D, it.key(), &value);
        QCOMPARE(value, it.value());
    }
    const QImage image = m_context->ReadTexture(m_view->m_palTex, QSize(256, 256));
    QVERIFY(!image.isNull());
    // 256 rows of bytes 0 to 255 one behind the other, then three of 255 that the last entry left.
    const uchar* bytes = image.constBits();
    for (int i = 0; i < 256 * 256 * 4; ++i) {
        const int expected = i < 256 * 256 ? i % 256 : i < 256 * 256 + 3 ? 255 : 0;
        if (bytes[i] != expected)
            QVERIFY2(false, qPrintable(QString::number(i)));
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceImages::paletteCount_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("25") << 2;
    QTest::newRow("10") << 1;
    QTest::newRow("9") << 0;
    QTest::newRow("120") << 12;
}

void tst_ZrGlSurfaceImages::paletteCount()
{
    QFETCH(int, count);
    const QByteArray tag(QTest::currentDataTag());
    QImage image(256, tag.toInt(), QImage::Format_RGBA8888);
    image.fill(Qt::red);
    QTemporaryDir dir;
    QVERIFY(image.save(dir.filePath(QStringLiteral("palettes.png"))));
    QFile list(dir.filePath(QStringLiteral("p.qrc")));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write("<RCC><qresource prefix=\"/\"><file>palettes.png</file></qresource></RCC>");
    list.close();
    const QString compiled = dir.filePath(QStringLiteral("p.rcc"));
    QCOMPARE(QProcess::execute(QStringLiteral(ZR_RCC),
                 {QStringLiteral("--binary"), list.fileName(), QStringLiteral("-o"), compiled}),
        0);
    const resource::Without without(QStringLiteral(":/palettes.png"));
    QVERIFY(without.IsDone());
    QVERIFY(QResource::registerResource(compiled));
    m_view->OnCreate();
    QVERIFY(QResource::unregisterResource(compiled));
    QCOMPARE(m_view->m_palCount, count);
    QCOMPARE(m_context->ReadTexture(m_view->m_palTex, image.size()), image);
    float quad[16] = {0, 0, 0, 0, 0, 64, 0, 1, 64, 0, 1, 0, 64, 64, 1, 1};
    m_view->ZrglRenderVbo(quad, m_white, ZrGlSurface::palette);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceImages::missingBackground()
{
    Create();
    const GLuint before = m_view->m_bgTex;
    m_view->ZrglSetBackground(QStringLiteral("/no/\u00fcber.png"));
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QCOMPARE(gl::s_lines[0].level, 2);
    QCOMPARE(gl::s_lines[0].category, QStringLiteral("ZrUtil-ZrGlSurface"));
    QCOMPARE(gl::s_lines[0].text, QStringLiteral("Background image load failed: /no/\u00fcber.png"));
    QCOMPARE(m_view->m_bgTex, before);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceImages::noBackground()
{
    Create();
    const GLuint before = m_view->m_bgTex;
    const gl::Messages messages;
    m_view->ZrglSetBackground(QString());
    m_view->ZrglSetBackground(QStringLiteral(""));
    QCOMPARE(gl::s_lines.size(), std::size_t(2));
    for (const gl::LogLine& line : gl::s_lines)
        QCOMPARE(line.text, QStringLiteral("Background image load failed: "));
    QVERIFY(m_view->m_background.isEmpty());
    QCOMPARE(m_view->m_bgTex, before);
    GLuint tex = 7;
    QVERIFY(!m_view->ZrglLoadImageToTexture(QString(), tex));
    QCOMPARE(tex, 7U);
    // Qt has nothing to say about it.
    QVERIFY2(gl::s_messages.isEmpty(), qPrintable(gl::s_messages.join(QLatin1Char('\n'))));
}

void tst_ZrGlSurfaceImages::backgroundIsReplaced()
{
    Create();
    const GLuint before = m_view->m_bgTex;
    m_view->ZrglSetBackground(QStringLiteral(":/back_fade.png"));
    QCOMPARE(m_view->m_background, QStringLiteral(":/back_fade.png"));
    QCOMPARE(m_view->m_bgTex, before);
    const QImage image = QImage(m_view->m_background).convertToFormat(QImage::Format_RGBA8888);
    QCOMPARE(m_context->ReadTexture(m_view->m_bgTex, image.size()), image);
}

void tst_ZrGlSurfaceImages::imageToTexture()
{
    Create();
    GLuint tex = 4711;
    QVERIFY(!m_view->ZrglLoadImageToTexture(QStringLiteral(":/none.png"), tex));
    QCOMPARE(tex, 4711U);
    // Rows of twelve bytes, whatever others unpack.
    m_context->Functions()->glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    QImage image(3, 2, QImage::Format_RGB888);
    for (int i = 0; i < 6; ++i)
        image.setPixelColor(i % 3, i / 3, QColor(40 * i, 255 - 40 * i, i));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.png"));
    QVERIFY(image.save(path));
    QVERIFY(m_view->ZrglLoadImageToTexture(path, tex));
    QCOMPARE(m_context->ReadTexture(tex, image.size()), image.convertToFormat(QImage::Format_RGBA8888));
    m_context->Functions()->glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    m_view->ZrglSetBackground(path);
    QCOMPARE(m_context->ReadTexture(m_view->m_bgTex, image.size()),
        image.convertToFormat(QImage::Format_RGBA8888));
    QOpenGLFunctions* f = m_context->Functions();
    f->glBindTexture(GL_TEXTURE_2D, tex);
    const auto parameter = [f](GLenum name) {
        GLint value = 0;
        f->glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        return value;
    };
    QCOMPARE(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    QCOMPARE(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    QCOMPARE(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    QCOMPARE(parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    for (const GLuint other : {m_view->m_palTex, m_view->m_bgTex, m_view->m_fontTex, m_view->m_markers[14]}) {
        f->glBindTexture(GL_TEXTURE_2D, other);
        QCOMPARE(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
        QCOMPARE(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
        QCOMPARE(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
        QCOMPARE(parameter(GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceImages::damagedImage()
{
    Create();
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("a.png")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\x89PNG\r\n\x1a\n and no more");
    file.close();
    GLuint tex = 0;
    QVERIFY(!m_view->ZrglLoadImageToTexture(file.fileName(), tex));
    m_view->ZrglSetBackground(file.fileName());
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceImages::tooLargeImage()
{
    Create();
    GLint most = 0;
    m_context->Functions()->glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    for (const QSize& size : {QSize(most + 1, 1), QSize(1, most + 1)}) {
        gl::s_lines.clear();
        QImage image(size, QImage::Format_Grayscale8);
        image.fill(Qt::white);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("large.png"));
        QVERIFY(image.save(path));
        GLuint tex = 0;
        QVERIFY(!m_view->ZrglLoadImageToTexture(path, tex));
        QCOMPARE(tex, 0U);
        QCOMPARE(gl::Lines(),
            QStringLiteral("An image of %1 by %2 pixels is larger than a texture may be: %3")
                .arg(size.width())
                .arg(size.height())
                .arg(most));
        gl::s_lines.clear();
        m_view->ZrglSetBackground(path);
        QVERIFY(gl::Lines().contains(QLatin1String("Background image load failed: ") + path));
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
}

void tst_ZrGlSurfaceImages::largestImage()
{
    Create();
    GLint most = 0;
    m_context->Functions()->glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("long.png"));
    for (const QSize& size : {QSize(most, 1), QSize(1, most)}) {
        QVERIFY(Filled(size, QColor(9, 8, 7)).save(path));
        GLuint tex = 0;
        QVERIFY(m_view->ZrglLoadImageToTexture(path, tex));
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
    QVERIFY2(gl::s_lines.empty(), qPrintable(gl::Lines()));
}

void tst_ZrGlSurfaceImages::imageWithUnicodeName()
{
    Create();
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("tiefe \u00fc\u6df1.png"));
    QVERIFY(Filled(QSize(5, 1), QColor(9, 8, 7, 6)).save(path));
    GLuint tex = 0;
    QVERIFY(m_view->ZrglLoadImageToTexture(path, tex));
    QCOMPARE(m_context->ReadTexture(tex, QSize(5, 1)).pixelColor(4, 0), QColor(9, 8, 7, 6));
    // A folder is no image.
    QVERIFY(!m_view->ZrglLoadImageToTexture(dir.path(), tex));
}

GL_TEST_MAIN(tst_ZrGlSurfaceImages)
#include "tst_ZrGlSurfaceImages.moc"
