#pragma once

// What the tests of the drawing surface begin with, in both kinds of context.

#include "GlView.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <array>
#include <vector>

namespace gl {

struct LogLine
{
    int level;
    QString category;
    QString text;
};

inline std::vector<LogLine> s_lines; ///< the debug log, which GlSurfaceTest.cpp diverts
inline QStringList s_messages; ///< what Qt and `qDebug` say while `Messages` collects

inline QString Lines()
{
    QStringList texts;
    for (const LogLine& line : s_lines)
        texts << line.text;
    return texts.join(QLatin1Char('\n'));
}

/// Collects messages until it is destroyed.
class Messages
{
public:
    Messages()
        : m_saved(qInstallMessageHandler(Collect))
    {
        s_messages.clear();
    }

    ~Messages() { qInstallMessageHandler(m_saved); }

    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

private:
    static void Collect(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
    {
        s_messages << text;
    }

    QtMessageHandler m_saved;
};

} // namespace gl

/// A context, cleared to black, and a surface in it; every test is run with OpenGL and with OpenGL ES.
/// A test that leaves an error of GL's pending fails.
class GlSurfaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data()
    {
        QTest::addColumn<gl::Api>("api");
        QTest::newRow("GL") << gl::Api::desktop;
        QTest::newRow("ES") << gl::Api::es;
    }

    void init()
    {
        QFETCH_GLOBAL(gl::Api, api);
        m_isEs = api == gl::Api::es;
        ZrTheme::dp = 1.0F;
        zr_debug_log_level = 2;
        zr_debug_log_to_dbg = 1;
        gl::s_lines.clear();
        m_context = std::make_unique<gl::Context>(api, m_size);
        QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
        m_view = std::make_unique<GlView>();
        if (m_isCreatedFirst)
            Create();
        m_white = m_context->Texture(Filled(QSize(1, 1), Qt::white));
        m_context->Clear(Qt::black);
    }

    void cleanup()
    {
        const GLenum error = m_context ? m_context->TakeErrors() : GLenum(GL_NO_ERROR);
        zr_debug_log_level = -1;
        zr_debug_log_to_dbg = 0;
        m_view.reset();
        m_context.reset();
        QCOMPARE(error, GLenum(GL_NO_ERROR));
    }

protected:
    explicit GlSurfaceTest(bool isCreatedFirst = true, const QSize& size = QSize(GlView::side, GlView::side))
        : m_isCreatedFirst(isCreatedFirst)
        , m_size(size)
    {
    }

    /// `OnCreate` as an application has it, with a font and a background that are there.
    void Create()
    {
        m_view->m_font = QFont(QStringLiteral("Liberation Sans"));
        m_view->m_font.setPixelSize(16);
        m_view->m_background = QStringLiteral(":/back_light.png");
        m_view->OnCreate();
        QVERIFY2(gl::s_lines.empty(), qPrintable(gl::Lines()));
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }

    static QImage Filled(const QSize& size, const QColor& colour)
    {
        QImage image(size, QImage::Format_RGBA8888);
        image.fill(colour);
        return image;
    }

    /// The framebuffer in one colour.
    QImage Filled(const QColor& colour) const { return Filled(m_size, colour); }

    /// The quad over a view of one unit for each pixel, the first texture row at the top.
    std::array<float, 16> WholeView() const
    {
        const auto w = static_cast<float>(m_size.width());
        const auto h = static_cast<float>(m_size.height());
        return {0, h, 0, 0, 0, 0, 0, 1, w, h, 1, 0, w, 0, 1, 1};
    }

    /// What the framebuffer has and \p expected has not.
    QString Unlike(const QImage& expected, int tolerance = 0)
    {
        return gl::Difference(m_context->Read(), expected, tolerance);
    }

    bool IsBlack() { return gl::CountNot(m_context->Read(), Qt::black) == 0; }

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_view;
    GLuint m_white = 0; ///< a texture of one white texel
    bool m_isEs = false;

private:
    bool m_isCreatedFirst;

protected:
    const QSize m_size;
};
